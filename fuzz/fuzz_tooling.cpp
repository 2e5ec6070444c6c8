// Tool inventories and macros: any bytes load or fail without harm, also into a record that already holds data,
// and what loads can be saved and queried.
#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/text/text.h"
#include "src/frame/versions.h"
#include "src/records/tool_layout.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"

using namespace oldtorvio;

namespace {

int load(fuzzing::Bytes body, int version, const fuzzing::RecordPair<OldToolInventory>& pair) {
  return fuzzing::loadFilePair<frame::FileKind::toolInventory>(body, version, pair);
}
int load(fuzzing::Bytes body, int version, const fuzzing::RecordPair<OldMacro>& pair) {
  return fuzzing::loadFilePair<frame::FileKind::macro>(body, version, pair);
}

// A special tool whose file is not in the inventory's list ends the process when it is queried.
bool canBeAskedFor(const OldTool& tool, const OldToolInventory& inventory) {
  return tool.shapeCode != kSpecialTool ||
         (tool.specialToolIndex >= 1 &&
          static_cast<std::size_t>(tool.specialToolIndex) <= inventory.specialToolFiles.size());
}

void askByPath(int status, const OldToolInventory& inventory) {
  std::uint32_t count = 0;
  fuzzing::expect(LoadOldToolInventoryForCount(fuzzing::ScratchFile::path(), &count) == 0);
  fuzzing::expect(count == (status == 0 ? inventory.tools.size() : 0));
  char name[257];
  float f[16];
  std::int32_t n[2];
  for (std::uint32_t i = 0; i < count; ++i) {
    const OldTool& tool = inventory.tools[i];
    if (!canBeAskedFor(tool, inventory)) continue;
    GetOldToolInventoryInformation(static_cast<std::int32_t>(i), name, &f[0], &f[1], &f[2], &f[3], &n[0], &f[4], &f[5],
                                   &f[6], &f[7], &f[8], &f[9], &n[1], &f[10], &f[11], &f[12], &f[13], &f[14], &f[15]);
    fuzzing::expect(n[0] == tool.firstValueCount && n[1] == tool.secondValueCount);
  }
}

void inventory(fuzzing::Bytes file, int version, std::size_t turn) {
  const fuzzing::Bytes body = file.subspan(2);
  const auto pair = fuzzing::RecordPair<OldToolInventory>::fresh();
  pair.both([&](OldToolInventory& to) {
    to.version = static_cast<std::int16_t>(version);
    frame::setPath(to.path, fuzzing::ScratchFile::path());
  });
  const int status = load(body, version, pair);
  if (turn % 16 == 0) {
    const fuzzing::ScratchFile scratch(file);
    fuzzing::expectLoadedByPath(status, pair, LoadOldToolInventory);
    askByPath(status, pair.read);
  }
  if (status == 0)
    fuzzing::expectStable(
        pair.read, [&](auto& in, OldToolInventory& to) { return ReadToolInventory(in, version, to); },
        [&](auto& out, const OldToolInventory& from) { return WriteToolInventory(out, version, from); });
  (void)load(body, version < 110 ? 180 : 54, pair);
}

void macro(fuzzing::Bytes file, int version, std::size_t turn) {
  const fuzzing::Bytes body = file.subspan(2);
  const auto pair = fuzzing::RecordPair<OldMacro>::fresh();
  pair.both([&](OldMacro& to) { to.version = static_cast<std::int16_t>(version); });
  const int status = load(body, version, pair);
  if (turn % 16 == 0) {
    const fuzzing::ScratchFile scratch(file);
    fuzzing::expectLoadedByPath(status, pair, LoadOldMacro);
  }
  if (status == 0) {
    fuzzing::expect(pair.read.stationList.stations.size() == pair.read.stationList.tools.size());
    fuzzing::expectStable(
        pair.read, [&](auto& in, OldMacro& to) { return ReadMacro(in, version, to); },
        [&](auto& out, const OldMacro& from) { return WriteMacro(out, version, from); });
  }
  (void)load(body, version < 110 ? 180 : 52, pair);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  int version = 0;
  codec::InStream stream(file);
  if (!fuzzing::readVersion(stream, version)) return 0;
  const std::size_t turn = fuzzing::turnOf(file);
  if (frame::isToolInventoryVersion(version)) inventory(file, version, turn);
  if (frame::isMacroVersion(version)) macro(file, version, turn);
  return 0;
}
