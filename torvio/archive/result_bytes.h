// Results as bytes, on their way from one process to another of the same version of torvio.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/archive/scan.h"

namespace oldtorvio::archive {

// Everything but isKnown, the same bytes on every host.
std::string packedResults(std::span<const FileResult> results);

// Nothing unless the bytes come from packedResults(), complete and with nothing after them. The number of bytes bounds
// the memory.
std::optional<std::vector<FileResult>> unpackedResults(std::string_view bytes);

}  // namespace oldtorvio::archive
