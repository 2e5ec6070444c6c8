// One punch or cutting tool.
#pragma once
#include <cstdint>
#include <string>

namespace oldtorvio {

// Shape codes: 0 no tool, 1 round, 3 rectangle, 9 right angle shear, 33 laser cutting tool, 103 square, 104 single D,
// 105 double D, 106 obround, 107 triangle, 108 special tool (described by a file of its own), 109 and 110 rounded
// corners, 112 GR. "Carried" fields are only loaded and saved.
struct OldTool {
  float orientation = 0;
  std::int32_t shapeCode = 0;
  std::string name;                   // memory only; a load empties it
  std::int32_t specialToolIndex = 0;  // in an inventory: 1-based position of its file in specialToolFiles
  std::uint32_t auxWord1 = 0;         // carried
  float dimension1 = 0, dimension2 = 0, dimension3 = 0;  // size; for code 108 dimension3 is also the
                                                         // symmetry: 1 half turn, 2 quarter turn
  std::int32_t firstValueCount = 0;                      // how many of firstValues are used
  float firstValues[6] = {};                             // below 110, [3] and [4] are not stored: a load sets them to 0
  std::int32_t secondValueCount = 0;
  float secondValues[6] = {};                // like firstValues
  std::uint32_t auxWord2 = 0, auxWord3 = 0;  // carried
  // 1: the shape repeats after a half turn, 2: after a quarter turn. A load sets it from dimension3 for code 108 and
  // leaves it unchanged for other codes. The load of a special tool file adds the flag of the symmetry byte, for any
  // code.
  std::uint32_t symmetryFlags = 0;
  std::int32_t runtimeIndexA = -1, runtimeIndexB = -1;  // memory only
  float extraValues[2] = {};                            // since 60
  std::uint8_t specialBlock[24] = {};                   // since 90, code 108 only
  std::int16_t fileVersion = 0;                         // version word of the special tool file it was loaded from
  char specialToolPath[256] = {};                       // full path of the special tool file (code 108)
  std::uint8_t lateFlag = 0;                            // memory only
  std::uint8_t lateFlag2 = 0;                           // memory only
  std::uint32_t lateWords[4] = {};                      // since 110
  std::uint8_t tailBlock[8] = {};                       // since 111
  char tailText[256] = {};                              // since 111
};

}  // namespace oldtorvio
