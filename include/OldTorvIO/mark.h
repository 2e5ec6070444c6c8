// Marks of a part or sheet.
#pragma once
#include <cstdint>
#include <vector>

namespace oldtorvio {

// Stored in 14 bytes at every version.
struct MarkEntry {
  std::uint32_t markWord1 = 0;
  std::uint16_t markShort = 0;
  std::uint32_t markWord2 = 0, markWord3 = 0;
};

using MarkList = std::vector<MarkEntry>;

}  // namespace oldtorvio
