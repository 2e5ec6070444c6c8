// Stored form of a special tool file after its version word.
#pragma once
#include "OldTorvIO/special_tool.h"
#include "src/frame/codec/describe.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio::codec {

template <>
struct Layout<OldSpecialTool> {
  static bool describe(auto& io, auto& s) {
    std::uint8_t symmetryByte = symmetryByteFor(s.tool);
    return io.record(FIELDS(s.tool), false)
        && io.fields(FIELDS(symmetryByte))
        && io.afterRead(s.tool, "symmetryByte 1 adds flag 1 to symmetryFlags, 2 adds flag 2", [&](auto& tool) {
             if (symmetryByte == 1) tool.symmetryFlags |= kHalfTurnSymmetry;
             if (symmetryByte == 2) tool.symmetryFlags |= kQuarterTurnSymmetry;
           })
        && io.reserved(59)
        && io.fields(FIELDS(s.specialValue))
        && io.record(FIELDS(s.shapes))
        && io.record(FIELDS(s.setupList));
  }

 private:
  // The byte that, added to what a load derives from the dimensions, restores the tool's flags.
  static std::uint8_t symmetryByteFor(const OldTool& tool) {
    const std::uint32_t derived = tool.shapeCode == kSpecialTool ? symmetryOf(tool.dimension3) : 0;
    const std::uint32_t missing = tool.symmetryFlags & ~derived;
    if ((missing & kHalfTurnSymmetry) != 0) return 1;
    return (missing & kQuarterTurnSymmetry) != 0 ? 2 : 0;
  }
};

}  // namespace oldtorvio::codec
