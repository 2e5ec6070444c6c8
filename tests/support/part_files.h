// Small special tool files from hand-written bytes.
#pragma once
#include "tests/support/stored_forms.h"

namespace testing_support {

// A special tool file of one version: a tool of code 108 with the given third dimension and first
// symmetry byte, shapes of the types given, no setup entries.
inline Bytes specialToolFile(int version, const std::vector<int>& shapeTypes, float dimension3 = 0,
                             std::uint8_t symmetryByte = 0, std::int32_t firstValueCount = 0) {
  Bytes b;
  b.i16(version).f32(0.5F).i32(108);
  if (version >= 90) b.zeros(24);
  b.i32(0).i32(0).f32(11).f32(12).f32(dimension3);
  const auto row = [&](float first) {
    for (int i = 0; i < 6; ++i)
      if (version >= 110 || (i != 3 && i != 4)) b.f32(first + static_cast<float>(i));
  };
  b.i32(firstValueCount);
  row(20);
  b.i32(4);
  row(30);
  b.i32(0).i32(0);
  if (version >= 60) b.f32(40).f32(41);
  if (version >= 110) b.zeros(16);
  if (version >= 111) b.zeros(264);
  b.u8(symmetryByte).fill(59, 0xAB).f32(50);
  b.i32(-1).i32(1).i32(static_cast<std::int64_t>(shapeTypes.size()));
  for (const int type : shapeTypes) {
    Maker maker;
    Shape shape;
    storedShape(maker, version, ShapeForm{type, 9, 2, false, ""}, shape);
    b.add(maker.bytes);
  }
  return b.i32(0);
}

}  // namespace testing_support
