// What the exported functions share: no exception leaves them, files are opened and closed in one place, and the
// version word is read, stored and checked in that order.
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

// Opens `path`, reads the version word and passes it to keep(version), even if it is then refused. If
// accepts(version), returns the status of read(stream, version), which starts after the version word.
template <class Keep, class Accepts, class Read>
std::int64_t loadFile(const char* path, Keep&& keep, Accepts&& accepts, Read&& read,
                      std::int64_t refusal = kWrongVersion) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    const File file = File::openToRead(path);
    if (!file) return kNotOpened;
    codec::InStream stream(file.handle());
    std::int16_t version = 0;
    if (!codec::readUnversioned(stream, version)) return kDamaged;
    keep(version);
    if (!accepts(version)) return refusal;
    return read(stream, version);
  });
}

// The same for a file of that kind.
template <class Keep, class Read>
std::int64_t loadFile(FileKind kind, const char* path, Keep&& keep, Read&& read) noexcept {
  return loadFile(path, keep, infoOf(kind).accepts, read, infoOf(kind).refusal);
}

// Writes with write(stream), then flushes and closes the file. All three must succeed.
template <class Write>
std::int64_t storeInto(File& file, Write&& write) {
  codec::OutStream stream(file.handle());
  const bool stored = write(stream);
  const bool flushed = stream.flush();
  const bool closed = file.close();
  return stored && flushed && closed ? kDone : kNotSaved;
}

// Creates `path` and writes it with write(stream). A failed write leaves the bytes that were stored before it.
template <class Write>
std::int64_t saveUnversioned(const char* path, Write&& write) noexcept {
  return guarded(kNotSaved, [&]() -> std::int64_t {
    File file = File::openToWrite(path);
    return file ? storeInto(file, write) : kNotOpened;
  });
}

// Creates `path`, checks the version, stores the version word and continues with write(stream). A refused version
// leaves an empty file; a failed write leaves the bytes that were stored before it.
template <class Accepts, class Write>
std::int64_t saveFile(const char* path, int version, Accepts&& accepts, Write&& write) noexcept {
  return guarded(kNotSaved, [&]() -> std::int64_t {
    File file = File::openToWrite(path);
    if (!file) return kNotOpened;
    if (!accepts(version)) return kWrongVersion;
    return storeInto(file, [&](codec::OutStream& stream) {
      return codec::writeRecord(stream, version, static_cast<std::int16_t>(version)) && write(stream);
    });
  });
}

}  // namespace oldtorvio::frame
