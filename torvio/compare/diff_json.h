// Differences of files as JSON, one object per line.
#pragma once
#include <cstdint>
#include <string>

#include "torvio/compare/diff.h"
#include "torvio/explain/file_map.h"

namespace oldtorvio::compare {

std::string differenceJson(const Difference& difference);

// A file that was compared, besides what diffFiles says about it.
struct JudgedFile {
  const std::string& name;
  frame::FileKind kind;
  const explain::FileReport& report;
};
// The last line. `printed` is the number of lines before it.
std::string summaryJson(const FileDifferences& found, std::uint64_t printed, const JudgedFile& a, const JudgedFile& b);

}  // namespace oldtorvio::compare
