// Differences of files as JSON, one object a line.
#pragma once
#include <cstdint>
#include <string>

#include "torvio/compare/diff.h"
#include "torvio/explain/file_map.h"

namespace oldtorvio::compare {

std::string differenceJson(const Difference& difference);

// A file that was compared, beside what diffFiles says of it.
struct JudgedFile {
  const std::string& name;
  frame::FileKind kind;
  const explain::FileReport& report;
};
// The last line. `printed` is the number of lines before it.
std::string summaryJson(const FileDifferences& found, std::uint64_t printed, const JudgedFile& a, const JudgedFile& b);

}  // namespace oldtorvio::compare
