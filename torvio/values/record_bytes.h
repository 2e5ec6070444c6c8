// The record of a file in memory, as the load of its kind fills it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "src/file_records.h"
#include "src/frame/codec/reader.h"
#include "src/frame/text/text.h"

namespace oldtorvio::values {

template <frame::FileKind kKind>
struct LoadedRecord {
  std::unique_ptr<typename FileRecord<kKind>::Record> record;
  std::int64_t status = frame::kDamaged;  // of the load
  std::optional<int> version;             // none when there are no two bytes
  std::uint64_t walked = 0;               // bytes up to the end of the last field
};

// What a load sets before it reads the body. A record keeps its version, and some the path that they come from.
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

// A fresh record filled from the bytes of a file. After a failure it holds what was read before it.
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
  codec::Reader io(body, version);
  loaded.status = FileRecord<kKind>::walk(io, *loaded.record);
  loaded.walked = body.position() + (isTable ? 0 : sizeof version);
  if constexpr (kKind == frame::FileKind::material) {
    // A file that is a table only takes its name from there.
    const std::string_view name = fixedText(loaded.record->params.name);
    const bool fits = !name.empty() && name.size() < sizeof loaded.record->params.name;
    if (isTable && loaded.status == frame::kDone && fits) loaded.record->name = name;
  }
  return loaded;
}

}  // namespace oldtorvio::values
