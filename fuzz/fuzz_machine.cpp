// Machine files: any bytes load, fail or are refused without harm, and what loads can be saved.
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/machine/machine_io.h"
#include "src/machine/machine_layout.h"

using namespace oldtorvio;

namespace {

// A save stores the widths as 256 and, below 152, words that no load expects; a load appends rules
// to angle rules that are not six. Such machines do not come back as they were, nor do those of a file
// whose end is missing where a load forgives it: it leaves out the last steps of a load.
bool comesBack(const OldMachine& m, int version) {
  const bool hasFullTexts = m.textWidth == 256 && (m.secondTextPresent != 1 || m.secondTextWidth == 256);
  return version >= 152 && hasFullTexts && m.material.rules.angleRules.size() == 6;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> file(reinterpret_cast<const std::byte*>(data), size);
  int version = 0;
  frame::InStream stream(file);
  if (!fuzzing::readVersion(stream, version) || !frame::isMachineVersion(version)) return 0;

  OldMachine& machine = fuzzing::fresh<OldMachine>();
  frame::Reader reader(stream, version);
  if (reader.whole(machine, MachineForm<ShapeList>{})) {
    fuzzing::expect(machine.stationsA.stations.size() == machine.stationsA.tools.size());
    fuzzing::expect(machine.shapesPresent != 1 || version < 80);
    const bool settles = !reader.forgave() && comesBack(machine, version);
    const auto saved =
        fuzzing::stored([&](auto& out) { return WriteOldMachine(out, version, nullptr, machine, false); });
    fuzzing::expect(!saved.empty());
    if (settles)
      fuzzing::expectSettled(
          machine, [&](auto& in, OldMachine& to) { return ReadOldMachine(in, version, nullptr, to); },
          [&](auto& out, OldMachine& from) { return WriteOldMachine(out, version, nullptr, from, false); });
  }

  // The same bytes in a sheet, whose shapes take trailer values, over the record in use.
  ShapeList shapes;
  shapes.shapes.resize(3);
  frame::InStream embedded(file.subspan(2));
  (void)ReadOldMachine(embedded, version, &shapes, machine);
  return 0;
}
