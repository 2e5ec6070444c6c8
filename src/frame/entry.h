// What every exported function has in common: no exception crosses, files open and close in one
// place, and the version word is read, kept and judged in one order.
#pragma once
#include <cstdint>
#include <new>

#include "src/frame/host/platform.h"
#include "src/frame/codec/reader.h"
#include "src/frame/status.h"
#include "src/frame/versions.h"
#include "src/frame/codec/writer.h"

namespace oldtorvio::frame {

// Runs a function's body; whatever it throws becomes its answer for "out of memory".
template <class Result, class Fn>
Result guarded(Result outOfMemory, Fn&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return outOfMemory;
  }
}

// Opens `path`, reads the version word, hands it to keep(version) and, if accepts(version), the
// stream behind it to read(stream, version), whose status is the result.
template <class Keep, class Accepts, class Read>
std::int64_t loadFile(const char* path, Keep&& keep, Accepts&& accepts, Read&& read) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    const File file = File::openToRead(path);
    if (!file) return kNotOpened;
    codec::InStream stream(file.handle());
    std::int16_t version = 0;
    if (!codec::readUnversioned(stream, version)) return kDamaged;
    keep(version);
    if (!accepts(version)) return kWrongVersion;
    return read(stream, version);
  });
}

// Stores what write(stream) gives and closes the file.
template <class Write>
std::int64_t storeInto(File& file, Write&& write) {
  codec::OutStream stream(file.handle());
  const bool stored = write(stream);
  const bool flushed = stream.flush();
  const bool closed = file.close();
  return stored && flushed && closed ? kDone : kNotSaved;
}

// Creates `path` and stores what write(stream) gives. A failed write leaves what had been stored before.
template <class Write>
std::int64_t saveUnversioned(const char* path, Write&& write) noexcept {
  return guarded(kNotSaved, [&]() -> std::int64_t {
    File file = File::openToWrite(path);
    return file ? storeInto(file, write) : kNotOpened;
  });
}

// Creates `path`, tests the version, stores the version word and what write(stream) gives. A refused
// version leaves an empty file; a failed write leaves what had been stored before it.
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
