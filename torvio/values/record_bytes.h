// Records and the bytes of their files in memory: as the load of their kind fills them, and as its save stores them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "src/file_records.h"
#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/frame/entry.h"
#include "src/frame/text/text.h"
#include "src/sheet/sheet_io.h"

namespace oldtorvio::values {

template <frame::FileKind kKind>
struct LoadedRecord {
  std::unique_ptr<typename FileRecord<kKind>::Record> record;
  std::int64_t status = frame::kDamaged;  // of the load
  std::optional<int> version;             // none for fewer than two bytes
  std::uint64_t walked = 0;               // bytes up to the end of the last field
};

// What a load sets before it reads the body. Records keep the version of their file, some of them its path, too.
inline void beginLoad(TorvPart& part, int version, std::string_view path) {
  part.version = version;
  frame::setPath(part.partFullDosName, path);
}
inline void beginLoad(SheetPartList&, int, std::string_view) {}
inline void beginLoad(OldSpecialTool& tool, int version, std::string_view) {
  tool.tool.fileVersion = static_cast<std::int16_t>(version);
}
inline void beginLoad(OldMachine& machine, int version, std::string_view) {
  machine.version = static_cast<std::int16_t>(version);
}
inline void beginLoad(OldMaterial& material, int version, std::string_view path) {
  material.version = static_cast<std::uint16_t>(version);
  frame::setPath(material.path, path);
}
inline void beginLoad(OldToolInventory& inventory, int version, std::string_view path) {
  inventory.version = static_cast<std::int16_t>(version);
  frame::setPath(inventory.path, path);
}
inline void beginLoad(OldMacro& macro, int version, std::string_view) {
  macro.version = static_cast<std::int16_t>(version);
}
inline void beginLoad(OldSheet& sheet, int version, std::string_view) {
  sheet.version = static_cast<std::uint16_t>(version);
}

// A new record filled from the bytes of a file. After a failure it has what was read before.
template <frame::FileKind kKind>
LoadedRecord<kKind> loadRecord(std::span<const std::byte> bytes, std::string_view path = {}) {
  LoadedRecord<kKind> loaded;
  loaded.record = std::make_unique<typename FileRecord<kKind>::Record>();
  codec::InStream stream(bytes);
  std::int16_t version = 0;
  if (!codec::readUnversioned(stream, version)) return loaded;
  loaded.version = version;
  beginLoad(*loaded.record, version, path);
  if (!frame::infoOf(kKind).accepts(version)) {
    loaded.status = frame::infoOf(kKind).refusal;
    return loaded;
  }
  const bool isTable = startsWithTable(kKind, version);
  codec::InStream body(isTable ? bytes : bytes.subspan(sizeof version));
  loaded.status = FileRecord<kKind>::read(body, version, *loaded.record);
  loaded.walked = body.position() + (isTable ? 0 : sizeof version);
  if constexpr (kKind == frame::FileKind::material) {
    // A file that is only a table takes its name from the table.
    const std::string_view name = fixedText(loaded.record->params.name);
    const bool fits = !name.empty() && name.size() < sizeof loaded.record->params.name;
    if (isTable && loaded.status == frame::kDone && fits) loaded.record->name = name;
  }
  return loaded;
}

// ---- saves -------------------------------------------------------------------------------------------

// The file after its version word, as the save of its kind stores it.
inline bool storeBody(codec::OutStream& to, const TorvPart& part, int version) {
  return WritePartBody(to, version, false, part);
}
inline bool storeBody(codec::OutStream& to, const SheetPartList& list, int version) {
  if (list.parts.empty()) return false;
  const codec::GroupPartFile<const std::vector<TorvPart>> file{list.parts,
                                                               static_cast<std::int32_t>(list.parts.size() - 1)};
  return codec::writeRecord(to, version, file);
}
inline bool storeBody(codec::OutStream& to, const OldSpecialTool& tool, int version) {
  return WriteSpecialTool(to, version, tool);
}
inline bool storeBody(codec::OutStream& to, OldMachine& machine, int version) {
  return WriteOldMachine(to, version, nullptr, machine, false);
}
inline bool storeBody(codec::OutStream& to, OldMaterial& material, int version) {
  return WriteParamTable(to, material.params) && WriteOldMaterialBody(to, version, material);
}
inline bool storeBody(codec::OutStream& to, const OldToolInventory& inventory, int version) {
  return WriteToolInventory(to, version, inventory);
}
inline bool storeBody(codec::OutStream& to, const OldMacro& macro, int version) {
  return WriteMacro(to, version, macro);
}
inline bool storeBody(codec::OutStream& to, OldSheet& sheet, int version) { return WriteOldSheet(to, version, sheet); }

// Whether a save fails or ends the process, see SaveOldSheet.
inline bool mayEndProcess(const auto&, int) { return false; }
inline bool mayEndProcess(const OldSheet& sheet, int version) { return version >= 152 && !sheet.blocks.empty(); }

// Stores the bytes that FileRecord<kKind>::save stores in a file, and returns its status. The caller flushes the
// stream. A sheet with blocks, which no save can store completely and for which it may end the process, is refused.
// Throws std::bad_alloc, unlike the save, as saveRecord does.
template <frame::FileKind kKind>
std::int64_t storeRecord(codec::OutStream& to, typename FileRecord<kKind>::Record& record, int version) {
  constexpr bool kIsSheet = kKind == frame::FileKind::sheet;
  if constexpr (kKind == frame::FileKind::material)
    if (startsWithTable(kKind, version)) return WriteParamTable(to, record.params) ? frame::kDone : frame::kNotSaved;
  // The version of a sheet is an unsigned word, which is stored before it is checked.
  if constexpr (kIsSheet) version = static_cast<std::uint16_t>(version);
  const bool isAccepted = kIsSheet ? frame::isSavedSheetVersion(version) : frame::infoOf(kKind).accepts(version);
  if (!kIsSheet && !isAccepted) return frame::kWrongVersion;
  if (isAccepted && mayEndProcess(record, version)) return frame::kNotSaved;
  if (!codec::writeRecord(to, version, static_cast<std::int16_t>(version))) return frame::kNotSaved;
  if (!isAccepted) return frame::kWrongVersion;
  return storeBody(to, record, version) ? frame::kDone : frame::kNotSaved;
}

struct SavedRecord {
  std::int64_t status = frame::kNotSaved;  // of the save
  std::vector<std::byte> bytes;            // of the file; after a failure those stored before it
};

template <frame::FileKind kKind>
SavedRecord saveRecord(typename FileRecord<kKind>::Record& record, int version) {
  codec::OutStream stream;
  SavedRecord saved;
  saved.status = storeRecord<kKind>(stream, record, version);
  saved.bytes.assign(stream.bytes().begin(), stream.bytes().end());
  return saved;
}

}  // namespace oldtorvio::values
