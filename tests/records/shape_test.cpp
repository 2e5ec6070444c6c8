// Shapes, their lists and the trailers of lists: stored bytes at every version, and what a load keeps.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "src/records/record_io.h"
#include "tests/support/bytes.h"
#include "tests/support/host.h"

namespace {

using oldtorvio::Shape;
using oldtorvio::ShapeList;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

// Every gate of a shape from both sides, and the ends of what a version word can hold.
const std::vector<int> kVersions = {0,   52,  111, 112, 113, 119, 120, 121, 150,  151,
                                    152, 153, 157, 158, 159, 160, 161, 162, 65535};
constexpr int kNever = 65536;
constexpr std::size_t kBytesBeforeValueCount = 17;

// A field in stored order: its bytes, the versions that store it, and how a shape holds it.
struct Field {
  std::string name;
  std::function<Bytes(const Shape&)> get;
  std::function<void(Shape&, const Bytes&)> put;
  Bytes stored;
  int since = 0;
  int until = 65535;
  std::size_t joined = 0;  // bytes behind it that arrive in the same block
  bool tail = false;       // a load goes well without it

  bool isStored(int version) const { return version >= since && version <= until; }
};

template <class At>
Field plain(std::string name, At at, const Bytes& stored, int since = 0, int until = 65535) {
  return {std::move(name),
          [at](const Shape& shape) {
            const auto& field = at(shape);
            return testing_support::bytesOf(field);
          },
          [at](Shape& shape, const Bytes& bytes) {
            auto& field = at(shape);
            ASSERT_EQ(sizeof field, bytes.size());
            testing_support::setFromBytes(field, bytes.span());
          },
          stored,
          since,
          until};
}

#define AT(field) \
#field, [=](auto& shape) -> auto& { return shape.field; }

// One shape with a value of its own in each field; `k` tells shapes of a list apart.
std::vector<Field> fieldsOf(int k = 0) {
  std::vector<Field> all;
  all.push_back(plain(AT(type), Bytes().i8(-3 - k)));
  all.push_back(plain(AT(auxWord), Bytes().i32(-19088743 + k)));
  all.push_back(plain(AT(flags), Bytes().u32(0x80000180U)));
  all.push_back(plain(AT(x), Bytes().f32(12.5F + static_cast<float>(k))));
  all.back().joined = 4;
  all.push_back(plain(AT(y), Bytes().f32(-0.75F)));
  all.push_back(plain(AT(valueCount), Bytes().i32(9)));
  for (int i = 0; i < 9; ++i) {
    all.push_back(plain(AT(values[i]), Bytes().f32(101.25F + static_cast<float>(i))));
  }
  all.push_back(plain(AT(linkIndex), Bytes().i32(0x0A0B0C0D)));
  all.push_back(plain(AT(auxValue1), Bytes().u32(0xF1F2F3F4U)));
  all.push_back(plain(AT(extraCount), Bytes().i32(2)));
  all.push_back(plain(AT(extraValues[0]), Bytes().u32(0xE1000002U)));
  all.push_back(plain(AT(extraValues[1]), Bytes().u32(0xE1000003U)));
  all.push_back(plain(AT(textFlag), Bytes().i32(1)));
  // Bytes behind the NUL are carried as well.
  all.push_back(plain(AT(text), Bytes().text(6, "label").fill(250, 0x5A)));
  all.push_back(plain(AT(auxValue2), Bytes().u32(0x22222202U)));
  all.push_back(plain(AT(auxValue3), Bytes().u32(0x33333303U)));
  all.push_back(plain(AT(auxValue4), Bytes().u32(0x44444404U)));
  all.push_back(plain(AT(rangeValue), Bytes().u32(0x66666606U), 112, 120));
  all.push_back(plain(AT(lateByte1), Bytes().u8(0x71), 151));
  all.push_back(plain(AT(lateByte2), Bytes().u8(0x72), 151));
  all.push_back(plain(AT(lateByte3), Bytes().u8(0x73), 151));
  all.push_back(plain(AT(lateWord1), Bytes().u32(0x81828384U), 151));
  all.push_back(plain(AT(lateByte4), Bytes().u8(0x74), 153));
  all.push_back(plain(AT(lateWord2), Bytes().u32(0x91929394U), 158));
  all.push_back({"note", [](const Shape& shape) { return Bytes().lengthText(shape.note); },
                 [](Shape& shape, const Bytes& bytes) {
                   const auto text = bytes.span().subspan(4);
                   shape.note.assign(reinterpret_cast<const char*>(text.data()), text.size());
                 },
                 Bytes().lengthText("a remark"), 160});
  all.push_back(plain(AT(tailPair[0]), Bytes().u32(0xC1C2C3C4U), 161));
  all.back().tail = true;
  all.push_back(plain(AT(tailPair[1]), Bytes().u32(0xD1D2D3D4U), 161));
  all.back().tail = true;
  all.push_back(plain(AT(trailerValue), Bytes().u32(0x77777707U), kNever));
  return all;
}

Bytes storedAt(const std::vector<Field>& fields, int version) {
  Bytes all;
  for (const Field& field : fields) {
    if (field.isStored(version)) all.add(field.stored);
  }
  return all;
}

Shape holding(const std::vector<Field>& fields) {
  Shape shape;
  for (const Field& field : fields) field.put(shape, field.stored);
  return shape;
}

// A shape of which no byte is what the fields would load.
Shape usedBefore(const std::vector<Field>& fields) {
  Shape shape;
  for (const Field& field : fields) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(shape, other);
  }
  return shape;
}

