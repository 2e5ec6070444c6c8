// A table of up to twenty steps.
#pragma once
#include <cstdint>
#include <vector>

namespace oldtorvio {

struct StepTable {
  std::uint8_t tableFlag = 0;  // since 80; 0 below
  std::uint32_t tableWord1 = 0;
  std::uint8_t tableBlock[8] = {};
  std::uint32_t tableWord2 = 0, tableWord3 = 0;
  std::int8_t stepCount = 0;  // stored steps, at most 20; below 1 none
  // The steps, as four columns.
  std::uint8_t stepByteA[20] = {255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
                                255, 255, 255, 255, 255, 255, 255, 255, 255, 255};
  std::uint32_t stepWord[20] = {};
  std::uint8_t stepByteB[20] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
  std::uint8_t stepByteC[20] = {};
  std::uint8_t memoryFlag1 = 1, memoryFlag2 = 1;  // memory only
  std::uint32_t memoryWords[3] = {};              // memory only
  std::uint8_t lateFlag = 0;                      // since 90
};

using StepTableList = std::vector<StepTable>;

}  // namespace oldtorvio
