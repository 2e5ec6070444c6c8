// Which kind of file a file is.
#pragma once
#include <optional>
#include <string>

#include "torvio/explain/file_map.h"

namespace oldtorvio::map {

// From the extension where one is known (".spt", in any case), else from the content. The formats
// have no magic: every kind is tried, and the one that ends exactly at the end of the file is
// preferred, then one that can be read, then the one that comes furthest before its fault.
// Nothing for a file that cannot be opened, or whose version fits no kind.
std::optional<FileKind> detectKind(const std::string& path);

}  // namespace oldtorvio::map
