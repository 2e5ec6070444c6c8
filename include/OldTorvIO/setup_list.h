// Setup entries of a part or special tool.
#pragma once
#include <cstdint>
#include <vector>

namespace oldtorvio {

// Stored in this order at every version, 42 bytes.
struct SetupEntry {
  std::uint16_t setupShort1 = 0;  // the entry's type
  std::uint16_t setupShort2 = 0;
  std::uint8_t setupByte1 = 0;
  std::uint16_t setupShort3 = 0;
  std::uint8_t setupByte2 = 0;
  std::uint16_t setupShort4 = 0;
  std::uint8_t setupByte3 = 0;
  std::uint8_t setupBlock[8] = {};
  std::uint32_t setupWord1 = 0;
  std::uint8_t setupByte4 = 0;
  std::uint32_t setupWord2 = 0;
  std::uint16_t setupShort5 = 0;
  std::uint32_t setupWord3 = 0;
  float setupReal1 = -1.0F, setupReal2 = -1.0F;
  std::uint32_t memoryWord = 0;  // memory only
};

// A list without entries stores its count alone: current and the tail fields are then lost.
struct SetupList {
  std::vector<SetupEntry> entries;
  SetupEntry current;
  std::uint8_t tailBlock[8] = {};
  std::uint32_t tailWord1 = 0, tailWord2 = 0;
};

}  // namespace oldtorvio
