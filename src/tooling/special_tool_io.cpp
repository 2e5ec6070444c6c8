#include "src/tooling/special_tool_io.h"

#include "src/tooling/special_tool_layout.h"
#include "src/tooling/tooling_file_records.h"

namespace oldtorvio {

DEFINE_RECORD_CODEC(SpecialTool, OldSpecialTool)

std::int64_t SaveSpecialTool(const char* path, const OldSpecialTool& tool, int version) {
  return frame::saveRecord<frame::FileKind::specialTool>(path, tool, version);
}

std::string GetSpecialToolFolder() {
  constexpr std::string_view kKey = "ZRK_DEFAULT_SPECIAL_TOOL_PATH";
  constexpr std::size_t kSize = 261;
  for (const std::string_view section : {"Kestrada64bit", "Kestrada"})
    if (std::string folder = frame::profileText(section, kKey, kSize); !folder.empty()) return folder;
  return R"(C:\KESTRADA\SPECTOOL\)";
}

}  // namespace oldtorvio
