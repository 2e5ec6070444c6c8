// One slot of the process table of a part or sheet.
#pragma once
#include <cstdint>

#include "OldTorvIO/lazy_array.h"

namespace oldtorvio {

struct ProcessSlot {
  std::uint32_t slotWord1 = 0, slotWord2 = 0;
  std::uint8_t slotBlock[8] = {};
  std::uint32_t slotWord3 = 0, slotWord4 = 0;
  float firstLength = 0.25F;      // since 80, like the next three and slotKind; a load of an older
  float firstAngle = 0.7853982F;  // file sets these five to their defaults. Angles are in radians.
  float secondLength = 0.25F;
  float secondAngle = 0.7853982F;
  std::uint16_t toolUse = 0;           // since 90; 1: the slot has a tool
  std::uint8_t toolActive = 0;         // since 90; not 0: the tool is used
  std::uint8_t slotByte = 0;           // since 90
  std::uint8_t toolChoice = 0;         // since 90; 0 selects firstToolNumber, else secondToolNumber
  std::uint16_t firstToolNumber = 0;   // since 90; 1-based
  std::uint16_t secondToolNumber = 0;  // since 90; 1-based
  std::int32_t slotKind = 3;           // since 80
};

// All slots of a part or of a sheet, used or not: processSlots[0] to processSlots[249]. Like a plain array of 250, but
// memory is allocated only for slots that are written; LazyArray lists the other differences.
using ProcessSlots = LazyArray<ProcessSlot, 250>;

}  // namespace oldtorvio
