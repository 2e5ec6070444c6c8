// What torvio does, apart from its command line. Both give the exit code: 0 when all files are
// sound, 1 when one is not.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "src/map/file_map.h"

namespace torvio {

// Prints offset, size, field path and value of every field; for a damaged file up to the fault, and
// then what failed there.
int mapCommand(const std::string& path, std::optional<oldtorvio::map::FileKind> forced);

// Prints one line a file: path, kind, version, status, bytes walked of bytes there, fault.
int checkCommand(const std::vector<std::string>& paths, std::optional<oldtorvio::map::FileKind> forced);

}  // namespace torvio