void expectSame(const std::vector<Field>& fields, const Shape& shape, const Shape& other) {
  for (const Field& field : fields) EXPECT_EQ(field.get(shape), field.get(other)) << field.name;
}

// What a load of a whole element leaves: the stored fields on top of `before`.
void expectLoaded(const std::vector<Field>& fields, int version, const Shape& shape, const Shape& before) {
  for (const Field& field : fields) {
    EXPECT_EQ(field.get(shape), field.isStored(version) ? field.stored : field.get(before)) << field.name;
  }
}

// Loads the first `cut` bytes on top of `before` and compares every field, the result and the place.
void checkLoad(const std::vector<Field>& fields, int version, const Bytes& bytes, const Shape& before) {
  Shape shape = before;
  std::size_t consumed = 0;
  const int result = readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadShape(s, version, shape); }, &consumed);

  int expectedResult = 0;
  bool reached = true;
  std::size_t end = 0;
  for (const Field& field : fields) {
    bool arrived = false;
    if (reached && field.isStored(version)) {
      end += field.stored.size();
      arrived = end + field.joined <= bytes.size();
      if (!arrived) {
        reached = false;
        expectedResult = field.tail ? 0 : 1;
      }
    }
    EXPECT_EQ(field.get(shape), arrived ? field.stored : field.get(before)) << field.name;
  }
  EXPECT_EQ(result, expectedResult);
  EXPECT_EQ(consumed, bytes.size());
}

int readShape(const Bytes& bytes, int version, Shape& shape, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadShape(s, version, shape); }, consumed);
}

int readList(const Bytes& bytes, int version, ShapeList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadShapeList(s, version, list); }, consumed);
}

// What stands in front of the value count.
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

