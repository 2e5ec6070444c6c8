// The machining sequence of a part or sheet.
#pragma once
#include <cstdint>
#include <vector>

namespace oldtorvio {

struct WorkEntry {
  std::uint32_t workWord1 = 0;
  std::uint8_t workByte = 0;
  std::uint32_t workValue1 = 0, workValue2 = 0, workValue3 = 0, workValue4 = 0;
  std::uint32_t workValue5 = 0;
  std::uint32_t workWord2 = 0;
  std::uint32_t workWord3 = 0, workWord4 = 0, workWord5 = 0, workWord6 = 0;  // since 60
  std::uint32_t workWord7 = 0;                                               // since 61
  std::uint32_t workWord8 = 0;                                               // since 80
  std::uint32_t workWord9 = 0;                                               // since 130
  std::uint8_t workBlock[8] = {};                                            // since 130
};

using WorkList = std::vector<WorkEntry>;

}  // namespace oldtorvio
