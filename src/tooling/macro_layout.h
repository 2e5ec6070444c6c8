// Stored form of a macro behind its version word.
#pragma once
#include "OldTorvIO/macro.h"
#include "src/frame/describe.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio::frame {

template <>
struct Layout<OldMacro> {
  static bool describe(auto& io, auto& m) {
    return io.fields(F(m.macroHead, m.macroHeadSecond, m.macroHeadWord, m.macroBlock, m.macroBlockLong))
        && io.record(F(m.shapes))
        && io.countFirst(F(m.items))
        && io.since(60, [&] { return io.record(F(m.stationList)) && io.fields(F(m.macroTailWords)); })
        && io.since(80, [&] { return describeShapeTrailer(io, m.shapes); });
  }
};

}  // namespace oldtorvio::frame