TEST(FreshShape, HasTheDefaultsOfAnEmptyEntry) {
  const Shape shape;
  EXPECT_EQ(shape.type, 0);
  EXPECT_EQ(shape.auxWord, 0);
  EXPECT_EQ(shape.flags, 0U);
  EXPECT_EQ(shape.x, 0.0F);
  EXPECT_EQ(shape.y, 0.0F);
  for (float value : shape.values) EXPECT_EQ(value, 0.0F);
  EXPECT_EQ(shape.linkIndex, -1);
  EXPECT_EQ(shape.auxValue1, 0U);
  EXPECT_EQ(shape.extraValues[0], 0U);
  EXPECT_EQ(shape.extraValues[1], 0U);
  EXPECT_EQ(shape.textFlag, 0);
  EXPECT_EQ(shape.auxValue2, 0U);
  EXPECT_EQ(shape.auxValue3, 0U);
  EXPECT_EQ(shape.auxValue4, 0U);
  EXPECT_EQ(shape.trailerValue, 0U);
  EXPECT_EQ(shape.valueCount, 9);
  EXPECT_EQ(shape.extraCount, 2);
  for (char c : shape.text) EXPECT_EQ(c, '\0');
  EXPECT_EQ(shape.rangeValue, 0U);
  EXPECT_EQ(shape.lateByte1, 0);
  EXPECT_EQ(shape.lateByte2, 0);
  EXPECT_EQ(shape.lateByte3, 0);
  EXPECT_EQ(shape.lateWord1, 0U);
  EXPECT_EQ(shape.lateByte4, 0);
  EXPECT_EQ(shape.lateWord2, 0U);
  EXPECT_TRUE(shape.note.empty());
  EXPECT_EQ(shape.tailPair[0], 0U);
  EXPECT_EQ(shape.tailPair[1], 0U);
}

// A fresh shape as versions below 112 store it.
Bytes defaultShape() {
  return Bytes().zeros(kBytesBeforeValueCount).i32(9).zeros(36).i32(-1).zeros(4).i32(2).zeros(8).zeros(16);
}

TEST(FreshShape, StoresItsNineValuesAndTwoExtraValuesAsZeros) {
  EXPECT_EQ(written([](OutStream& s) { return oldtorvio::WriteShape(s, 62, Shape()); }), defaultShape());
  // At 161: three bytes, a word, a byte, a word, the length of the note and the pair.
  EXPECT_EQ(written([](OutStream& s) { return oldtorvio::WriteShape(s, 161, Shape()); }),
            defaultShape().zeros(3 + 4 + 1 + 4 + 4 + 8));
}

TEST(StoredShape, LoadsAndSavesTheSameBytesAtEveryVersion) {
  const auto fields = fieldsOf();
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    const Bytes bytes = storedAt(fields, version);
    checkLoad(fields, version, bytes, Shape());
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, version, holding(fields)); }, &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(StoredShape, GrowsByItsLateFieldsVersionByVersion) {
  const auto fields = fieldsOf();
  // Up to auxValue4 with nine values, two extra values and a text; the note has eight characters.
  constexpr std::size_t base = 17 + 4 + 36 + 4 + 4 + 4 + 8 + 4 + 256 + 12;
  const std::vector<std::pair<int, std::size_t>> sizes = {
      {111, base},      {112, base + 4},  {120, base + 4},  {121, base},      {150, base},
      {151, base + 7},  {152, base + 7},  {153, base + 8},  {157, base + 8},  {158, base + 12},
      {159, base + 12}, {160, base + 24}, {161, base + 32}, {162, base + 32},
  };
  for (const auto& [version, size] : sizes) {
    EXPECT_EQ(written([&, v = version](OutStream& s) { return oldtorvio::WriteShape(s, v, holding(fields)); }).size(),
              size)
        << version;
  }
}

TEST(StoredShape, ReloadIntoAUsedShapeLeavesFieldsThatTheVersionDoesNotStore) {
  const auto fields = fieldsOf();
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkLoad(fields, version, storedAt(fields, version), usedBefore(fields));
  }
}

TEST(StoredShape, CutAtEveryByteKeepsWhatArrivedWholeAndFailsUpToTheNote) {
  const auto fields = fieldsOf();
  for (int version : kVersions) {
    const Bytes bytes = storedAt(fields, version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      checkLoad(fields, version, bytes.cut(cut), Shape());
      checkLoad(fields, version, bytes.cut(cut), usedBefore(fields));
      if (HasFailure()) return;
    }
  }
}

