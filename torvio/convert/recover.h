// The sound beginning of a damaged file as a file that loads completely.
#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "torvio/convert/report.h"
#include "torvio/values/json.h"

namespace oldtorvio::convert {

struct Recovered {
  std::vector<std::byte> bytes;  // of the new file; none if the file is sound or nothing can be kept
  Report report;
  bool isSound = false;  // the file loads completely, so that there is nothing to recover
  std::string error;     // why there is no new file, as a text to print after the name of the file
};

// Keeps every field before the first fault. A list that is broken there keeps its complete elements; everything after
// it has the defaults of a new record. The new file has the version of the old one, or the nearest in which files of
// its kind are saved.
Recovered recover(std::span<const std::byte> bytes, explain::FileKind kind,
                  const std::string& encoding = std::string(values::kDefaultEncoding));

}  // namespace oldtorvio::convert
