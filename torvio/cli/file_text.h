// Words about files that several commands print.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "torvio/explain/file_map.h"

namespace torvio {

inline constexpr const char* kNoMemory = "cannot be read: not enough memory";

// Eight hexadecimal digits, or more.
std::string hex(std::uint64_t offset);
// "at 00000012 in tool.dimension1: needs 4 bytes, the file has 2".
std::string describe(const oldtorvio::explain::Fault& fault);

// A file of unknown kind is walked as a part file, up to its version word. Its report must not mention parts.
inline constexpr oldtorvio::explain::FileKind kFallbackKind = oldtorvio::explain::FileKind::part;
void nameVersionOfUnknown(oldtorvio::explain::FileReport& report);

}  // namespace torvio
