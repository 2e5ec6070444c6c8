// Files with random content of every kind and version, and records with any content at all.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "src/frame/file_kinds.h"
#include "tests/support/bytes.h"

namespace testing_support {

// The versions of which there are random files. Parts of versions 2 and 3 never load.
std::vector<int> versionsOf(oldtorvio::frame::FileKind kind);

// A file that loads.
Bytes randomFile(oldtorvio::frame::FileKind kind, int version, std::uint32_t seed);

// Fills a record of that kind with anything that it can hold, whether or not files store it.
void fillWithAnything(oldtorvio::frame::FileKind kind, void* record, std::uint32_t seed);

// Where two records of that kind differ first.
std::optional<std::string> differenceOf(oldtorvio::frame::FileKind kind, const void* one, const void* other);

}  // namespace testing_support
