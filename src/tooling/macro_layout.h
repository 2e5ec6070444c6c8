// Stored form of a macro after its version word.
#pragma once
#include "OldTorvIO/macro.h"
#include "src/frame/codec/describe.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio::codec {

template <>
struct Layout<OldMacro> {
  static bool describe(auto& io, auto& m) {
    return io.fields(FIELDS(m.macroHead, m.macroHeadSecond, m.macroHeadWord, m.macroBlock, m.macroBlockLong))
        && io.record(FIELDS(m.shapes))
        && io.list(FIELDS(m.items), kCountFirst)
        && io.since(60, [&] { return io.record(FIELDS(m.stationList)) && io.fields(FIELDS(m.macroTailWords)); })
        && io.since(80, [&] { return describeShapeTrailer(io, m.shapes); });
  }
};

}  // namespace oldtorvio::codec
