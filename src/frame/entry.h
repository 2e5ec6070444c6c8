// What the exported functions share: no exception leaves them, and files are opened and closed, version words read,
// stored and checked in one place. For loads and saves of a kind of file, see src/frame/file_record.h.
#pragma once
#include <cstdint>
#include <new>

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/frame/file_kinds.h"
#include "src/frame/host/platform.h"
#include "src/frame/status.h"
#include "src/frame/versions.h"

namespace oldtorvio::frame {

// Runs a function's body. Any exception becomes the function's result for "out of memory". In a build without
// exceptions, as for WebAssembly, running out of memory ends the program.
template <class Result, class Fn>
Result guarded([[maybe_unused]] Result outOfMemory, Fn&& body) noexcept {
#if defined(__cpp_exceptions)
  try {
    return body();
  } catch (...) {
    return outOfMemory;
  }
#else
  return body();
#endif
}

// Runs body(). If memory runs out, it ends there, and what it has done stays.
template <class Body>
void attempt(Body&& body) noexcept {
#if defined(__cpp_exceptions)
  try {
    body();
  } catch (...) {
    // The caller sees by its own variables how far body() came.
  }
#else
  body();
#endif
}

// Reads the version word and passes it to keep(version), even if it is then refused. If accepts(version), returns the
// status of read(stream, version), which starts after the version word.
template <class Keep, class Accepts, class Read>
std::int64_t readFile(codec::InStream& stream, Keep&& keep, Accepts&& accepts, Read&& read, std::int64_t refusal) {
  std::int16_t version = 0;
  if (!codec::readUnversioned(stream, version)) return kDamaged;
  keep(version);
  if (!accepts(version)) return refusal;
  return read(stream, version);
}

// Opens `path` and reads it as readFile does.
template <class Keep, class Accepts, class Read>
std::int64_t loadFile(const char* path, Keep&& keep, Accepts&& accepts, Read&& read,
                      std::int64_t refusal = kWrongVersion) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    const File file = File::openToRead(path);
    if (!file) return kNotOpened;
    codec::InStream stream(file.handle());
    return readFile(stream, keep, accepts, read, refusal);
  });
}

// Checks the version, stores the version word and continues with store(stream), which returns whether all was stored.
// The caller flushes the stream.
template <class Store>
std::int64_t storeFile(codec::OutStream& stream, FileKind kind, int version, Store&& store) {
  const bool isSaved = infoOf(kind).saves(version);
  // A save of a sheet stores the version word before it checks it.
  if (!isSaved && kind != FileKind::sheet) return kWrongVersion;
  const bool hasWordOfItsOwn = !startsWithTable(kind, version);
  if (hasWordOfItsOwn && !codec::writeRecord(stream, version, static_cast<std::int16_t>(version))) return kNotSaved;
  if (!isSaved) return kWrongVersion;
  return store(stream) ? kDone : kNotSaved;
}

// Creates `path` and stores as storeFile does; then the file must be flushed and closed without an error. A refused
// version leaves an empty file, or its word for a sheet; a failed write leaves the bytes that were stored before it.
template <class Store>
std::int64_t saveFile(FileKind kind, const char* path, int version, Store&& store) noexcept {
  return guarded(kNotSaved, [&]() -> std::int64_t {
    File file = File::openToWrite(path);
    if (!file) return kNotOpened;
    codec::OutStream stream(file.handle());
    const std::int64_t status = storeFile(stream, kind, version, store);
    // Errors from closing an empty file are ignored.
    if (stream.position() == 0) return status;
    const bool isFlushed = stream.flush();
    const bool isClosed = file.close();
    return isFlushed && isClosed ? status : kNotSaved;
  });
}

}  // namespace oldtorvio::frame
