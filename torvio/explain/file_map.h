// Complete files explained: what each byte is, and where a damaged file breaks.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "src/frame/file_kinds.h"
#include "torvio/explain/map.h"
#include "torvio/explain/offset_range.h"

namespace oldtorvio::explain {

using frame::FileKind;

// What a walk over a file found. The status is the one that the load of that kind returns.
struct FileReport {
  std::int64_t status = 0;
  std::optional<int> version;  // none if the file has fewer than two bytes
  std::uint64_t walked = 0;    // bytes up to the end of the last field
  std::uint64_t size = 0;      // bytes of the file
  std::optional<explain::Fault> fault;
  std::optional<explain::Fault> tolerated;  // the first fault after which the load continues

  // Whether the load failed only because it never reads files of this version to their end: parts of version 2 and 3.
  bool endsInRest() const { return fault && fault->path == kRest; }
  bool endsExactly() const { return status == 0 && walked == size; }
  // For a sound file with more bytes: "37 unread bytes after the last field".
  std::string unread() const;
};

// Eight hexadecimal digits, or more.
std::string hexOffset(std::uint64_t offset);
// "at 00000012 in tool.dimension1: needs 4 bytes, the file has 2".
std::string describe(const Fault& fault);

// Walks the bytes of a file as one of that kind and reports every field to the sink, the version word first; or only
// the fields that overlap the wanted range, and all remarks, which is much faster.
FileReport mapFile(std::span<const std::byte> bytes, FileKind kind, const explain::MapSink& sink,
                   OffsetRange wanted = {});
// For a file of unknown kind only the version word is reported; the fault says why.
FileReport mapFile(std::span<const std::byte> bytes, std::optional<FileKind> kind, const explain::MapSink& sink,
                   OffsetRange wanted = {});
// The same report without the fields, much faster for a sound file.
FileReport checkFile(std::span<const std::byte> bytes, FileKind kind);

// The same for the file at that path, which is opened once.
FileReport mapFile(const std::string& path, FileKind kind, const explain::MapSink& sink);
FileReport checkFile(const std::string& path, FileKind kind);

}  // namespace oldtorvio::explain
