// Which kind of file a file is.
#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "torvio/explain/file_map.h"

namespace oldtorvio::explain {

struct Detected {
  FileKind kind;
  FileReport report;  // as checkFile of that kind
};

// From the extension where one is known (".spt", in any case), else from the content. The formats
// have no magic: every kind is tried, and the one that ends exactly at the end of the file is
// preferred, then one that can be read, then the one that comes furthest before its fault.
// Nothing for a file whose version fits no kind.
std::optional<Detected> detect(std::string_view path, std::span<const std::byte> bytes);

// The kind of the file at that path, which is opened once. A file that cannot be read has the kind of
// its extension, or none.
std::optional<FileKind> detectKind(const std::string& path);

}  // namespace oldtorvio::explain
