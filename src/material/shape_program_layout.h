// Stored form of shape programs, which machines and materials share.
#pragma once
#include "OldTorvIO/shape_program.h"
#include "src/frame/codec/describe.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"

namespace oldtorvio::codec {

template <>
struct Layout<GroupQuad> {
  static constexpr std::size_t kMinStoredSize = 16;
  static bool describe(auto& io, auto& q) { return io.fields(FIELDS(q.quadWords)); }
};

template <>
struct Layout<ShapeProgramGroup> {
  static constexpr std::size_t kMinStoredSize = 24;
  static bool describe(auto& io, auto& g) {
    return io.record(FIELDS(g.groupShapes))
        && io.list(FIELDS(g.groupQuads), kReplaced)
        && io.list(FIELDS(g.groupSteps), kReplaced)
        && io.list(FIELDS(g.groupSlots), kReplaced);
  }
};

template <>
struct Layout<ShapeProgram> {
  static constexpr std::size_t kMinStoredSize = 44;
  static bool describe(auto& io, auto& p) {
    return io.fields(FIELDS(p.programWord1, p.programWord2, p.programWord3, p.programWord4, p.programWord5,
                            p.programWord6, p.programValue1, p.programValue2, p.programValue3, p.programValue4))
        && io.list(FIELDS(p.programGroups), kReplaced)
        && io.since(158, FIELDS(p.programWord7));
  }
};

template <>
struct Layout<ShapeProgramEx> {
  static bool describe(auto& io, auto& p) {
    // If the program fails, for whatever reason, the walk continues after this record without the fields below.
    return io.endOnFailure([&] { return Layout<ShapeProgram>::describe(io, p); })
        && io.fields(FIELDS(p.extFlag1, p.extValue1, p.extValue2, p.extFlag2, p.extValue3, p.extFlag3));
  }
};

}  // namespace oldtorvio::codec
