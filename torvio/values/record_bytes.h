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

namespace oldtorvio::values {

template <frame::FileKind kKind>
struct LoadedRecord {
  std::unique_ptr<typename FileRecord<kKind>::Record> record;
  std::int64_t status = frame::kDamaged;  // of the load
  std::optional<int> version;             // none for fewer than two bytes
  std::uint64_t walked = 0;               // bytes up to the end of the last field
};

// A fresh record filled from the bytes of a file. After a failure it holds what was read before it.
template <frame::FileKind kKind>
LoadedRecord<kKind> loadRecord(std::span<const std::byte> bytes, std::string_view path = {}) {
  LoadedRecord<kKind> loaded;
  loaded.record = std::make_unique<typename FileRecord<kKind>::Record>();
  const auto keep = [&](int version) {
    loaded.version = version;
    frame::beginLoad<kKind>(*loaded.record, version, path);
  };
  const auto read = [&](codec::InStream& stream, int version) {
    codec::InStream all(bytes);
    codec::InStream& from = startsWithTable(kKind, version) ? all : stream;
    const std::int64_t status = FileRecord<kKind>::read(from, version, *loaded.record);
    loaded.walked = from.position();
    return status;
  };
  codec::InStream stream(bytes);
  const frame::FileKindInfo& info = frame::infoOf(kKind);
  loaded.status = frame::readFile(stream, keep, info.accepts, read, info.refusal);
  return loaded;
}

// ---- saves -------------------------------------------------------------------------------------------

// Whether a save ends in a failure or ends the process, see SaveOldSheet.
inline bool mayEndProcess(const OldSheet& sheet, int version) { return version >= 152 && !sheet.blocks.empty(); }

// Stores the bytes that FileRecord<kKind>::save stores in a file, and returns its status. The caller flushes the
// stream. A sheet with blocks, which no save can store completely and for which it may end the process, is refused.
// Throws std::bad_alloc, unlike the save, as saveRecord does.
template <frame::FileKind kKind>
std::int64_t storeRecord(codec::OutStream& to, typename FileRecord<kKind>::Record& record, int version) {
  if constexpr (kKind == frame::FileKind::sheet) {
    // As the parameter of SaveOldSheet.
    version = static_cast<std::uint16_t>(version);
    if (frame::infoOf(kKind).saves(version) && mayEndProcess(record, version)) return frame::kNotSaved;
  }
  return frame::storeRecord<kKind>(to, record, version);
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