TEST(StoredShape, CutInsideTheLastPairIsASuccess) {
  const auto fields = fieldsOf();
  const Bytes bytes = storedAt(fields, 161);
  for (std::size_t missing = 1; missing <= 8; ++missing) {
    Shape shape;
    EXPECT_EQ(readShape(bytes.cut(bytes.size() - missing), 161, shape), 0) << missing;
    EXPECT_EQ(shape.note, "a remark");
    EXPECT_EQ(shape.tailPair[0], missing <= 4 ? 0xC1C2C3C4U : 0U) << missing;
    EXPECT_EQ(shape.tailPair[1], 0U) << missing;
  }
  Shape shape;
  EXPECT_EQ(readShape(bytes.cut(bytes.size() - 9), 161, shape), 1);
}

TEST(StoredShape, PlacingPointArrivesAsOneBlock) {
  for (std::size_t cut = 9; cut < 17; ++cut) {
    Shape shape;
    shape.x = 7;
    shape.y = 8;
    EXPECT_EQ(readShape(beginning(1).cut(cut), 80, shape), 1) << cut;
    EXPECT_EQ(shape.x, 7.0F) << cut;
    EXPECT_EQ(shape.y, 8.0F) << cut;
  }
}

TEST(StoredShape, NeverHoldsItsTrailerValue) {
  for (int version : kVersions) {
    Shape plainShape, withTrailer;
    withTrailer.trailerValue = 0xFFFFFFFFU;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, version, withTrailer); }),
              written([&](OutStream& s) { return oldtorvio::WriteShape(s, version, plainShape); }))
        << version;
  }
}

TEST(ShapeCounts, EveryCountOfValuesTakesThatManyAndLeavesTheRest) {
  for (int valueCount = 0; valueCount <= 9; ++valueCount) {
    for (int extraCount = 0; extraCount <= 2; ++extraCount) {
      SCOPED_TRACE(std::to_string(valueCount) + " values, " + std::to_string(extraCount) + " extra");
      const Bytes bytes = withCounts(valueCount, extraCount);
      Shape shape;
      for (float& value : shape.values) value = -5.0F;
      for (std::uint32_t& value : shape.extraValues) value = 55;
      std::size_t consumed = 0;
      EXPECT_EQ(readShape(bytes, 80, shape, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(shape.valueCount, valueCount);
      EXPECT_EQ(shape.extraCount, extraCount);
      for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(shape.values[i], i < valueCount ? 10.0F + static_cast<float>(i) : -5.0F) << i;
      }
      for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(shape.extraValues[i], i < extraCount ? static_cast<std::uint32_t>(200 + i) : 55U) << i;
      }
      EXPECT_EQ(shape.linkIndex, 77);
      EXPECT_EQ(shape.auxValue1, 78U);
      EXPECT_EQ(shape.auxValue2, 81U);
      EXPECT_EQ(shape.auxValue3, 82U);
      EXPECT_EQ(shape.auxValue4, 83U);
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, 80, shape); }, &ok), bytes);
      EXPECT_TRUE(ok);
    }
  }
}

TEST(ShapeCounts, CutInsideTheValuesKeepsTheWholeOnesForEveryCount) {
  for (int valueCount = 1; valueCount <= 9; ++valueCount) {
    const Bytes bytes = withCounts(valueCount, 0);
    for (int cut = 0; cut < 4 * valueCount; ++cut) {
      SCOPED_TRACE(std::to_string(valueCount) + " values, cut " + std::to_string(cut));
      Shape shape;
      EXPECT_EQ(readShape(bytes.cut(kBytesBeforeValueCount + 4 + static_cast<std::size_t>(cut)), 80, shape), 1);
      for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(shape.values[i], i < cut / 4 ? 10.0F + static_cast<float>(i) : 0.0F) << i;
      }
      EXPECT_EQ(shape.linkIndex, -1);
    }
  }
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

