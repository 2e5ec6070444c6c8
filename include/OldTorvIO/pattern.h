// One placement of the tooling of a part.
#pragma once
#include <cstdint>
#include <utility>
#include <vector>

#include "OldTorvIO/pattern_item.h"
#include "OldTorvIO/profile.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/step_table.h"

namespace oldtorvio {

// A placement. It is a group if groupKind is 32000 to 32004, or to 32006 from version 110 on. The five bind columns are
// parallel: binding i is entry i of each.
struct Pattern {
  std::int32_t headWord = 0;
  std::uint32_t gridCount1 = 1, gridCount2 = 1;  // repeats of the placement
  std::uint32_t gridStep1 = 0, gridStep2 = 0;
  float originX = 0, originY = 0;
  float rotationCos = 1.0F, rotationSin = 0;
  PatternItemList items;                                      // one for each shape of the part in a part file
  std::uint32_t patternWord = 0;                              // group id of the placement
  std::uint8_t groupBlock[8] = {};                            // groups only
  std::int32_t groupKind = 0;                                 // a load changes any other kind to 0
  std::uint32_t groupWords[7] = {};                           // groups only
  ProfileList profiles;                                       // since 80
  std::int32_t transformKind = 1;                             // memory only
  float transform[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};           // memory only
  ShapeList scratchShapes;                                    // memory only
  StepTableList stepTables;                                   // since 80
  std::uint32_t bindWord1 = 0, bindWord2 = 0, bindWord3 = 0;  // groups, since 110
  std::uint32_t lateWord1 = 0;                                // groups, since 151
  std::uint8_t bindByte = 0;                                  // groups, since 110
  std::uint32_t bindWord4 = 0;                                // groups, since 110
  // Groups, since 110.
  std::uint16_t bindShorts[8] = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
  std::uint32_t lateWord2 = 0, lateWord3 = 0;                       // groups, since 151
  std::vector<std::pair<std::uint32_t, std::uint32_t>> bindFirst;   // groups, since 110
  std::vector<std::pair<std::uint32_t, std::uint32_t>> bindSecond;  // groups, since 110
  std::vector<std::uint32_t> bindThird;   // since 156; at 151 to 155 a load fills it with lateWord3
  std::vector<std::uint32_t> bindFourth;  // since 160
  std::vector<std::uint32_t> bindFifth;   // since 160
};

using PatternList = std::vector<Pattern>;

}  // namespace oldtorvio
