// The rules of shapes, their lists and the trailers of lists that a table of fields does not show.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

constexpr std::size_t kBytesBeforeValueCount = 17;

int readShape(const Bytes& bytes, int version, Shape& shape, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadShape(s, version, shape); }, consumed);
}
Bytes stored(const Shape& shape, int version, bool* ok = nullptr) {
  return written([&](OutStream& s) { return WriteShape(s, version, shape); }, ok);
}

// The fields before the value count.
Bytes beginning(int type) { return Bytes().i8(type).i32(11).u32(128).f32(1.5F).f32(-2.5F); }

// A shape with the given counts of values and all other fields short; without text, below 112.
Bytes withCounts(int valueCount, int extraCount) {
  Bytes bytes = beginning(3).i32(valueCount);
  for (int i = 0; i < valueCount; ++i) bytes.f32(10.0F + static_cast<float>(i));
  bytes.i32(77).u32(78).i32(extraCount);
  for (int i = 0; i < extraCount; ++i) bytes.u32(static_cast<std::uint32_t>(200 + i));
  return bytes.i32(0).u32(81).u32(82).u32(83);
}

// The smallest stored shape of a type at a version from 112 to 120, or 121 without a range value.
Bytes ranged(int type, std::uint32_t auxValue4) {
  return beginning(type).i32(0).i32(-1).u32(0).i32(0).i32(0).u32(0).u32(0).u32(auxValue4);
}