TEST(ShapeCounts, SaveOfACountOutsideItsBoundsStopsInFrontOfWhatItCounts) {
  const auto fields = fieldsOf();
  const Bytes whole = storedAt(fields, 161);
  for (int count : {-1, 10, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    SCOPED_TRACE(count);
    Shape shape = holding(fields);
    shape.valueCount = count;
    bool ok = true;
    const Bytes bytes = written([&](OutStream& s) { return oldtorvio::WriteShape(s, 161, shape); }, &ok);
    EXPECT_FALSE(ok);
    EXPECT_LE(bytes.size(), kBytesBeforeValueCount + 4);
    EXPECT_EQ(bytes.cut(kBytesBeforeValueCount), whole.cut(kBytesBeforeValueCount));
  }
  constexpr std::size_t beforeExtraCount = kBytesBeforeValueCount + 4 + 36 + 8;
  for (int count : {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    SCOPED_TRACE(count);
    Shape shape = holding(fields);
    shape.extraCount = count;
    bool ok = true;
    const Bytes bytes = written([&](OutStream& s) { return oldtorvio::WriteShape(s, 161, shape); }, &ok);
    EXPECT_FALSE(ok);
    EXPECT_LE(bytes.size(), beforeExtraCount + 4);
    EXPECT_EQ(bytes.cut(beforeExtraCount), whole.cut(beforeExtraCount));
  }
}

TEST(ShapeText, IsStoredOnlyBehindAFlagAboveZero) {
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
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, 80, shape); }), bytes);
  }
}

TEST(ShapeText, WithoutANulIsCarriedInFull) {
  const Bytes bytes = beginning(3).i32(0).i32(-1).u32(0).i32(0).i32(1).fill(256, 0x41).u32(0x42424242U).u32(82).u32(83);
  Shape shape;
  EXPECT_EQ(readShape(bytes, 80, shape), 0);
  for (char c : shape.text) EXPECT_EQ(c, 'A');
  EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, 80, shape); }), bytes);
}

TEST(ShapeRange, ReplacesTheFourthAuxiliaryValueOfTypesFourAndFiveOnly) {
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

TEST(ShapeRange, SaveStoresBothValuesAsTheyStand) {
  for (int version : {112, 116, 120}) {
    for (int type : {3, 4, 5, 6}) {
      Shape shape;
      EXPECT_EQ(readShape(ranged(type, 0).u32(0), version, shape), 0);
      shape.auxValue4 = 7;
      shape.rangeValue = 9;
      EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, version, shape); }), ranged(type, 7).u32(9))
          << version << ' ' << type;
    }
  }
}

TEST(ShapeRange, AMissingRangeValueReplacesNothing) {
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

TEST(ShapeNote, EveryLengthIsTakenWithoutATerminator) {
  for (std::size_t length : {1U, 2U, 255U, 256U, 257U, 4095U, 4096U, 4097U, 100000U}) {
    const std::string note(length, 'n');
    const Bytes bytes = upToNote().lengthText(note).u32(0x0A0A0A0AU).u32(0x0B0B0B0BU);
    Shape shape;
    shape.note = "held before";
    EXPECT_EQ(readShape(bytes, 161, shape), 0) << length;
    EXPECT_EQ(shape.note, note) << length;
    EXPECT_EQ(shape.tailPair[1], 0x0B0B0B0BU) << length;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, 161, shape); }), bytes) << length;
  }
}

