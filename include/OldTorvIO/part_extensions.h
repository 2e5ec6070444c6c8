// The shape lists that later versions added to a part.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/shape.h"

namespace oldtorvio {

// A load reads all shapes of the list into one object: a field that the file does not store for a shape keeps the value
// of the previous shape.
struct PlacedShapeList {
  std::uint8_t placedBlock[8] = {};
  ShapeList shapes;  // listKind and listTag are not stored here
};

struct ShapeGroup {
  ShapeList shapes;
  std::int32_t groupWord = 0;
  std::uint8_t groupByte = 0;  // since 152
};

struct ContourGroup {
  std::vector<Shape> shapes;
  std::uint32_t contourWord1 = 0, contourWord2 = 0, contourWord3 = 0;
  std::uint8_t contourByte = 0;  // since 155
};

struct BindingEntry {
  std::uint32_t entryWord1 = 0;  // stored after entryWord2
  std::uint32_t entryWord2 = 0;
  Shape shape;
};

struct BindingSet {
  std::vector<std::uint32_t> numbers;
  std::vector<BindingEntry> entries;
  std::uint32_t setWord = 0;
};

}  // namespace oldtorvio
