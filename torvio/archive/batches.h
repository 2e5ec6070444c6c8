// The files of an archive in portions, for processes that examine one after the other.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "torvio/archive/scan.h"

namespace oldtorvio::archive {

struct Batch {
  std::vector<FoundFile> files;   // to be examined
  std::vector<FileResult> ready;  // what needs no reading: unchanged files, folders that cannot be read
};

class Batches {
 public:
  static constexpr std::size_t kMostFiles = 2000;
  // Opening a file takes as long as reading this many bytes, or longer.
  static constexpr std::uint64_t kLeastWeight = 16U << 10U;

  // Of the options, `known` and `isExcluded` are used.
  Batches(std::shared_ptr<FileNames> names, ScanOptions options, std::uint64_t bytes)
      : names_(std::move(names)), options_(std::move(options)), bytes_(bytes) {}

  // The next files, in the order of the names, until they have that many bytes; nothing after the last.
  std::optional<Batch> next();

 private:
  std::shared_ptr<FileNames> names_;
  ScanOptions options_;
  std::uint64_t bytes_;
};

}  // namespace oldtorvio::archive