TEST(ShapeNote, EndsAtTheFirstNulButTakesAllItsBytes) {
  const Bytes bytes = upToNote().i32(6).text(3, "ab").raw({'c', 'd', 'e'}).u32(0x0A0A0A0AU).u32(0x0B0B0B0BU);
  Shape shape;
  EXPECT_EQ(readShape(bytes, 161, shape), 0);
  EXPECT_EQ(shape.note, "ab");
  EXPECT_EQ(shape.note.size(), 2U);
  EXPECT_EQ(shape.tailPair[0], 0x0A0A0A0AU);
  EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShape(s, 161, shape); }),
            upToNote().lengthText("ab").u32(0x0A0A0A0AU).u32(0x0B0B0B0BU));
}

TEST(ShapeNote, LongerThanTheFileIsAFailureThatKeepsTheOldText) {
  for (int length : {5, 4096, 2000000000, std::numeric_limits<int>::max()}) {
    Shape shape;
    shape.note = "held before";
    EXPECT_EQ(readShape(upToNote().i32(length).text(4, "four"), 161, shape), 1) << length;
    EXPECT_EQ(shape.note, "held before") << length;
  }
}

TEST(FreshShapeList, IsEmptyWithKindOneAndTagMinusOne) {
  const ShapeList list;
  EXPECT_TRUE(list.shapes.empty());
  EXPECT_EQ(list.listKind, 1);
  EXPECT_EQ(list.listTag, -1);
}

TEST(ShapeList, WithoutShapesStoresTagThenKindThenZero) {
  ShapeList list;
  list.listKind = 0x01020304;
  list.listTag = 0x05060708;
  for (int version : kVersions) {
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShapeList(s, version, list); }, &ok),
              Bytes().raw({8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0, 0}))
        << version;
    EXPECT_TRUE(ok);
  }
}

Bytes storedList(int version, int count) {
  Bytes bytes = Bytes().i32(-55).i32(66).i32(count);
  for (int k = 0; k < count; ++k) bytes.add(storedAt(fieldsOf(k), version));
  return bytes;
}

TEST(ShapeList, LoadsAndSavesItsShapesInOrderAtEveryVersion) {
  for (int version : kVersions) {
    for (int count = 0; count <= 3; ++count) {
      SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count));
      const Bytes bytes = storedList(version, count);
      ShapeList list;
      std::size_t consumed = 0;
      EXPECT_EQ(readList(bytes, version, list, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(list.listTag, -55);
      EXPECT_EQ(list.listKind, 66);
      ASSERT_EQ(list.shapes.size(), static_cast<std::size_t>(count));
      for (int k = 0; k < count; ++k) {
        expectLoaded(fieldsOf(k), version, list.shapes[static_cast<std::size_t>(k)], Shape());
      }
      EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShapeList(s, version, list); }), bytes);
    }
  }
}

