// The kinds of files: their names, the versions that their loads accept, and what a load returns for any other.
// For the record of each kind and the walk over it, see src/file_records.h.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "src/frame/status.h"
#include "src/frame/versions.h"

namespace oldtorvio::frame {

enum class FileKind : std::uint8_t { part, groupPart, specialTool, machine, material, toolInventory, macro, sheet };

struct FileKindInfo {
  FileKind kind;
  std::string_view name;       // as the tool prints and accepts it
  std::string_view extension;  // if it decides the kind; otherwise empty
  bool (*accepts)(int version);
  std::int64_t refusal;  // returned by a load of another version
};

inline constexpr std::array kFileKinds{
    FileKindInfo{FileKind::part, "part", "", isPartVersion, kWrongVersion},
    // A version that is too low is damage.
    FileKindInfo{FileKind::groupPart, "group-part", "", isGroupPartVersion, kDamaged},
    FileKindInfo{FileKind::specialTool, "special-tool", ".spt", isSpecialToolVersion, kWrongVersion},
    FileKindInfo{FileKind::machine, "machine", "", isMachineVersion, kWrongVersion},
    FileKindInfo{FileKind::material, "material", "", isMaterialVersion, kWrongVersion},
    FileKindInfo{FileKind::toolInventory, "tool-inventory", "", isToolInventoryVersion, kWrongVersion},
    FileKindInfo{FileKind::macro, "macro", "", isMacroVersion, kWrongVersion},
    FileKindInfo{FileKind::sheet, "sheet", "", isSheetVersion, kWrongVersion},
};

inline const FileKindInfo& infoOf(FileKind kind) { return kFileKinds[static_cast<std::size_t>(kind)]; }

}  // namespace oldtorvio::frame
