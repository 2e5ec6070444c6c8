// The kinds of files: their names, the versions that their loads and saves accept, and what a load returns for any
// other. For the record of each kind and how it is read, stored and walked, see src/frame/file_record.h.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "src/frame/status.h"
#include "src/frame/versions.h"

// Every kind, for code that cannot go over kFileKinds, such as explicit instantiations.
#define OLDTORVIO_EACH_FILE_KIND(DO) \
  DO(part) DO(groupPart) DO(specialTool) DO(machine) DO(material) DO(toolInventory) DO(macro) DO(sheet)

namespace oldtorvio::frame {

#define OLDTORVIO_ENUMERATOR(KIND) KIND,
enum class FileKind : std::uint8_t { OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_ENUMERATOR) };
#undef OLDTORVIO_ENUMERATOR

#define OLDTORVIO_ONE(KIND) +1
inline constexpr std::size_t kFileKindCount = OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_ONE);
#undef OLDTORVIO_ONE

struct FileKindInfo {
  FileKind kind;
  std::string_view name;         // as the tool prints and accepts it
  std::string_view extension;    // if it decides the kind; otherwise empty
  bool (*accepts)(int version);  // by a load
  std::int64_t refusal;          // returned by a load of another version
  bool (*saves)(int version);    // by a save
};

inline constexpr std::array kFileKinds{
    FileKindInfo{FileKind::part, "part", "", isPartVersion, kWrongVersion, isPartVersion},
    // A version that is too low is damage.
    FileKindInfo{FileKind::groupPart, "group-part", "", isGroupPartVersion, kDamaged, isGroupPartVersion},
    FileKindInfo{FileKind::specialTool, "special-tool", ".spt", isSpecialToolVersion, kWrongVersion,
                 isSpecialToolVersion},
    FileKindInfo{FileKind::machine, "machine", "", isMachineVersion, kWrongVersion, isMachineVersion},
    FileKindInfo{FileKind::material, "material", "", isMaterialVersion, kWrongVersion, isMaterialVersion},
    FileKindInfo{FileKind::toolInventory, "tool-inventory", "", isToolInventoryVersion, kWrongVersion,
                 isToolInventoryVersion},
    FileKindInfo{FileKind::macro, "macro", "", isMacroVersion, kWrongVersion, isMacroVersion},
    FileKindInfo{FileKind::sheet, "sheet", "", isSheetVersion, kWrongVersion, isSavedSheetVersion},
};

inline const FileKindInfo& infoOf(FileKind kind) { return kFileKinds[static_cast<std::size_t>(kind)]; }

// The version word of such a material file is that of the parameter table, which is all that it contains.
constexpr bool startsWithTable(FileKind kind, int version) {
  return kind == FileKind::material && isParamTableVersion(version);
}

}  // namespace oldtorvio::frame
