// The files of an archive in batches, for processes that examine one batch after the other.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "torvio/archive/scan.h"

namespace oldtorvio::archive {

struct Batch {
  std::vector<FoundFile> files;   // to be examined
  std::vector<FileResult> ready;  // results without reading: unchanged files, folders that cannot be read
};

class Batches {
 public:
  static constexpr std::size_t kMostFiles = 2000;
  // Opening a file takes as long as reading this many bytes, or longer.
  static constexpr std::uint64_t kLeastWeight = 16U << 10U;

  // Uses `known` and `isExcluded` of the options.
  Batches(std::shared_ptr<FileNames> names, ScanOptions options, std::uint64_t bytes)
      : names_(std::move(names)), options_(std::move(options)), bytes_(bytes) {}

  // The next files, in the order of their names, up to about that many bytes; nothing after the last.
  std::optional<Batch> next();

 private:
  std::shared_ptr<FileNames> names_;
  ScanOptions options_;
  std::uint64_t bytes_;
};

}  // namespace oldtorvio::archive
