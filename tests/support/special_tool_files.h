// Small special tool files.
#pragma once
#include <numeric>

#include "tests/support/stored_forms.h"

namespace testing_support {

// A special tool file of one version: a tool of code 108 with the given third dimension and first
// symmetry byte, shapes of the types given, no setup entries.
inline Bytes specialToolFile(int version, const std::vector<int>& shapeTypes, float dimension3 = 0,
                             std::uint8_t symmetryByte = 0, std::int32_t firstValueCount = 0) {
  OldSpecialTool file;
  OldTool& tool = file.tool;
  tool.orientation = 0.5F;
  tool.shapeCode = 108;
  tool.dimension1 = 11;
  tool.dimension2 = 12;
  tool.dimension3 = dimension3;
  tool.firstValueCount = firstValueCount;
  tool.secondValueCount = 4;
  std::iota(std::begin(tool.firstValues), std::end(tool.firstValues), 20.0F);
  std::iota(std::begin(tool.secondValues), std::end(tool.secondValues), 30.0F);
  std::iota(std::begin(tool.extraValues), std::end(tool.extraValues), 40.0F);
  file.specialValue = 50;
  for (const int type : shapeTypes) {
    Maker values;
    storedShape(values, version, ShapeForm{type}, file.shapes.shapes.emplace_back());
  }
  return heldSpecialToolFile(version, file, symmetryByte);
}

}  // namespace testing_support
