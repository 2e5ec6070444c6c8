// What the oldest part layouts (versions 2, 3 and 5) make of their values.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"

namespace oldtorvio {

// How many values a shape of the type stores; of type 9 the fifth is not stored. An unknown type has
// none.
int oldValueCount(std::int8_t type);

// Types that keep bit value 1 of the flags.
bool keepsFirstFlag(std::int8_t type);

// A second angle beyond a full turn, for the types that have one, becomes the layout's own full turn.
inline constexpr float kFullTurnVersion5 = 6.2830853F;
inline constexpr float kFullTurnVersion3 = 6.283182F;
void limitToFullTurn(Shape& shape, float fullTurn);

// An arc that is next to nothing becomes a quarter turn.
void fixDegenerateArc(Shape& shape);

// The shapes of versions 2 and 3 in stored order: what one needs to know of those before it.
class OldShapeConverter {
 public:
  explicit OldShapeConverter(bool hasItems) : hasItems_(hasItems) {}
  // `before` is the number of shapes that the part has already.
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
  float real(int index) const;  // r0 to r3
  std::uint8_t byteB() const { return bytes[28]; }

  bool hasKnownType() const { return type() >= 1 && type() <= 17; }
  bool carriesText() const;  // of a known type
  int bytesBehind() const;   // dropped bytes between this record and the next
};

// The entry of a record that carries no text. Type 10 is the list's current entry, the others are
// appended.
SetupEntry setupEntryOf(const OldSetupRecord& record);
// Appends the entry of a text-carrying record and those that hold its text, 27 characters each.
void appendText(SetupList& list, const OldSetupRecord& record, const std::string& text);

// A version 5 list: entries of type 8 continue one that tells how many of them there are; more are
// dropped.
class ContinuationFilter {
 public:
  bool keeps(const SetupEntry& entry);

 private:
  int remaining_ = 0;
};

}  // namespace oldtorvio
