// Stored form of OldTool, ToolStation and ToolStationList.
#pragma once
#include <algorithm>
#include <cmath>
#include "OldTorvIO/tool_station.h"
#include "src/frame/codec/describe.h"

namespace oldtorvio {

inline constexpr int kTriangle = 107;
inline constexpr int kSpecialTool = 108;

inline constexpr std::uint32_t kHalfTurnSymmetry = 1;
inline constexpr std::uint32_t kQuarterTurnSymmetry = 2;

// The difference is taken in single precision and compared in double.
inline std::uint32_t symmetryOf(float dimension3) {
  const float fromHalf = dimension3 - 1.0F;
  if (std::fabs(static_cast<double>(fromHalf)) < 0.0001) return kHalfTurnSymmetry;
  const float fromQuarter = dimension3 - 2.0F;
  return std::fabs(static_cast<double>(fromQuarter)) < 0.0001 ? kQuarterTurnSymmetry : 0;
}

namespace codec {

template <>
struct Layout<OldTool> {
  static constexpr std::size_t kMinStoredSize = 76;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& tool, bool pathIsStored) {
    return io.afterRead(tool, "name becomes empty", [](auto& t) { t.name.clear(); })
        && io.fields(FIELDS(tool.orientation, tool.shapeCode))
        && io.when(equals(FIELDS(tool.shapeCode), kSpecialTool), [&] { return io.since(90, FIELDS(tool.specialBlock)); })
        && io.fields(FIELDS(tool.specialToolIndex))
        && io.when(custom("in a station list", pathIsStored), [&] {
             return io.when(equals(FIELDS(tool.shapeCode), kSpecialTool), FIELDS(tool.specialToolPath));
           })
        && io.fields(FIELDS(tool.auxWord1))
        && io.when(equals(FIELDS(tool.shapeCode), kTriangle), FIELDS(tool.dimension2, tool.dimension1, tool.dimension3))
        && io.when(notEquals(FIELDS(tool.shapeCode), kTriangle), FIELDS(tool.dimension1, tool.dimension2,
                                                                        tool.dimension3))
        && io.when(equals(FIELDS(tool.shapeCode), kSpecialTool), [&] {
             return io.afterRead(tool, "symmetryFlags is derived from dimension3: 1 near 1, 2 near 2, otherwise 0",
                                 [](auto& t) { t.symmetryFlags = symmetryOf(t.dimension3); });
           })
        && io.fields(FIELDS(tool.firstValueCount))
        // Four entries below version 110: the middle two do not exist there and are 0.
        && io.since(110, FIELDS(tool.firstValues))
        && io.below(110, FIELDS(tool.firstValues[0], tool.firstValues[1], tool.firstValues[2], tool.firstValues[5]))
        && io.below(110, [&] {
             return io.afterRead(tool.firstValues, "firstValues[3] and [4] become 0", [](auto& r) { r[3] = r[4] = 0; });
           })
        && io.fields(FIELDS(tool.secondValueCount))
        && io.since(110, FIELDS(tool.secondValues))
        && io.below(110, FIELDS(tool.secondValues[0], tool.secondValues[1], tool.secondValues[2], tool.secondValues[5]))
        && io.below(110, [&] {
             return io.afterRead(tool.secondValues, "secondValues[3] and [4] become 0", [](auto& r) { r[3] = r[4] = 0; });
           })
        && io.fields(FIELDS(tool.auxWord2, tool.auxWord3))
        && io.since(60, FIELDS(tool.extraValues))
        && io.since(110, FIELDS(tool.lateWords))
        && io.since(111, FIELDS(tool.tailBlock, tool.tailText));
  }
};

template <>
struct Layout<ToolStation> {
  static constexpr std::size_t kMinStoredSize = 83;
  static bool describe(auto& io, auto& s) {
    std::int32_t pairCount = 2;
    return io.fields(FIELDS(s.stationNumber, s.orientation, s.stationType, s.toolCount, s.stationValue, s.limits,
                            s.valueCount))
        && io.afterRead(s, "if stationType is 0, valueCount becomes at least 1",
                        [](auto& r) { if (r.stationType == 0) r.valueCount = std::max(r.valueCount, 1); })
        && io.fields(FIELDS(s.values, s.offsets, s.byteA, s.byteB, s.byteD, s.realC))
        && io.since(60, FIELDS(s.placeValue, s.placeWord))
        && io.since(61, FIELDS(s.wordsC, s.realsE))
        && io.since(90, FIELDS(s.wordA, s.realA, s.realB, s.wordB, s.realD, s.byteF, s.byteG, s.byteH, s.stationText,
                               s.byteC, s.byteE))
        && io.since(100, [&] {
             // Pair values after the second are read into the words that follow, some of which are then stored again.
             return io.fields(FIELDS(s.wordD, pairCount))
                 && io.require(atMost(FIELDS(pairCount), 9))
                 && io.leading(pairCount, FIELDS(s.pairValues[0], s.pairValues[1], s.wordE, s.wordF, s.realF, s.wordG,
                                                 s.wordH, s.wordI, s.wordJ))
                 && io.fields(FIELDS(s.wordE, s.wordF, s.realF));
           })
        && io.since(110, FIELDS(s.wordG))
        && io.since(112, FIELDS(s.wordH))
        && io.optionalTail([&] { return io.since(130, FIELDS(s.wordI, s.wordJ)); });
  }
};

template <>
struct Layout<ToolStationList> {
  static constexpr std::size_t kMinStoredSize = 8;
  static bool describe(auto& io, auto& l) {
    std::int32_t extraWordCount = 2;
    return io.fields(FIELDS(l.headerWord))
        && io.since(61, FIELDS(l.secondHeaderWord), otherwise(0))
        && io.since(90, FIELDS(l.stationModeWord), otherwise(2))
        && io.afterRead(l, "stationModeCode is bits 8 to 11 of stationModeWord; extraWords become 0", [](auto& r) {
             r.stationModeCode = (r.stationModeWord >> 8U) & 0xFU;
             r.extraWords[0] = r.extraWords[1] = 0;
           })
        && io.since(100, [&] {
             return io.fields(FIELDS(extraWordCount))
                 && io.require(within(FIELDS(extraWordCount), 1, 2))
                 && io.leading(extraWordCount, FIELDS(l.extraWords));
           })
        && io.list(FIELDS(l.stations, l.tools), kCountFirst, true);
  }
};

}  // namespace codec
}  // namespace oldtorvio
