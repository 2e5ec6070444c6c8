// A table of up to twenty steps.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

namespace oldtorvio {

struct StepTable {
  static constexpr std::array<std::uint8_t, 20> filled(std::uint8_t value) {
    std::array<std::uint8_t, 20> all{};
    for (std::uint8_t& one : all) one = value;
    return all;
  }

  std::uint8_t tableFlag = 0;  // since 80; 0 below
  std::uint32_t tableWord1 = 0;
  std::uint8_t tableBlock[8] = {};
  std::uint32_t tableWord2 = 0, tableWord3 = 0;
  std::int8_t stepCount = 0;  // entries in the file, at most 20; below 1 none
  std::array<std::uint8_t, 20> stepByteA = filled(255);
  std::array<std::uint32_t, 20> stepWord = {};
  std::array<std::uint8_t, 20> stepByteB = filled(1);
  std::array<std::uint8_t, 20> stepByteC = {};
  std::uint8_t memoryFlag1 = 1, memoryFlag2 = 1;  // memory only
  std::uint32_t memoryWords[3] = {};              // memory only
  std::uint8_t lateFlag = 0;                      // since 90
};

using StepTableList = std::vector<StepTable>;

}  // namespace oldtorvio
