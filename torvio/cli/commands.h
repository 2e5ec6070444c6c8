// What torvio does, apart from its command line. Each command returns its exit code.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"

namespace torvio {

// Of several files, the highest is returned. A file that could not be read outweighs a damaged one, as
// nothing is known about it.
enum ExitCode : int {
  kSound = 0,
  kDamaged = 1,  // or refused: no file of its kind
  kMisuse = 2,
  kNotReadOrWritten = 3,
};

// Prints offset, size, field path and value of every field; for a damaged file up to the fault, and
// then what failed there. A file that could not be read is an error on standard error.
ExitCode mapCommand(const std::string& path, std::optional<oldtorvio::explain::FileKind> forced);

// Prints one line a file, with its path and then kind, version, status, bytes walked of bytes there and
// fault, or why it could not be read.
ExitCode checkCommand(const std::vector<std::string>& paths, std::optional<oldtorvio::explain::FileKind> forced);

// Prints the stored form of a kind of file, or of a record that files embed, as a Markdown table.
ExitCode formatCommand(const std::string& name);

// The names of kinds and records, in the order of the documentation.
std::vector<std::string> kindNames();
std::vector<std::string> recordNames();
std::optional<oldtorvio::explain::FileKind> kindNamed(const std::string& name);

}  // namespace torvio
