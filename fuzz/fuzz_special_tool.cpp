// Special tool files: any bytes load or fail without harm, also over a record in use.
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/tooling/special_tool_io.h"

using namespace oldtorvio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> file(reinterpret_cast<const std::byte*>(data), size);
  int version = 0;
  frame::InStream stream(file);
  if (!fuzzing::readVersion(stream, version)) return 0;
  if (version < frame::kFirstMainVersion || !frame::kSpecialToolVersions.has(version)) return 0;

  OldSpecialTool tool;
  if (ReadSpecialTool(stream, version, tool) == 0)
    fuzzing::expectSettled(
        tool, [&](auto& in, OldSpecialTool& to) { return ReadSpecialTool(in, version, to); },
        [&](auto& out, const OldSpecialTool& from) { return WriteSpecialTool(out, version, from); });

  // Loaded over itself, and once more as another version reads the same bytes.
  frame::InStream again(file.subspan(2));
  (void)ReadSpecialTool(again, version, tool);
  frame::InStream other(file.subspan(2));
  (void)ReadSpecialTool(other, version < 110 ? 180 : 52, tool);
  return 0;
}
