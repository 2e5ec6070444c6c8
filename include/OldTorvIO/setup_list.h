// Setup entries of a part or special tool.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace oldtorvio {

// The fields are stored in this order at every version, 42 bytes; those marked "memory only" are not stored.
//
// A load of a part of version 2 or 3 creates continuation entries (setupShort1 is 8), each with 27 characters of a
// text. On a little-endian host the characters are bytes 2 to 28 of the entry in memory: the fields from setupShort2 to
// setupByte4 and the "memory only" bytes between them. On a big-endian host the fields have the same values. A save
// loses the characters in the "memory only" bytes.
struct SetupEntry {
  std::uint16_t setupShort1 = 0;  // type of the entry
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

// A list without entries is stored as its count only: a save loses current and the tail fields then.
struct SetupList {
  std::vector<SetupEntry> entries;
  SetupEntry current;
  std::uint8_t tailBlock[8] = {};
  std::uint32_t tailWord1 = 0, tailWord2 = 0;
};

}  // namespace oldtorvio
