// Stored form of OldTool, ToolStation and ToolStationList.
#pragma once
#include <cmath>
#include "OldTorvIO/tool_station.h"
#include "src/frame/describe.h"

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

namespace frame {

template <>
struct Layout<OldTool> {
  static constexpr std::size_t kLeast = 76;
  static bool describe(auto& io, auto& tool, bool pathIsStored) {
    return io.repair(tool, [](auto& t) { t.name.clear(); })
        && io.fields(F(tool.orientation, tool.shapeCode))
        && io.when(tool.shapeCode == kSpecialTool, [&] { return io.since(90, F(tool.specialBlock)); })
        && io.fields(F(tool.specialToolIndex))
        && io.when(pathIsStored && tool.shapeCode == kSpecialTool, F(tool.specialToolPath))
        && io.fields(F(tool.auxWord1))
        && io.when(tool.shapeCode == kTriangle, F(tool.dimension2, tool.dimension1, tool.dimension3))
        && io.when(tool.shapeCode != kTriangle, F(tool.dimension1, tool.dimension2, tool.dimension3))
        && io.repair(tool, [](auto& t) { if (t.shapeCode == kSpecialTool) t.symmetryFlags = symmetryOf(t.dimension3); })
        && io.fields(F(tool.firstValueCount))
        // Four entries below version 110: the middle two do not exist there and are 0.
        && io.since(110, F(tool.firstValues))
        && io.below(110, F(tool.firstValues[0], tool.firstValues[1], tool.firstValues[2], tool.firstValues[5]))
        && io.below(110, [&] { return io.repair(tool.firstValues, [](auto& all) { all[3] = all[4] = 0; }); })
        && io.fields(F(tool.secondValueCount))
        && io.since(110, F(tool.secondValues))
        && io.below(110, F(tool.secondValues[0], tool.secondValues[1], tool.secondValues[2], tool.secondValues[5]))
        && io.below(110, [&] { return io.repair(tool.secondValues, [](auto& all) { all[3] = all[4] = 0; }); })
        && io.fields(F(tool.auxWord2, tool.auxWord3))
        && io.since(60, F(tool.extraValues))
        && io.since(110, F(tool.lateWords))
        && io.since(111, F(tool.tailBlock, tool.tailText));
  }
};

template <>
struct Layout<ToolStation> {
  static constexpr std::size_t kLeast = 83;
  static bool describe(auto& io, auto& s) {
    std::int32_t pairCount = 2;
    return io.fields(F(s.stationNumber, s.orientation, s.stationType, s.toolCount, s.stationValue, s.limits, s.valueCount))
        && io.repair(s, [](auto& r) { if (r.stationType == 0 && r.valueCount < 1) r.valueCount = 1; })
        && io.fields(F(s.values, s.offsets, s.byteA, s.byteB, s.byteD, s.realC))
        && io.since(60, F(s.placeValue, s.placeWord))
        && io.since(61, F(s.wordsC, s.realsE))
        && io.since(90, F(s.wordA, s.realA, s.realB, s.wordB, s.realD, s.byteF, s.byteG, s.byteH, s.stationText,
                          s.byteC, s.byteE))
        && io.since(100, [&] {
             // More than two pair values run on into the words behind them; what the version stores
             // of those is then read over.
             return io.fields(F(s.wordD, pairCount))
                 && io.atMost(F(pairCount), 9)
                 && io.leading(pairCount, F(s.pairValues[0], s.pairValues[1], s.wordE, s.wordF, s.realF, s.wordG,
                                            s.wordH, s.wordI, s.wordJ))
                 && io.fields(F(s.wordE, s.wordF, s.realF));
           })
        && io.since(110, F(s.wordG))
        && io.since(112, F(s.wordH))
        && io.tail([&] { return io.since(130, F(s.wordI, s.wordJ)); });
  }
};

template <>
struct Layout<ToolStationList> {
  static constexpr std::size_t kLeast = 8;
  static bool describe(auto& io, auto& l) {
    std::int32_t extraWordCount = 2;
    return io.fields(F(l.headerWord))
        && io.since(61, F(l.secondHeaderWord), otherwise(0))
        && io.since(90, F(l.stationModeWord), otherwise(2))
        && io.repair(l, [](auto& r) {
             r.stationModeCode = (r.stationModeWord >> 8U) & 0xFU;
             r.extraWords[0] = r.extraWords[1] = 0;
           })
        && io.since(100, [&] {
             return io.fields(F(extraWordCount))
                 && io.range(F(extraWordCount), 1, 2)
                 && io.leading(extraWordCount, F(l.extraWords));
           })
        && io.interleaved(F(l.stations, l.tools), true);
  }
};

}  // namespace frame
}  // namespace oldtorvio