// Wherever the room that is there ends, in whatever field of whatever shape.
TEST(ShapeList, IsStoredAsItsShapesOneByOneWhateverStandsInFront) {
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
    for (const Shape& shape : list.shapes)
      expected.add(written([&](OutStream& s) { return WriteShape(s, version, shape); }));
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

TEST(ShapeList, EachShapeStartsFreshWhateverTheListHeldBefore) {
  const auto fields = fieldsOf();
  // The first shape has a text, values and a note, the second stores none of them.
  const Bytes bare = upToNote().i32(0).u32(1).u32(2);
  const Bytes bytes = Bytes().i32(0).i32(0).i32(2).add(storedAt(fields, 161)).add(bare);
  ShapeList list;
  list.shapes.assign(5, usedBefore(fields));
  EXPECT_EQ(readList(bytes, 161, list), 0);
  ASSERT_EQ(list.shapes.size(), 2U);
  expectLoaded(fields, 161, list.shapes[0], Shape());
  EXPECT_EQ(list.shapes[1].trailerValue, 0U);
  EXPECT_EQ(list.shapes[1].note, "");
  EXPECT_EQ(list.shapes[1].text[0], '\0');
  EXPECT_EQ(list.shapes[1].text[255], '\0');
  for (float value : list.shapes[1].values) EXPECT_EQ(value, 0.0F);
  EXPECT_EQ(list.shapes[1].extraValues[1], 0U);
}

TEST(ShapeList, KeepsItsShapesWhenTheStoredCountIsZero) {
  const auto fields = fieldsOf();
  ShapeList list;
  list.shapes.assign(3, holding(fields));
  std::size_t consumed = 0;
  EXPECT_EQ(readList(Bytes().i32(21).i32(22).i32(0).fill(400, 0xEE), 161, list, &consumed), 0);
  EXPECT_EQ(consumed, 12U);
  EXPECT_EQ(list.listTag, 21);
  EXPECT_EQ(list.listKind, 22);
  ASSERT_EQ(list.shapes.size(), 3U);
  for (const Shape& shape : list.shapes) expectSame(fields, shape, holding(fields));
  // The trailer that follows has one value for each of the kept shapes.
  EXPECT_EQ(readFrom(
                Bytes().i32(1).i32(-2).i32(3).i32(4), [&](InStream& s) { return oldtorvio::ReadShapeTrailer(s, list); },
                &consumed),
            0);
  EXPECT_EQ(consumed, 12U);
  EXPECT_EQ(list.shapes[0].trailerValue, 1U);
  EXPECT_EQ(list.shapes[1].trailerValue, 0xFFFFFFFEU);
  EXPECT_EQ(list.shapes[2].trailerValue, 3U);
}

TEST(ShapeList, IsEmptiedByACountBelowZero) {
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    ShapeList list;
    list.shapes.resize(3);
    std::size_t consumed = 0;
    EXPECT_EQ(readList(Bytes().i32(21).i32(22).i32(count).fill(400, 0xEE), 161, list, &consumed), 0) << count;
    EXPECT_EQ(consumed, 12U) << count;
    EXPECT_TRUE(list.shapes.empty()) << count;
  }
}

TEST(ShapeList, CutInFrontOfItsShapesIsAFailureThatKeepsThem) {
  for (std::size_t cut = 0; cut < 12; ++cut) {
    ShapeList list;
    list.shapes.resize(3);
    list.listKind = 5;
    list.listTag = 6;
    std::size_t consumed = 0;
    EXPECT_EQ(readList(Bytes().i32(21).i32(22).i32(1).cut(cut), 161, list, &consumed), 1) << cut;
    EXPECT_EQ(consumed, cut);
    EXPECT_EQ(list.listTag, cut >= 4 ? 21 : 6) << cut;
    EXPECT_EQ(list.listKind, cut >= 8 ? 22 : 5) << cut;
    EXPECT_EQ(list.shapes.size(), 3U) << cut;
  }
}

TEST(ShapeList, CutAtEveryByteKeepsTheShapesThatWereComplete) {
  for (int version : {80, 115, 160, 161}) {
    const auto fields = fieldsOf();
    const std::size_t one = storedAt(fields, version).size();
    const Bytes bytes = storedList(version, 3);
    for (std::size_t cut = 12; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      ShapeList list;
      list.shapes.assign(4, usedBefore(fields));
      // From 161 on a shape counts without its last pair, so the last one may lack it.
      const std::size_t spared = version >= 161 ? 8 : 0;
      const std::size_t complete = (cut - 12 + spared) / one;
      EXPECT_EQ(readList(bytes.cut(cut), version, list), complete == 3 ? 0 : 1);
      ASSERT_EQ(list.shapes.size(), complete);
      for (std::size_t k = 0; k < complete; ++k) {
        EXPECT_EQ(list.shapes[k].type, -3 - static_cast<int>(k));
        EXPECT_EQ(list.shapes[k].auxValue4, 0x44444404U);
      }
    }
  }
}

