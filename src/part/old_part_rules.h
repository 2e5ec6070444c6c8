// How values of the oldest part layouts (versions 2, 3 and 5) are converted.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"

namespace oldtorvio {

// The number of values of a shape of this type; 0 for an unknown type. The fifth value of type 9 is not stored.
int oldValueCount(std::int8_t type);

// Whether shapes of this type keep the flag of value 1.
bool keepsFirstFlag(std::int8_t type);

// For types 2 and 5: a third value (an angle) beyond a full turn becomes the full turn of the layout, with its sign.
inline constexpr float kFullTurnVersion5 = 6.2830853F;
inline constexpr float kFullTurnVersion3 = 6.283182F;
void limitToFullTurn(Shape& shape, float fullTurn);

// An arc (type 9) with an angle below a thousandth of a degree becomes a quarter turn.
void fixDegenerateArc(Shape& shape);

// Converts the shapes of versions 2 and 3 in stored order: members of a group depend on the head before them.
class OldShapeConverter {
 public:
  explicit OldShapeConverter(bool hasItems) : hasItems_(hasItems) {}
  // `before`: the number of shapes already in the part.
  void convert(Shape& shape, std::size_t before);

 private:
  void toGroupFrame(Shape& shape) const;

  bool hasItems_;
  float headAngle_ = 0;
  float headX_ = 0, headY_ = 0;
};

// One record of a setup section of versions 2 and 3.
struct OldSetupRecord {
  static constexpr std::size_t kSize = 29;
  static constexpr std::size_t kTextSize = 27;

  std::uint8_t bytes[kSize] = {};

  std::uint16_t type() const;
  std::int16_t textCount() const;
  float real(int index) const;  // 0 to 3
  std::uint8_t byteB() const { return bytes[28]; }

  bool hasKnownType() const { return type() >= 1 && type() <= 17; }
  bool carriesText() const;  // for a known type
  int bytesAfter() const;    // discarded bytes between this record and the next
};

// The entry for a record without text. The caller stores type 10 as the list's current entry and appends the others.
SetupEntry setupEntryOf(const OldSetupRecord& record);
// Appends the entry for a record that carries a text, and continuation entries with 27 characters of the text each.
void appendText(SetupList& list, const OldSetupRecord& record, const std::string& text);

// For the setup list of version 5: an entry announces how many entries of type 8 continue it; surplus ones are dropped.
class ContinuationFilter {
 public:
  bool keeps(const SetupEntry& entry);

 private:
  int remaining_ = 0;
};

}  // namespace oldtorvio
