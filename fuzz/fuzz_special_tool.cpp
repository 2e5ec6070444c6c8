// Special tool files: any bytes load or fail without harm, also into a record that already holds data, and
// what loads can be saved and queried.
#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/tooling/special_tool_io.h"

using namespace oldtorvio;

namespace {

int load(fuzzing::Bytes body, int version, const fuzzing::RecordPair<OldSpecialTool>& pair) {
  return fuzzing::loadFilePair<frame::FileKind::specialTool>(body, version, pair);
}

// The current special tool has data from the inputs before, so only what every load sets is known.
void askByPath(std::int64_t status, const OldSpecialTool& loaded) {
  std::uint32_t count = 0;
  float f[21];
  std::int32_t n[3];
  std::uint8_t late = 0;
  fuzzing::expect(OpenSpecialToolFile(fuzzing::ScratchFile::path(), &count, &f[0], &f[1], &f[2], &f[3], &f[4], &n[0],
                                      &f[5], &f[6], &f[7], &f[8], &f[9], &f[10], &n[1], &f[11], &f[12], &f[13], &f[14],
                                      &f[15], &f[16], &f[17], &f[18], &late) == status);
  const std::vector<Shape>& shapes = loaded.shapes.shapes;
  if (status == 0 && !shapes.empty()) fuzzing::expect(count == shapes.size());
  for (std::int64_t i = -1; i <= static_cast<std::int64_t>(count); ++i) {
    n[0] = 1000;
    GetShapeAt(static_cast<std::int32_t>(i), &n[0], &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]);
    const bool isThere = i >= 0 && i < static_cast<std::int64_t>(count);
    fuzzing::expect((n[0] != 1000) == isThere);
    if (isThere && status == 0 && !shapes.empty()) fuzzing::expect(n[0] == shapes[static_cast<std::size_t>(i)].type);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  int version = 0;
  codec::InStream stream(file);
  if (!fuzzing::readVersion(stream, version) || !frame::isSpecialToolVersion(version)) return 0;
  const fuzzing::Bytes body = file.subspan(2);
  const std::size_t turn = fuzzing::turnOf(file);

  const auto pair = fuzzing::RecordPair<OldSpecialTool>::fresh();
  pair.both([&](OldSpecialTool& tool) { tool.tool.fileVersion = static_cast<std::int16_t>(version); });
  const int status = load(body, version, pair);
  if (turn % 16 == 0) {
    const fuzzing::ScratchFile scratch(file);
    fuzzing::expectLoadedByPath(status, pair, LoadOldSpecialTool);
    askByPath(status, pair.read);
  }
  if (status == 0)
    fuzzing::expectStable(
        pair.read, [&](auto& in, OldSpecialTool& to) { return ReadSpecialTool(in, version, to); },
        [&](auto& out, const OldSpecialTool& from) { return WriteSpecialTool(out, version, from); });

  // Loaded over itself, and once more as another version reads the same bytes.
  (void)load(body, version, pair);
  (void)load(body, version < 110 ? 180 : 52, pair);
  return 0;
}
