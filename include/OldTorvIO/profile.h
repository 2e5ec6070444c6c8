// Profiles and their motion blocks.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/step_table.h"

namespace oldtorvio {

struct MotionBlock {
  std::int32_t motionKind = 5;  // 5 in a profile's first block, 3 in its second
  std::uint32_t motionWord = 0;
  float motionValue = 50.0F;
  float motionLength1 = 0.125F;
  float motionAngle1 = 1.5707964F;  // radians
  float motionAngle2 = 0.7853982F;  // radians
  float motionLength2 = 0.125F;
  std::uint32_t lateWord1 = 0, lateWord2 = 0;                 // since 151
  std::uint32_t lateWord3 = 0, lateWord4 = 0, lateWord5 = 0;  // since 152
  StepTable steps;
};

struct ProfileRecord {
  std::uint8_t profileHead[16] = {};
  std::int32_t profileIndex = -1;
  std::uint32_t profileWord1 = 0, profileWord2 = 0;
  std::uint32_t profileWord3 = 0;       // since 54
  std::uint32_t profileCondition1 = 0;  // not 0: one of the conditions for its tool to be used
  std::uint8_t profileBlock[8] = {};
  std::uint32_t profileCondition2 = 0;  // like profileCondition1
  std::uint32_t profileWord4 = 0;
  std::uint32_t profileWord5 = 0;                            // since 80
  std::int32_t profileLink = -1;                             // since 80
  std::uint32_t profileWords[14] = {};                       // since 80; [1] is a code
  MotionBlock firstBlock;                                    // since 80
  MotionBlock secondBlock = secondDefaults();                // since 80
  std::uint32_t tailWord1 = 0, tailWord2 = 0;                // since 80
  std::uint32_t tailWord3 = 0;                               // since 150
  std::uint8_t tailByte1 = 0, tailByte2 = 0, tailByte3 = 0;  // since 151
  std::uint32_t tailWord4 = 0;                               // since 151
  std::uint8_t tailByte4 = 0;                                // since 151
  std::uint8_t tailByte5 = 0;                                // since 152
  std::uint32_t tailWord5 = 0;                               // since 161

 private:
  static MotionBlock secondDefaults() {
    MotionBlock block;
    block.motionKind = 3;
    return block;
  }
};

using ProfileList = std::vector<ProfileRecord>;

}  // namespace oldtorvio