TEST(ShapeCounts, CountOfValuesOutsideZeroToNineEndsTheLoad) {
  for (int count : {-1, 10, 11, 256, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    SCOPED_TRACE(count);
    Shape shape;
    std::size_t consumed = 0;
    EXPECT_EQ(readShape(beginning(2).i32(count).zeros(400), 80, shape, &consumed), 1);
    EXPECT_EQ(consumed, kBytesBeforeValueCount + 4);
    EXPECT_EQ(shape.type, 2);
    EXPECT_EQ(shape.auxWord, 11);
    EXPECT_EQ(shape.flags, 128U);
    EXPECT_EQ(shape.x, 1.5F);
    EXPECT_EQ(shape.y, -2.5F);
    EXPECT_EQ(shape.linkIndex, -1);
    EXPECT_EQ(shape.extraCount, 2);
  }
}

TEST(ShapeCounts, CountOfExtraValuesOutsideZeroToTwoEndsTheLoad) {
  for (int count : {-1, 3, 9, 256, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    SCOPED_TRACE(count);
    Shape shape;
    shape.auxValue2 = 99;
    shape.extraValues[0] = 98;
    std::size_t consumed = 0;
    EXPECT_EQ(readShape(beginning(2).i32(1).f32(4.5F).i32(77).u32(78).i32(count).zeros(400), 80, shape, &consumed), 1);
    EXPECT_EQ(consumed, kBytesBeforeValueCount + 4 + 4 + 4 + 4 + 4);
    EXPECT_EQ(shape.valueCount, 1);
    EXPECT_EQ(shape.values[0], 4.5F);
    EXPECT_EQ(shape.linkIndex, 77);
    EXPECT_EQ(shape.auxValue1, 78U);
    EXPECT_EQ(shape.extraValues[0], 98U);
    EXPECT_EQ(shape.auxValue2, 99U);
  }
}

TEST(ShapeCounts, SaveOfACountOutsideItsBoundsStopsBeforeWhatItCounts) {
  Maker m;
  Shape made;
  storedShape(m, 161, ShapeForm{}, made);
  constexpr std::size_t beforeExtraCount = kBytesBeforeValueCount + 4 + 36 + 8;
  const auto refused = [&](std::int32_t Shape::*field, int count, std::size_t countAt) {
    Shape shape = made;
    shape.*field = count;
    bool ok = true;
    const Bytes bytes = stored(shape, 161, &ok);
    EXPECT_FALSE(ok) << count;
    EXPECT_LE(bytes.size(), countAt + 4) << count;
    EXPECT_EQ(bytes.cut(countAt), m.bytes.cut(countAt)) << count;
  };
  for (int count : {-1, 10, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    refused(&Shape::valueCount, count, kBytesBeforeValueCount);
  for (int count : {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    refused(&Shape::extraCount, count, beforeExtraCount);
}

TEST(ShapeText, IsStoredOnlyAfterAFlagAboveZero) {
  for (int flag : {std::numeric_limits<int>::min(), -1, 0, 1, 2, 256, std::numeric_limits<int>::max()}) {
    SCOPED_TRACE(flag);
    Bytes bytes = beginning(3).i32(0).i32(-1).u32(0).i32(0).i32(flag);
    if (flag > 0) bytes.text(256, "from the file");
    bytes.u32(81).u32(82).u32(83);
    Shape shape;
    std::memcpy(shape.text, "held before", 12);
    std::size_t consumed = 0;
    EXPECT_EQ(readShape(bytes, 80, shape, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(shape.textFlag, flag);
    EXPECT_STREQ(shape.text, flag > 0 ? "from the file" : "held before");
    EXPECT_EQ(shape.auxValue2, 81U);
    EXPECT_EQ(shape.auxValue4, 83U);
    EXPECT_EQ(stored(shape, 80), bytes);
  }
}

TEST(ShapeText, WithoutANulIsLoadedAndStoredInFull) {
  const Bytes bytes = beginning(3).i32(0).i32(-1).u32(0).i32(0).i32(1).fill(256, 0x41).u32(0x42424242U).u32(82).u32(83);
  Shape shape;
  EXPECT_EQ(readShape(bytes, 80, shape), 0);
  for (char c : shape.text) EXPECT_EQ(c, 'A');
  EXPECT_EQ(stored(shape, 80), bytes);
}

TEST(Shape, RangeValueReplacesAuxValue4ForTypes4And5AtVersions112To120) {
  for (int version : {111, 112, 116, 120, 121}) {
    const bool inRange = version >= 112 && version <= 120;
    for (int type = -128; type <= 127; ++type) {
      SCOPED_TRACE("version " + std::to_string(version) + " type " + std::to_string(type));
      Bytes bytes = ranged(type, 7);
      if (inRange) bytes.u32(9);
      Shape shape;
      shape.rangeValue = 13;
      std::size_t consumed = 0;
      EXPECT_EQ(readShape(bytes, version, shape, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(shape.type, type);
      EXPECT_EQ(shape.auxValue4, inRange && (type == 4 || type == 5) ? 9U : 7U);
      EXPECT_EQ(shape.rangeValue, inRange ? 9U : 13U);
    }
  }
}

TEST(Shape, SaveStoresRangeValueAndAuxValue4AsTheyAre) {
  for (int version : {112, 116, 120}) {
    for (int type : {3, 4, 5, 6}) {
      Shape shape;
      EXPECT_EQ(readShape(ranged(type, 0).u32(0), version, shape), 0);
      shape.auxValue4 = 7;
      shape.rangeValue = 9;
      EXPECT_EQ(stored(shape, version), ranged(type, 7).u32(9)) << version << ' ' << type;
    }
  }
}

TEST(Shape, MissingRangeValueReplacesNothing) {
  for (int type : {4, 5}) {
    for (std::size_t cut = 0; cut < 4; ++cut) {
      const Bytes bytes = ranged(type, 7);
      Shape shape;
      shape.rangeValue = 13;
      EXPECT_EQ(readShape(Bytes(bytes).add(Bytes().u32(9).cut(cut)), 115, shape), 1);
      EXPECT_EQ(shape.auxValue4, 7U);
      EXPECT_EQ(shape.rangeValue, 13U);
    }
  }
}

// A shape of version 160 up to its note.
Bytes upToNote() { return withCounts(0, 0).zeros(3).u32(0).u8(0).u32(0); }

TEST(ShapeNote, LengthOfZeroOrBelowLeavesItAsItWas) {
  for (int length : {0, -1, -8, std::numeric_limits<int>::min()}) {
    SCOPED_TRACE(length);
    Shape shape;
    shape.note = "held before";
    std::size_t consumed = 0;
    const Bytes bytes = upToNote().i32(length).u32(0x0A0A0A0AU).u32(0x0B0B0B0BU);
    EXPECT_EQ(readShape(bytes, 161, shape, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(shape.note, "held before");
    EXPECT_EQ(shape.tailPair[0], 0x0A0A0A0AU);
    EXPECT_EQ(shape.tailPair[1], 0x0B0B0B0BU);
  }
}

TEST(ShapeNote, EveryLengthIsReadWithoutATerminator) {
  for (std::size_t length : {1U, 2U, 255U, 256U, 257U, 4095U, 4096U, 4097U, 100000U}) {
    const std::string note(length, 'n');
    const Bytes bytes = upToNote().lengthText(note).u32(0x0A0A0A0AU).u32(0x0B0B0B0BU);
    Shape shape;
    shape.note = "held before";
    EXPECT_EQ(readShape(bytes, 161, shape), 0) << length;
    EXPECT_EQ(shape.note, note) << length;
    EXPECT_EQ(shape.tailPair[1], 0x0B0B0B0BU) << length;
    EXPECT_EQ(stored(shape, 161), bytes) << length;
  }
}

TEST(ShapeNote, EndsAtItsFirstNulAndConsumesAllItsBytes) {
  const Bytes bytes = upToNote().i32(6).text(3, "ab").raw({'c', 'd', 'e'}).u32(0x0A0A0A0AU).u32(0x0B0B0B0BU);
  Shape shape;
  EXPECT_EQ(readShape(bytes, 161, shape), 0);
  EXPECT_EQ(shape.note, "ab");
  EXPECT_EQ(shape.note.size(), 2U);
  EXPECT_EQ(shape.tailPair[0], 0x0A0A0A0AU);
  EXPECT_EQ(stored(shape, 161), upToNote().lengthText("ab").u32(0x0A0A0A0AU).u32(0x0B0B0B0BU));
}

TEST(ShapeNote, LengthBeyondTheFileFailsAndKeepsTheOldText) {
  for (int length : {5, 4096, 2000000000, std::numeric_limits<int>::max()}) {
    Shape shape;
    shape.note = "held before";
    EXPECT_EQ(readShape(upToNote().i32(length).text(4, "four"), 161, shape), 1) << length;
    EXPECT_EQ(shape.note, "held before") << length;
  }
}

TEST(ShapeList, EmptyListStoresTwelveBytesTheTagFirst) {
  ShapeList list;
  list.listKind = 7;
  list.listTag = 9;
  EXPECT_EQ(written([&](auto& s) { return WriteShapeList(s, 180, list); }), Bytes().i32(9).i32(7).i32(0));
}

// Wherever the buffer ends, in whatever field of whatever shape.
TEST(ShapeList, IsStoredAsItsShapesOneByOneWhateverIsBeforeIt) {
  ShapeList list;
  for (int i = 0; i < 320; ++i) {
    Shape& shape = list.shapes.emplace_back();
    shape.auxWord = i;
    shape.valueCount = static_cast<decltype(shape.valueCount)>(i % 10);
    shape.extraCount = static_cast<decltype(shape.extraCount)>(i % 3);
    shape.values[0] = static_cast<float>(i);
    shape.note = std::string(static_cast<std::size_t>(i % 5), 'n');
  }
  for (const int version : {61, 180}) {
    Bytes expected = Bytes().i32(-1).i32(1).i32(320);
    for (const Shape& shape : list.shapes) expected.add(stored(shape, version));
    for (std::size_t front = 0; front < 160; ++front) {
      const Bytes all = written([&](OutStream& s) {
        std::byte* const to = s.room(front);
        if (front > 0) std::memset(to, 0, front);
        return WriteShapeList(s, version, list);
      });
      ASSERT_EQ(all, Bytes().zeros(front).add(expected)) << front << " at " << version;
    }
  }
}

TEST(ShapeTrailer, HasOneValueForEachShapeAndNoCount) {
  ShapeList list;
  EXPECT_EQ(written([&](auto& s) { return WriteShapeTrailer(s, list); }).size(), 0U);
  for (const std::size_t count : {1U, 3U, 1024U, 1025U, 5000U}) {
    list.shapes.resize(count);
    for (std::size_t i = 0; i < count; ++i) list.shapes[i].trailerValue = static_cast<std::uint32_t>(i + 1);
    Bytes expected;
    for (std::size_t i = 0; i < count; ++i) expected.u32(static_cast<std::uint32_t>(i + 1));
    EXPECT_EQ(written([&](auto& s) { return WriteShapeTrailer(s, list); }), expected);
    ShapeList loaded;
    loaded.shapes.resize(count);
    EXPECT_EQ(readFrom(expected, [&](auto& s) { return ReadShapeTrailer(s, loaded); }), 0);
    EXPECT_EQ(loaded.shapes.back().trailerValue, count);
    EXPECT_EQ(readFrom(expected.cut(expected.size() - 1), [&](auto& s) { return ReadShapeTrailer(s, loaded); }), 1);
  }
}

TEST(ShapeTrailer, FollowsTheShapesThatACountOfZeroKept) {
  ShapeList list;
  list.shapes.resize(2);
  readFrom(Bytes().i32(-1).i32(1).i32(0).i32(41).i32(42), [&](auto& s) {
    EXPECT_EQ(ReadShapeList(s, 180, list), 0);
    EXPECT_EQ(ReadShapeTrailer(s, list), 0);
    return 0;
  });
  EXPECT_EQ(list.shapes[1].trailerValue, 42U);
}

TEST(ShapeTrailer, CutAtAnyByteFailsAndKeepsTheValuesBeforeIt) {
  const Bytes bytes = Bytes().u32(101).u32(102).u32(103);
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    ShapeList list;
    list.shapes.resize(3);
    for (Shape& shape : list.shapes) shape.trailerValue = 7;
    EXPECT_EQ(readFrom(bytes.cut(cut), [&](InStream& s) { return ReadShapeTrailer(s, list); }), 1) << cut;
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(list.shapes[i].trailerValue, i < cut / 4 ? 101U + static_cast<std::uint32_t>(i) : 7U) << cut;
    }
  }
}

TEST(ShapeTrailer, ChangesNothingElseInTheShapes) {
  Maker m;
  ShapeList made;
  storedShapeList(m, 180, {ShapeForm{}}, made);
  ShapeList list = made;
  EXPECT_EQ(readFrom(Bytes().u32(1), [&](InStream& s) { return ReadShapeTrailer(s, list); }), 0);
  EXPECT_EQ(list.shapes[0].trailerValue, 1U);
  EXPECT_EQ(written([&](OutStream& s) { return WriteShapeList(s, 180, list); }), m.bytes);
  EXPECT_EQ(readFrom(Bytes(),
                     [&](InStream& s) {
                       ShapeList none;
                       return ReadShapeTrailer(s, none);
                     }),
            0)
      << "an empty list needs no file";
}

}  // namespace
