// Tool inventories and macros: any bytes load or fail without harm, and what loads can be saved.
#include <memory>

#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"

using namespace oldtorvio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> file(reinterpret_cast<const std::byte*>(data), size);
  int version = 0;
  frame::InStream stream(file);
  if (!fuzzing::readVersion(stream, version)) return 0;
  const auto body = file.subspan(2);

  if (frame::isToolInventoryVersion(version)) {
    OldToolInventory inventory;
    if (ReadToolInventory(stream, version, inventory) == 0)
      fuzzing::expectSettled(
          inventory, [&](auto& in, OldToolInventory& to) { return ReadToolInventory(in, version, to); },
          [&](auto& out, const OldToolInventory& from) { return WriteToolInventory(out, version, from); });
    frame::InStream again(body);
    (void)ReadToolInventory(again, version < 110 ? 180 : 54, inventory);
  }
  if (frame::isMacroVersion(version)) {
    OldMacro macro;
    frame::InStream other(body);
    if (ReadMacro(other, version, macro) == 0) {
      fuzzing::expect(macro.stationList.stations.size() == macro.stationList.tools.size());
      fuzzing::expectSettled(
          macro, [&](auto& in, OldMacro& to) { return ReadMacro(in, version, to); },
          [&](auto& out, const OldMacro& from) { return WriteMacro(out, version, from); });
    }
    frame::InStream again(body);
    (void)ReadMacro(again, version < 110 ? 180 : 52, macro);
  }
  return 0;
}
