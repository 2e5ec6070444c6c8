// Setup entries of a part or special tool.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace oldtorvio {

// The fields are stored in this order at every version, 42 bytes; those that are memory only are not.
//
// A load of a part of version 2 or 3 makes continuation entries (setupShort1 is 8) that carry 27 characters
// of a text. The characters lie where the fields from setupShort2 to setupByte4 are in memory, the memory
// only bytes between them included: on a little-endian host these are bytes 2 to 28 of the entry. On a
// big-endian host the fields have the same values. A save loses the characters between the fields.
struct SetupEntry {
  std::uint16_t setupShort1 = 0;  // the entry's type
  std::uint16_t setupShort2 = 0;
  std::uint8_t setupByte1 = 0;
  std::uint8_t memoryByte1 = 0;  // memory only
  std::uint16_t setupShort3 = 0;
  std::uint8_t setupByte2 = 0;
  std::uint8_t memoryByte2 = 0;  // memory only
  std::uint16_t setupShort4 = 0;
  std::uint8_t setupByte3 = 0;
  std::uint8_t memoryBytes[3] = {};  // memory only
  std::uint8_t setupBlock[8] = {};
  std::uint32_t setupWord1 = 0;
  std::uint8_t setupByte4 = 0;
  std::uint32_t setupWord2 = 0;
  std::uint16_t setupShort5 = 0;
  std::uint32_t setupWord3 = 0;
  float setupReal1 = -1.0F, setupReal2 = -1.0F;
  std::uint32_t memoryWord = 0;  // memory only
};
static_assert(offsetof(SetupEntry, setupShort2) == 2 && offsetof(SetupEntry, setupBlock) == 16 &&
                  offsetof(SetupEntry, setupByte4) == 28,
              "the text of a continuation entry is one run of 27 bytes");

// A list without entries stores only its count: current and the tail fields are then lost.
struct SetupList {
  std::vector<SetupEntry> entries;
  SetupEntry current;
  std::uint8_t tailBlock[8] = {};
  std::uint32_t tailWord1 = 0, tailWord2 = 0;
};

}  // namespace oldtorvio
