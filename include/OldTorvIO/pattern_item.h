// How one shape of a pattern is machined.
#pragma once
#include <cstdint>
#include <vector>

namespace oldtorvio {

struct PatternItem {
  std::uint32_t itemWord1 = 0;
  std::int32_t toolNumber = 0;    // 1-based station number; 0: no tool
  std::uint32_t memoryWord1 = 0;  // memory only
  std::uint32_t itemWord2 = 0;    // since 62, like all fields up to itemWord4; 0 below
  std::uint32_t itemPair1[2] = {};
  std::uint32_t itemPair2[2] = {};
  std::uint32_t itemShort1 = 0, itemShort2 = 0;
  std::uint32_t itemWord3 = 0, itemWord4 = 0;
  std::uint32_t memoryWord2 = 0;  // memory only
  std::uint32_t lateWord = 0;     // since 90
};

using PatternItemList = std::vector<PatternItem>;

}  // namespace oldtorvio
