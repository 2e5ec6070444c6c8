// Stored form of Shape, ShapeList and the trailer that a list's owner stores apart.
#pragma once
#include "OldTorvIO/shape.h"
#include "src/frame/codec/describe.h"

namespace oldtorvio::codec {

template <>
struct Layout<Shape> {
  static constexpr std::size_t kMinStoredSize = 49;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& s) {
    return io.fields(FIELDS(s.type, s.auxWord, s.flags, block(s.x, s.y), s.valueCount))
        && io.require(within(FIELDS(s.valueCount), 0, 9))
        && io.leading(s.valueCount, FIELDS(s.values))
        && io.fields(FIELDS(s.linkIndex, s.auxValue1, s.extraCount))
        && io.require(within(FIELDS(s.extraCount), 0, 2))
        && io.leading(s.extraCount, FIELDS(s.extraValues))
        && io.fields(FIELDS(s.textFlag))
        && io.when(above(FIELDS(s.textFlag), 0), FIELDS(s.text))
        && io.fields(FIELDS(s.auxValue2, s.auxValue3, s.auxValue4))
        && io.between(112, 120, [&] {
             return io.fields(FIELDS(s.rangeValue))
                 && io.afterRead(s, "for types 4 and 5, auxValue4 becomes rangeValue",
                                 [](auto& r) { if (r.type == 4 || r.type == 5) r.auxValue4 = r.rangeValue; });
           })
        && io.since(151, FIELDS(s.lateByte1, s.lateByte2, s.lateByte3, s.lateWord1))
        && io.since(153, FIELDS(s.lateByte4))
        && io.since(158, FIELDS(s.lateWord2))
        && io.since(160, [&] { return io.lengthText(FIELDS(s.note)); })
        && io.optionalTail([&] { return io.since(161, FIELDS(s.tailPair)); });
  }
};

template <>
struct Layout<ShapeList> {
  static constexpr std::size_t kMinStoredSize = 12;
  static bool describe(auto& io, auto& l) {
    return io.fields(FIELDS(l.listTag, l.listKind)) && io.list(FIELDS(l.shapes), kCountFirst);
  }
};

// One number for each shape that the list holds at that moment, without a count.
inline bool describeShapeTrailer(auto& io, auto& l) { return io.trailer(FIELDS(l.shapes), &Shape::trailerValue); }

}  // namespace oldtorvio::codec
