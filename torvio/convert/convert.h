// Files saved in another version, with a report of what that version cannot store.
#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "torvio/convert/report.h"
#include "torvio/values/json.h"

namespace oldtorvio::convert {

struct ConvertOptions {
  bool allowLoss = false;                          // otherwise a file that loses anything is refused
  std::string encoding{values::kDefaultEncoding};  // of the texts in the report
};

struct Converted {
  std::vector<std::byte> bytes;  // of the new file; none after an error
  Report report;
  std::string error;  // why there is no new file, as a text to print after the name of the file
};

// The new file loads completely, and its contents differ from the file only in what the report says.
Converted convert(std::span<const std::byte> bytes, explain::FileKind kind, int version,
                  const ConvertOptions& options = {});

}  // namespace oldtorvio::convert
