// One slot of the process table of a part or sheet.
#pragma once
#include <cstdint>

#include "OldTorvIO/lazy_array.h"

namespace oldtorvio {

struct ProcessSlot {
  std::uint32_t slotWord1 = 0, slotWord2 = 0;
  std::uint8_t slotBlock[8] = {};
  std::uint32_t slotWord3 = 0, slotWord4 = 0;
  float firstLength = 0.25F;      // since 80, as the four below; a load of an older file sets
  float firstAngle = 0.7853982F;  // these five to their defaults. Radians.
  float secondLength = 0.25F;
  float secondAngle = 0.7853982F;
  std::uint16_t toolUse = 0;           // since 90; 1: the slot names a tool
  std::uint8_t toolActive = 0;         // since 90; not 0: that tool counts
  std::uint8_t slotByte = 0;           // since 90
  std::uint8_t toolChoice = 0;         // since 90; 0 takes firstToolNumber, else secondToolNumber
  std::uint16_t firstToolNumber = 0;   // since 90; 1-based
  std::uint16_t secondToolNumber = 0;  // since 90; 1-based
  std::int32_t slotKind = 3;           // since 80
};

// The slots of a part or of a sheet, in use or not: processSlots[0] to processSlots[249]. Used like a plain
// array of 250, but takes memory only for slots that were written to; LazyArray lists what differs.
using ProcessSlots = LazyArray<ProcessSlot, 250>;

}  // namespace oldtorvio
