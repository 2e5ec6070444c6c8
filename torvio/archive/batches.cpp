#include "torvio/archive/batches.h"

#include <algorithm>
#include <utility>

namespace oldtorvio::archive {

std::optional<Batch> Batches::next() {
  Batch batch;
  std::uint64_t weight = 0;
  while (weight < bytes_ && batch.files.size() < kMostFiles && batch.ready.size() < kMostFiles) {
    auto file = names_->next();
    if (!file) break;
    if (isExcluded(*file, options_)) continue;
    FileResult measured = measure(*file);
    if (auto result = withoutReading(measured, options_)) {
      batch.ready.push_back(std::move(*result));
    } else {
      weight += std::max(measured.size.value_or(0), kLeastWeight);
      batch.files.push_back(std::move(*file));
    }
  }
  if (batch.files.empty() && batch.ready.empty()) return std::nullopt;
  return batch;
}

}  // namespace oldtorvio::archive
