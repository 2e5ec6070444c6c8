#include "src/tooling/special_tool_io.h"

#include "src/frame/entry.h"
#include "src/tooling/special_tool_layout.h"

namespace oldtorvio {

DEFINE_RECORD_CODEC(SpecialTool, OldSpecialTool)

std::int64_t SaveSpecialTool(const char* path, const OldSpecialTool& tool, int version) {
  return frame::saveFile(path, version, frame::isSpecialToolVersion,
                         [&](OutStream& stream) { return WriteSpecialTool(stream, version, tool); });
}

std::string GetSpecialToolFolder() {
  constexpr std::string_view kKey = "ZRK_DEFAULT_SPECIAL_TOOL_PATH";
  constexpr std::size_t kSize = 261;
  for (const std::string_view section : {"Kestrada64bit", "Kestrada"})
    if (std::string folder = frame::profileText(section, kKey, kSize); !folder.empty()) return folder;
  return R"(C:\KESTRADA\SPECTOOL\)";
}

}  // namespace oldtorvio
