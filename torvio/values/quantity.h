// How often a part is nested on a sheet.
#pragma once
#include <cstdint>
#include <limits>

#include "OldTorvIO/part.h"

namespace oldtorvio::values {

// The sum of two counts, or the largest count.
inline std::uint64_t sumOf(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  return b > kMost - a ? kMost : a + b;
}

// The placements of a part, each with its repeats. Unlike those of the queries, it does not wrap at 32 bits.
inline std::uint64_t quantityOf(const TorvPart& part) {
  std::uint64_t quantity = 0;
  for (const Pattern& pattern : part.patterns)
    quantity = sumOf(quantity, std::uint64_t{pattern.gridCount1} * pattern.gridCount2);
  return quantity;
}

}  // namespace oldtorvio::values
