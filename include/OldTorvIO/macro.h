// A small reusable piece of a part.
#pragma once
#include <cstdint>

#include "OldTorvIO/pattern_item.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/tool_station.h"

namespace oldtorvio {

struct OldMacro {
  std::uint8_t macroHead[16] = {};
  std::uint8_t macroHeadSecond[8] = {};
  std::uint32_t macroHeadWord = 0;
  ShapeList shapes;  // trailerValue since 80
  PatternItemList items;
  std::uint8_t macroBlock[8] = {};       // stored before the shapes
  std::uint8_t macroBlockLong[36] = {};  // stored before the shapes
  std::int16_t version = 0;              // version word of the file, even if it is refused
  ToolStationList stationList;           // since 60
  std::uint32_t macroTailWords[2] = {};  // since 60
};

}  // namespace oldtorvio
