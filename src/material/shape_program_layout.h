// Stored form of shape programs, which machines and materials share.
#pragma once
#include "OldTorvIO/shape_program.h"
#include "src/frame/describe.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"

namespace oldtorvio::frame {

template <>
struct Layout<GroupQuad> {
  static constexpr std::size_t kLeast = 16;
  static bool describe(auto& io, auto& q) { return io.fields(F(q.quadWords)); }
};

template <>
struct Layout<ShapeProgramGroup> {
  static constexpr std::size_t kLeast = 24;
  static bool describe(auto& io, auto& g) {
    return io.record(F(g.groupShapes))
        && io.countThenClear(F(g.groupQuads))
        && io.countThenClear(F(g.groupSteps))
        && io.countThenClear(F(g.groupSlots));
  }
};

template <>
struct Layout<ShapeProgram> {
  static constexpr std::size_t kLeast = 44;
  static bool describe(auto& io, auto& p) {
    return io.fields(F(p.programWord1, p.programWord2, p.programWord3, p.programWord4, p.programWord5, p.programWord6,
                       p.programValue1, p.programValue2, p.programValue3, p.programValue4))
        && io.countThenClear(F(p.programGroups))
        && io.since(158, F(p.programWord7));
  }
};

template <>
struct Layout<ShapeProgramEx> {
  static bool describe(auto& io, auto& p) {
    // Where the program fails, for whatever reason, its owner goes on without the fields below.
    return io.lenient([&] { return Layout<ShapeProgram>::describe(io, p); })
        && io.fields(F(p.extFlag1, p.extValue1, p.extValue2, p.extFlag2, p.extValue3, p.extFlag3));
  }
};

}  // namespace oldtorvio::frame
