// Stored form of Shape, ShapeList and the trailer that a list's owner stores apart.
#pragma once
#include "OldTorvIO/shape.h"
#include "src/frame/describe.h"

namespace oldtorvio::frame {

template <>
struct Layout<Shape> {
  static constexpr std::size_t kLeast = 49;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& s) {
    return io.fields(F(s.type, s.auxWord, s.flags, block(s.x, s.y), s.valueCount))
        && io.range(F(s.valueCount), 0, 9)
        && io.leading(s.valueCount, F(s.values))
        && io.fields(F(s.linkIndex, s.auxValue1, s.extraCount))
        && io.range(F(s.extraCount), 0, 2)
        && io.leading(s.extraCount, F(s.extraValues))
        && io.fields(F(s.textFlag))
        && io.when(s.textFlag > 0, F(s.text))
        && io.fields(F(s.auxValue2, s.auxValue3, s.auxValue4))
        && io.between(112, 120, [&] {
             return io.fields(F(s.rangeValue))
                 && io.repair(s, [](auto& r) { if (r.type == 4 || r.type == 5) r.auxValue4 = r.rangeValue; });
           })
        && io.since(151, F(s.lateByte1, s.lateByte2, s.lateByte3, s.lateWord1))
        && io.since(153, F(s.lateByte4))
        && io.since(158, F(s.lateWord2))
        && io.since(160, [&] { return io.lengthText(F(s.note)); })
        && io.tail([&] { return io.since(161, F(s.tailPair)); });
  }
};

template <>
struct Layout<ShapeList> {
  static constexpr std::size_t kLeast = 12;
  static bool describe(auto& io, auto& l) {
    return io.fields(F(l.listTag, l.listKind)) && io.countFirst(F(l.shapes));
  }
};

// One number for each shape that the list holds at that moment, without a count.
inline bool describeShapeTrailer(auto& io, auto& l) { return io.trailer(F(l.shapes), &Shape::trailerValue); }

}  // namespace oldtorvio::frame
