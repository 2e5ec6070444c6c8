// Loads and saves that are the same for all kinds of files.
//
// FileRecord<kind>, in a header of the family of the kind, has
//   kKind                           the kind
//   Record                          the record that a load fills
//   setVersion(record, version)     keeps the version word; some records have no place for it
//   prepare(record, version, path)  sets what else a load sets before it reads the body, also for a version that it
//                                   then refuses; left out if there is nothing
//   read(stream, version, record)   the file after its version word, or all of it if startsWithTable(kind, version);
//                                   returns the status of the load
//   store(stream, version, record)  the same for a save; returns whether all of it was stored
//   walk(io, record)                as read, by any walker; read is compiled once
//   load(path, record), save(path, record, version)
//
// All of them: src/file_records.h.
#pragma once
#include <cstdint>
#include <string_view>

#include "src/frame/entry.h"

namespace oldtorvio {

template <frame::FileKind kKind>
struct FileRecord;

namespace frame {

inline std::int64_t statusOf(bool isWalked) { return isWalked ? kDone : kDamaged; }

// What a load sets once it has read the version word.
template <FileKind kKind>
void beginLoad(typename FileRecord<kKind>::Record& record, int version, std::string_view path) {
  FileRecord<kKind>::setVersion(record, version);
  if constexpr (requires { FileRecord<kKind>::prepare(record, version, path); })
    FileRecord<kKind>::prepare(record, version, path);
}

// Loads the file, with read(stream, version) for FileRecord::read.
template <FileKind kKind, class Read>
std::int64_t loadRecord(const char* path, typename FileRecord<kKind>::Record& record, Read&& read) noexcept {
  const auto keep = [&](int version) { beginLoad<kKind>(record, version, path); };
  const auto readAll = [&](codec::InStream& stream, int version) -> std::int64_t {
    if (!startsWithTable(kKind, version)) return read(stream, version);
    const File again = File::openToRead(path);
    if (!again) return kNotOpened;
    codec::InStream fromBeginning(again.handle());
    return read(fromBeginning, version);
  };
  return loadFile(path, keep, infoOf(kKind).accepts, readAll, infoOf(kKind).refusal);
}

template <FileKind kKind>
std::int64_t loadRecord(const char* path, typename FileRecord<kKind>::Record* record) noexcept {
  if (record == nullptr) return kNotOpened;
  return loadRecord<kKind>(path, *record, [&](codec::InStream& stream, int version) -> std::int64_t {
    return FileRecord<kKind>::read(stream, version, *record);
  });
}

// A save may change the record where its writer does.
template <FileKind kKind, class Record>
std::int64_t storeRecord(codec::OutStream& stream, Record& record, int version) {
  return storeFile(stream, kKind, version,
                   [&](codec::OutStream& to) { return FileRecord<kKind>::store(to, version, record); });
}

template <FileKind kKind, class Record>
std::int64_t saveRecord(const char* path, Record& record, int version) noexcept {
  return saveFile(kKind, path, version,
                  [&](codec::OutStream& to) { return FileRecord<kKind>::store(to, version, record); });
}

}  // namespace frame
}  // namespace oldtorvio
