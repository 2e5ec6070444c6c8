// Sheet files: any bytes load, fail or are refused without harm, what loads can be saved, queried and edited.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/codec/writer.h"
#include "src/frame/versions.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/sheet_hazards.h"
#include "tests/support/sheet_keys.h"

using namespace oldtorvio;
using testing_support::blocksCanBeStored;
using testing_support::namesNoStationPastTheLast;

namespace {

// ---- saving ----------------------------------------------------------------------------------------

// A table of one of the oldest layouts has no name to be stored.
bool canBeSaved(const OldSheet& s) { return s.paramTable.version == 0 || s.paramTable.nameLength > 0; }

// A save stores the machine's widths as 256 and, below 152, words that no load expects; a load appends
// rules to angle rules that are not six and keeps no blocks.
bool comesBack(const OldSheet& s, int version) {
  const OldMachine& m = s.machine;
  const bool hasFullTexts = m.textWidth == 256 && (m.secondTextPresent != 1 || m.secondTextWidth == 256);
  return version >= 152 && hasFullTexts && m.material.rules.angleRules.size() == 6 && s.blocks.empty();
}

int load(fuzzing::Bytes body, int version, const fuzzing::RecordPair<OldSheet>& pair) {
  return fuzzing::loadFilePair<frame::FileKind::sheet>(body, version, pair);
}

void save(const fuzzing::RecordPair<OldSheet>& pair, int version) {
  OldSheet& sheet = pair.read;
  if (!blocksCanBeStored(sheet.blocks, version)) return;
  if (!canBeSaved(sheet)) {
    codec::OutStream out;
    fuzzing::expect(!WriteOldSheet(out, version, sheet));
    return;
  }
  const bool settles = comesBack(sheet, version);
  const auto write = [&](auto& out, OldSheet& from) { return WriteOldSheet(out, version, from); };
  // A save changes the record.
  const auto saved = fuzzing::stored([&](auto& out) { return write(out, sheet); });
  fuzzing::expect(saved == fuzzing::stored([&](auto& out) { return write(out, pair.walked); }));
  if (!settles) return;
  fuzzing::expectStable(
      sheet, [&](auto& in, OldSheet& to) { return ReadOldSheet(in, version, to); }, write);
  (void)fuzzing::stored([&](auto& out) { return write(out, pair.walked); });
}

// ---- queries ---------------------------------------------------------------------------------------

void queryByKey(const OldSheet& sheet) {
  // For each part two texts, three numbers and the separators, and for each pattern an id.
  std::size_t room = 2048;
  for (const TorvPart& part : sheet.partList.parts) room += 1024 + 12 * part.patterns.size();
  std::vector<char> answer(room);
  for (const char* key : testing_support::kSheetKeys) {
    fuzzing::expect(GetOldSheetInfoByName(&sheet, key, answer.data()) == 0);
    fuzzing::expect(std::strlen(answer.data()) < room);
  }
  fuzzing::expect(GetOldSheetInfoPartGroupIDs(&sheet, answer.data()) == 0);
}

void askForListOfTools(const char* path, int quiet) {
  char text[9][261];
  float figure[3];
  double late = 0;
  std::int32_t namesLength = -1, toolsLength = -1;
  std::vector<char> names(1), tools(1);
  for (int turn = 0; turn < 2; ++turn) {
    fuzzing::expect(GetOldSheetInfo(path, text[0], text[1], text[2], text[3], text[4], text[5], text[6], text[7],
                                    text[8], &figure[0], &figure[1], &figure[2], &late, names.data(),
                                    static_cast<std::int32_t>(names.size()), &namesLength, tools.data(),
                                    static_cast<std::int32_t>(tools.size()), &toolsLength) == quiet);
    if (quiet != 0) return;
    fuzzing::expect(namesLength >= 1 && toolsLength >= 1);
    names.resize(static_cast<std::size_t>(namesLength) + 1);
    tools.resize(static_cast<std::size_t>(toolsLength) + 1);
  }
  fuzzing::expect(std::strlen(names.data()) == static_cast<std::size_t>(namesLength));
  fuzzing::expect(std::strlen(tools.data()) == static_cast<std::size_t>(toolsLength));
}

constexpr std::size_t kQueriesByPath = 7;

// One of the queries: each loads the file again. status: of the load of the same file.
void queryByPath(int version, int status, const OldSheet& sheet, std::size_t which) {
  const char* const path = fuzzing::ScratchFile::path();
  const int quiet = frame::isKnownSheetVersion(version) ? 0 : -1;
  char text[2][261];
  float figure[4], positions[8];
  std::uint32_t word = 0, count = 0;
  if (which == 0) {
    std::vector<std::int32_t> flags(ParamTable::kNumbers);
    fuzzing::expect(GetSheetDriverFlags(path, flags.data()) == status);
    fuzzing::expect(std::equal(flags.begin(), flags.end(), sheet.paramTable.intParams));
  }
  // The others return nothing of a body that cannot be read.
  if (status != 0) return;
  switch (which) {
    case 1:
      fuzzing::expect(GetOldClampInfo(path, &word, &figure[0], &figure[1], &figure[2], positions, &count, &figure[3]) ==
                      quiet);
      break;
    case 2:
      fuzzing::expect(GetOldVLMQMaterialName(path, text[0], text[1]) == quiet);
      break;
    case 3:
      fuzzing::expect(GetOldSkeletonUtil(path, &figure[0]) == quiet);
      break;
    case 4:
      fuzzing::expect(GetSheetSequenceListSize(path, &count) == status);
      break;
    case 5:
      fuzzing::expect(LoadOldSheetInformation(path) == quiet);
      break;
    case 6:
      if (namesNoStationPastTheLast(sheet)) askForListOfTools(path, quiet);
      break;
    default:
      break;
  }
}

// ---- edits -----------------------------------------------------------------------------------------

// One of them, on the file that was queried.
void edit(int version, const OldSheet& sheet, std::size_t which) {
  const char* const path = fuzzing::ScratchFile::path();
  const std::string newText = "changed by an edit";
  if (which % 2 == 0) {
    fuzzing::expect(ReplaceSheetMachineNcPath(path, newText.c_str()) == 0);
  } else {
    if (sheet.partList.parts.empty()) return;
    const std::string name(frame::baseName(fixedText(sheet.partList.parts.front().partFullDosName)));
    fuzzing::expect(UpdateSheetPartWONumber(path, name.c_str(), nullptr, newText.c_str()) == 0);
  }
  if (!comesBack(sheet, version) || !canBeSaved(sheet)) return;
  OldSheet& edited = fuzzing::fresh<OldSheet, 1>();
  fuzzing::expect(LoadOldSheet(path, &edited) == 0);
  if (which % 2 == 0)
    fuzzing::expect(fixedText(edited.machine.ncPath) == newText);
  else if (version >= 162)
    fuzzing::expect(fixedText(edited.partList.parts.front().woNumber) == newText);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  int version = 0;
  codec::InStream stream(file);
  if (!fuzzing::readVersion(stream, version) || !frame::isSheetVersion(version)) return 0;
  const fuzzing::Bytes body = file.subspan(2);
  const std::size_t turn = fuzzing::turnOf(file);

  const auto pair = fuzzing::RecordPair<OldSheet>::fresh();
  pair.both([&](OldSheet& s) { s.version = static_cast<std::uint16_t>(version); });
  const OldSheet& sheet = pair.read;
  const int status = load(body, version, pair);
  const bool isEdited =
      status == 0 && turn % 4 == 0 && frame::isListedSheetVersion(version) && blocksCanBeStored(sheet.blocks, version);
  {
    const fuzzing::ScratchFile scratch(file);
    if (turn % 16 == 1) fuzzing::expectLoadedByPath(status, pair, LoadOldSheet);
    queryByPath(version, status, sheet, turn / 4 % kQueriesByPath);
    if (isEdited) edit(version, sheet, turn / 32);
  }
  // Queries work on whatever a load has left, complete or not.
  queryByKey(sheet);
  if (status == 0) {
    const OldMachine& m = sheet.machine;
    fuzzing::expect(m.stationsA.stations.size() == m.stationsA.tools.size());
    fuzzing::expect(sheet.textWidth >= 1 && sheet.textWidth <= 256);
    save(pair, version);
  }

  // The same bytes over the record that now holds data, at this version and at one far from it.
  if (load(body, version, pair) == 0) save(pair, version);
  (void)load(body, version < 110 ? 180 : 54, pair);
  queryByKey(sheet);
  return 0;
}
