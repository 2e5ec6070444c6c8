// Machine files: any bytes load, fail or are refused without harm, also into a record that already holds data,
// and what loads can be saved and queried.
#include <bit>

#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/machine/machine_io.h"

using namespace oldtorvio;

namespace {

// A save stores the widths as 256 and, below 152, words that no load expects; a load appends rules
// to angle rules that are not six. Such machines do not come back as they were, nor do those of a file
// whose end is missing where a load forgives it: it leaves out the last steps of a load.
bool comesBack(const OldMachine& m, int version) {
  const bool hasFullTexts = m.textWidth == 256 && (m.secondTextPresent != 1 || m.secondTextWidth == 256);
  return version >= 152 && hasFullTexts && m.material.rules.angleRules.size() == 6;
}

// shapes: of a sheet, the same for both.
int load(fuzzing::Bytes body, int version, const fuzzing::RecordPair<OldMachine>& pair, ShapeList* shapes = nullptr,
         bool* forgave = nullptr) {
  ShapeList walkedShapes;
  if (shapes != nullptr) walkedShapes = *shapes;
  const int status = fuzzing::loadPair(
      body, pair, [&](auto& in, OldMachine& to) { return ReadOldMachine(in, version, shapes, to); },
      [&](OldMachine& to) {
        const auto walked = fuzzing::walkMachine(body, version, shapes != nullptr ? &walkedShapes : nullptr, to);
        if (forgave != nullptr) *forgave = walked.forgave;
        return walked;
      });
  if (shapes != nullptr) fuzzing::expect(fuzzing::equalContents(*shapes, walkedShapes));
  return status;
}

void askForStations(const OldMachine& m) {
  std::int32_t n[5];
  float f[8], values[6], dimensions[3], offsets[3];
  char path[257];
  for (std::size_t i = 0; i < m.stationsA.stations.size(); ++i) {
    LoadOldStationToolFromMachine(static_cast<std::int32_t>(i), &n[0], &n[1], &f[0], &f[1], &f[2], &n[2], values, &f[3],
                                  &f[4], &f[5], &f[6], &n[3], dimensions, offsets, path, &f[7], &f[0], &n[4]);
    const ToolStation& station = m.stationsA.stations[i];
    fuzzing::expect(n[0] == station.stationNumber && n[1] == station.stationType && n[2] == station.valueCount);
  }
}

// status: of the load of the same file into a fresh record.
void askByPath(int version, int status, const OldMachine& m, std::size_t which) {
  const char* const path = fuzzing::ScratchFile::path();
  const int quiet = frame::isKnownSheetVersion(version) ? 0 : -1;
  float f[12];
  char text[4][257];
  std::uint32_t kind = 0;
  MachineInformation information{};
  switch (which % 3) {
    case 0:
      fuzzing::expect(GetMachineDatasForQD(path, &f[0], &f[1], &f[2], &f[3], &f[4], &f[5], &f[6], &f[7], &f[8], &f[9],
                                           &f[10], &f[11]) == status);
      fuzzing::expect(status != 0 || std::bit_cast<std::int32_t>(f[2]) == m.clampInfo.clampCount);
      break;
    case 1:
      fuzzing::expect(LoadOldMachineInformation(path, &information) == quiet);
      // The current machine has data from the inputs before and may keep the stations of one of them.
      if (quiet != 0 || status != 0 || m.stationsA.stations.empty()) break;
      fuzzing::expect(information.infoVersion == version && information.infoKind == m.machineKind);
      fuzzing::expect(information.infoStationCount == static_cast<std::int32_t>(m.stationsA.stations.size()));
      askForStations(m);
      break;
    default:
      fuzzing::expect(GetOldVLMQMachineName(path, text[0], &kind, text[1], text[2], text[3]) == quiet);
      fuzzing::expect(quiet != 0 || status != 0 || kind == static_cast<std::uint32_t>(m.machineKind));
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  int version = 0;
  codec::InStream stream(file);
  if (!fuzzing::readVersion(stream, version) || !frame::isMachineVersion(version)) return 0;
  const fuzzing::Bytes body = file.subspan(2);
  const std::size_t turn = fuzzing::turnOf(file);

  const auto pair = fuzzing::RecordPair<OldMachine>::fresh();
  pair.both([&](OldMachine& m) { m.version = static_cast<std::int16_t>(version); });
  OldMachine& machine = pair.read;
  bool forgave = false;
  const int status = load(body, version, pair, nullptr, &forgave);
  if (turn % 16 == 0) {
    const fuzzing::ScratchFile scratch(file);
    fuzzing::expectLoadedByPath(status, pair, LoadOldMachine);
    askByPath(version, status, machine, turn / 16);
  }
  if (status == 0) {
    fuzzing::expect(machine.stationsA.stations.size() == machine.stationsA.tools.size());
    fuzzing::expect(machine.shapesPresent != 1 || version < 80);
    const bool settles = !forgave && comesBack(machine, version);
    const auto write = [&](auto& out, OldMachine& from) { return WriteOldMachine(out, version, nullptr, from, false); };
    // A save changes the record.
    const auto saved = fuzzing::stored([&](auto& out) { return write(out, machine); });
    fuzzing::expect(saved == fuzzing::stored([&](auto& out) { return write(out, pair.walked); }));
    if (settles) {
      fuzzing::expectStable(
          machine, [&](auto& in, OldMachine& to) { return ReadOldMachine(in, version, nullptr, to); }, write);
      (void)fuzzing::stored([&](auto& out) { return write(out, pair.walked); });
    }
  }

  // The same bytes in a sheet, whose shapes take trailer values, into the record that already holds data.
  ShapeList shapes;
  shapes.shapes.resize(3);
  (void)load(body, version, pair, &shapes);
  return 0;
}
