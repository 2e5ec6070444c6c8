// Detects the kind of a file.
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
  FileReport report;  // of checkFile for that kind
};

// By the extension if it is ".spt" (in any case), otherwise from the contents. The formats have no magic number: every
// kind is tried. A kind that ends exactly at the end of the file is preferred, then one that reads nearly all of it
// without a fault, then the one that reads furthest. Returns nothing if no kind accepts the version.
std::optional<Detected> detect(std::string_view path, std::span<const std::byte> bytes);

// The kind of the file at this path, which is opened once. For a file that cannot be read, the kind of its extension,
// or nothing.
std::optional<FileKind> detectKind(const std::string& path);

}  // namespace oldtorvio::explain
