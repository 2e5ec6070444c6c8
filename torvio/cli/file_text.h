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

// The map of a file of that kind. Of a file of unknown kind only the version word is known: the fault says why.
oldtorvio::explain::FileReport mapAs(std::span<const std::byte> bytes, std::optional<oldtorvio::explain::FileKind> kind,
                                     const oldtorvio::explain::MapSink& sink);

}  // namespace torvio
