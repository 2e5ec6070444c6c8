// The commands of torvio. Each returns its exit code.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"

namespace torvio {

// With several files, the highest code is returned. A file that could not be read has a higher one than a damaged file,
// since it may be damaged as well.
enum ExitCode : int {
  kSound = 0,
  kDamaged = 1,  // or refused: of unknown kind or version
  kUsageError = 2,
  kNotReadOrWritten = 3,
};

// Prints offset, size, path and value of every field; for a damaged file up to the fault, and then what failed. If the
// file cannot be read, prints the reason on standard error.
ExitCode mapCommand(const std::string& path, std::optional<oldtorvio::explain::FileKind> forced);

// Prints one line for each file: its path, then kind, version, status, read and total bytes and the fault, or why it
// could not be read.
ExitCode checkCommand(const std::vector<std::string>& paths, std::optional<oldtorvio::explain::FileKind> forced);

// Prints the stored form of a kind of file, or of a record that files embed, as a Markdown table.
ExitCode formatCommand(const std::string& name);

// The names of kinds and records, in the order of the documentation.
std::vector<std::string> kindNames();
std::vector<std::string> recordNames();
std::optional<oldtorvio::explain::FileKind> kindNamed(const std::string& name);

}  // namespace torvio