TEST(ShapeList, RefusedCountInAShapeKeepsTheShapesInFrontOfIt) {
  const auto fields = fieldsOf();
  for (const Bytes& bad : {beginning(1).i32(10), beginning(1).i32(-1), beginning(1).i32(0).u32(0).u32(0).i32(3)}) {
    ShapeList list;
    EXPECT_EQ(readList(Bytes().i32(0).i32(0).i32(3).add(storedAt(fields, 161)).add(bad).fill(600, 0), 161, list), 1);
    ASSERT_EQ(list.shapes.size(), 1U);
    expectLoaded(fields, 161, list.shapes[0], Shape());
  }
}

TEST(ShapeList, CountBeyondTheFileIsAFailure) {
  for (int count : {2, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    ShapeList list;
    EXPECT_EQ(readList(Bytes().i32(0).i32(0).i32(count).zeros(88), 80, list), 1) << count;
    EXPECT_EQ(list.shapes.size(), 1U) << count;  // an all-zero shape takes 49 bytes
  }
}

TEST(ShapeList, SaveStopsAtAShapeThatCannotBeStored) {
  ShapeList list;
  list.shapes.resize(3);
  list.shapes[1].valueCount = 10;
  bool ok = true;
  const Bytes bytes = written([&](OutStream& s) { return oldtorvio::WriteShapeList(s, 80, list); }, &ok);
  EXPECT_FALSE(ok);
  const Bytes first = defaultShape();
  EXPECT_LE(bytes.size(), 12 + first.size() + kBytesBeforeValueCount + 4);
  EXPECT_EQ(bytes.cut(12 + first.size()), Bytes().i32(-1).i32(1).i32(3).add(first));
}

TEST(ShapeList, SaveIntoAFileThatTakesNothingIsFalse) {
  ShapeList list;
  list.shapes.resize(40000);
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(oldtorvio::WriteShapeList(stream, 161, list));
  }
  std::fclose(file);
}

TEST(ShapeTrailer, TakesFourBytesForEachShapeWithoutACount) {
  for (std::size_t count = 0; count <= 5; ++count) {
    SCOPED_TRACE(count);
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) bytes.u32(0xF0000010U + static_cast<std::uint32_t>(i));
    ShapeList list;
    list.shapes.resize(count);
    std::size_t consumed = 0;
    EXPECT_EQ(
        readFrom(
            Bytes(bytes).fill(9, 0x33), [&](InStream& s) { return oldtorvio::ReadShapeTrailer(s, list); }, &consumed),
        0);
    EXPECT_EQ(consumed, 4 * count);
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(list.shapes[i].trailerValue, 0xF0000010U + static_cast<std::uint32_t>(i)) << i;
    }
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteShapeTrailer(s, list); }, &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(ShapeTrailer, OfAnEmptyListNeedsNoFile) {
  ShapeList list;
  EXPECT_EQ(readFrom(Bytes(), [&](InStream& s) { return oldtorvio::ReadShapeTrailer(s, list); }), 0);
}

TEST(ShapeTrailer, CutAtEveryByteIsAFailureThatKeepsTheValuesInFront) {
  const Bytes bytes = Bytes().u32(101).u32(102).u32(103);
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    ShapeList list;
    list.shapes.resize(3);
    for (Shape& shape : list.shapes) shape.trailerValue = 7;
    EXPECT_EQ(readFrom(bytes.cut(cut), [&](InStream& s) { return oldtorvio::ReadShapeTrailer(s, list); }), 1) << cut;
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(list.shapes[i].trailerValue, i < cut / 4 ? 101U + static_cast<std::uint32_t>(i) : 7U) << cut;
    }
  }
}

TEST(ShapeTrailer, ChangesNothingElseInTheShapes) {
  const auto fields = fieldsOf();
  ShapeList list;
  list.shapes.assign(1, holding(fields));
  EXPECT_EQ(readFrom(Bytes().u32(1), [&](InStream& s) { return oldtorvio::ReadShapeTrailer(s, list); }), 0);
  list.shapes[0].trailerValue = holding(fields).trailerValue;
  expectSame(fields, list.shapes[0], holding(fields));
}

}  // namespace
