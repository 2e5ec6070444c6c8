// What torvio does, apart from its command line. Each command gives the exit code: 0 when all files are
// sound, 1 when one is not.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"

namespace torvio {

// Prints offset, size, field path and value of every field; for a damaged file up to the fault, and
// then what failed there.
int mapCommand(const std::string& path, std::optional<oldtorvio::map::FileKind> forced);

// Prints one line a file: path, kind, version, status, bytes walked of bytes there, fault.
int checkCommand(const std::vector<std::string>& paths, std::optional<oldtorvio::map::FileKind> forced);

// Prints the stored form of a kind of file, or of a record that files embed, as a Markdown table.
int formatCommand(const std::string& name);
std::vector<std::string> formatNames();

}  // namespace torvio
