// Tool shapes, the elements of all drawings (parts, sheets, machines, special tools, macros).
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace oldtorvio {

// One tool shape: a type, a placing point, up to nine geometry values, and fields of later versions. "Carried" fields
// are only loaded and saved.
struct Shape {
  std::int8_t type = 0;               // 4 and 5: see rangeValue; 7 heads a group
  std::int32_t auxWord = 0;           // carried
  std::uint32_t flags = 0;            // 128: member of a group
  float x = 0, y = 0;                 // placing point
  float values[9] = {};               // geometry; in a group head [0] is the 1-based position of the
                                      // first member, [1] the number of members, [2] the angle
  std::int32_t linkIndex = -1;        // carried
  std::uint32_t auxValue1 = 0;        // carried
  std::uint32_t extraValues[2] = {};  // carried
  std::int32_t textFlag = 0;          // above 0: text is stored
  std::uint32_t auxValue2 = 0;        // carried
  std::uint32_t auxValue3 = 0;        // carried
  std::uint32_t auxValue4 = 0;        // carried; for types 4 and 5 at versions 112 to 120 a load
                                      // sets it to rangeValue
  std::uint32_t trailerValue = 0;     // stored apart from the shape, by the owner of the list
  std::int32_t valueCount = 9;        // how many of values are stored, 0 to 9
  std::int32_t extraCount = 2;        // how many of extraValues are stored, 0 to 2
  std::uint32_t rangeValue = 0;       // versions 112 to 120 only
  std::uint8_t lateByte1 = 0, lateByte2 = 0, lateByte3 = 0;  // since 151
  std::uint32_t lateWord1 = 0;                               // since 151
  std::uint8_t lateByte4 = 0;                                // since 153
  std::uint32_t lateWord2 = 0;                               // since 158
  std::string note;                                          // since 160
  std::uint32_t tailPair[2] = {};                            // since 161
  char text[256] = {};                                       // raw bytes; a text that fills the field has no NUL
};

struct ShapeList {
  std::vector<Shape> shapes;  // in stored order
  std::int32_t listKind = 1;  // carried
  std::int32_t listTag = -1;  // carried
};

}  // namespace oldtorvio
