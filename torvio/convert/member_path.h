// Members of records by their path at run time.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/values/types.h"

namespace oldtorvio::convert {

struct PathStep {
  std::string_view name;
  std::vector<std::size_t> indexes;  // "values[2][3]" has two
  std::size_t end = 0;               // of the step in the path, without its indexes
};
// "machine.triads[3]" has two steps.
std::vector<PathStep> stepsOf(std::string_view path);

// The value at a path in a record, or nothing if the record has none there.
struct Place {
  const values::Type* type = nullptr;
  const void* value = nullptr;
  const void* fresh = nullptr;  // the same in a new record; null if it has none, as for an element of a list of numbers
};
std::optional<Place> placeAt(const values::Type& type, const void* record, std::string_view path);

}  // namespace oldtorvio::convert
