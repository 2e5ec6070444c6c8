// The four shape lists that later versions added to a part, and the rules by which they differ.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "src/part/part_io.h"
#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

Bytes storedShapeBytes(int version, const ShapeForm& form) {
  Maker maker;
  Shape shape;
  storedShape(maker, version, form, shape);
  return maker.bytes;
}

TEST(PlacedShapes, SecondShapeKeepsWhatTheFileDoesNotStoreForIt) {
  const Bytes two = Bytes().i32(2).add(storedShapeBytes(160, {3, 9, 2, true, "noted"})).add(storedShapeBytes(160, {}));
  PlacedShapeList placed;
  ASSERT_EQ(readFrom(Bytes().zeros(8).add(two), [&](auto& s) { return ReadPlacedShapeList(s, 160, placed); }), 0);
  ASSERT_EQ(placed.shapes.shapes.size(), 2U);
  EXPECT_EQ(std::memcmp(placed.shapes.shapes[1].text, placed.shapes.shapes[0].text, 256), 0);
  EXPECT_NE(placed.shapes.shapes[1].text[0], '\0');
  EXPECT_EQ(placed.shapes.shapes[1].note, "noted");

  ShapeList plain;
  ASSERT_EQ(readFrom(Bytes().i32(0).i32(0).add(two), [&](auto& s) { return ReadShapeList(s, 160, plain); }), 0);
  EXPECT_EQ(plain.shapes[1].text[0], '\0');
  EXPECT_EQ(plain.shapes[1].note, "");
}

TEST(PlacedShapes, CountOfZeroEmptiesThemUnlikeAShapeList) {
  PlacedShapeList placed;
  placed.shapes.shapes.resize(2);
  EXPECT_EQ(readFrom(Bytes().zeros(8).i32(0), [&](auto& s) { return ReadPlacedShapeList(s, 110, placed); }), 0);
  EXPECT_TRUE(placed.shapes.shapes.empty());

  ShapeList plain;
  plain.shapes.resize(2);
  EXPECT_EQ(readFrom(Bytes().zeros(8).i32(0), [&](auto& s) { return ReadShapeList(s, 110, plain); }), 0);
  EXPECT_EQ(plain.shapes.size(), 2U);
}

TEST(PlacedShapes, ShapesReadBeforeAFaultStay) {
  PlacedShapeList placed;
  const Bytes cut = Bytes().zeros(8).i32(2).add(storedShapeBytes(110, {})).u8(1);
  EXPECT_EQ(readFrom(cut, [&](auto& s) { return ReadPlacedShapeList(s, 110, placed); }), 1);
  EXPECT_EQ(placed.shapes.shapes.size(), 1U);
}

TEST(PartExtensions, ReloadAddsNestShapeGroupsAndReplacesContourGroupsAndBindingSets) {
  Maker maker;
  const auto made = std::make_unique<TorvPart>();
  storedPart(maker, 161, {}, *made);
  const auto part = std::make_unique<TorvPart>();
  for (const std::size_t loads : {1U, 2U, 3U}) {
    ASSERT_EQ(readFrom(maker.bytes, [&](auto& s) { return ReadPartBody(s, 161, false, *part); }), 0);
    EXPECT_EQ(part->nestShapeGroups.size(), 2 * loads);
    EXPECT_EQ(part->contourGroups.size(), 2U);
    EXPECT_EQ(part->bindingSets.size(), 2U);
  }
}

TEST(NestShapeGroups, CountOfZeroOrBelowAddsNothingAndClearsNothing) {
  std::vector<ShapeGroup> groups(1);
  for (const int count : {0, -1, -2000000000}) {
    EXPECT_TRUE(readFrom(Bytes().i32(count), [&](auto& s) { return ReadNestShapeGroups(s, 180, groups); }));
    EXPECT_EQ(groups.size(), 1U);
  }
}

TEST(NestShapeGroups, GroupByteIsStoredFromVersion152) {
  for (const int version : {151, 152}) {
    std::vector<ShapeGroup> groups(1);
    groups[0].groupWord = 5;
    groups[0].groupByte = 9;
    const Bytes bytes = written([&](auto& s) { return WriteNestShapeGroups(s, version, groups); });
    Bytes expected;
    expected.i32(1).i32(5);
    if (version >= 152) expected.u8(9);
    EXPECT_EQ(bytes, expected.i32(-1).i32(1).i32(0));
    std::vector<ShapeGroup> loaded;
    ASSERT_TRUE(readFrom(bytes, [&](auto& s) { return ReadNestShapeGroups(s, version, loaded); }));
    EXPECT_EQ(loaded[0].groupByte, version >= 152 ? 9 : 0);
  }
}

TEST(ContourGroups, AreDeletedBeforeTheirCountIsRead) {
  std::vector<ContourGroup> groups(3);
  EXPECT_FALSE(readFrom(Bytes().zeros(3), [&](auto& s) { return ReadContourGroups(s, 180, groups); }));
  EXPECT_TRUE(groups.empty());
}

TEST(ContourGroups, ContourByteIsStoredFromVersion155) {
  for (const int version : {154, 155}) {
    std::vector<ContourGroup> groups(1);
    groups[0].contourWord3 = 5;
    groups[0].contourByte = 9;
    const Bytes bytes = written([&](auto& s) { return WriteContourGroups(s, version, groups); });
    Bytes expected;
    expected.i32(1).i32(0).i32(0).i32(5).i32(0);
    if (version >= 155) expected.u8(9);
    EXPECT_EQ(bytes, expected);
    std::vector<ContourGroup> loaded;
    ASSERT_TRUE(readFrom(bytes, [&](auto& s) { return ReadContourGroups(s, version, loaded); }));
    EXPECT_EQ(loaded[0].contourByte, version >= 155 ? 9 : 0);
  }
}

TEST(BindingSets, AreEmptiedOnlyBehindACountThatCouldBeRead) {
  std::vector<BindingSet> sets(3);
  EXPECT_FALSE(readFrom(Bytes().zeros(3), [&](auto& s) { return ReadBindingSets(s, 180, sets); }));
  EXPECT_EQ(sets.size(), 3U);
  EXPECT_TRUE(readFrom(Bytes().i32(0), [&](auto& s) { return ReadBindingSets(s, 180, sets); }));
  EXPECT_TRUE(sets.empty());
}

TEST(BindingSets, SetWithoutNumbersAndEntriesStoresTwelveBytes) {
  std::vector<BindingSet> sets(1);
  sets[0].setWord = 7;
  EXPECT_EQ(written([&](auto& s) { return WriteBindingSets(s, 180, sets); }), Bytes().i32(1).i32(7).i32(0).i32(0));
}

TEST(BindingSets, SecondEntryWordIsStoredFirst) {
  std::vector<BindingSet> sets(1);
  sets[0].entries.resize(1);
  sets[0].entries[0].entryWord1 = 1;
  sets[0].entries[0].entryWord2 = 2;
  const Bytes bytes = written([&](auto& s) { return WriteBindingSets(s, 161, sets); });
  EXPECT_EQ(bytes.cut(24), Bytes().i32(1).i32(0).i32(0).i32(1).i32(2).i32(1));
}

TEST(BindingSets, SetThatFailsIsNotKept) {
  std::vector<BindingSet> sets;
  const Bytes bytes = Bytes().i32(2).i32(1).i32(0).i32(0).i32(2).i32(5).i32(1);
  EXPECT_FALSE(readFrom(bytes, [&](auto& s) { return ReadBindingSets(s, 161, sets); }));
  EXPECT_EQ(sets.size(), 1U);
}

}  // namespace

// The stored forms of the four lists once more, each value written down where it stands in the file.
namespace {
namespace by_hand {

// A shape of two values and one extra value. `n` makes its numbers its own.
struct ShapeText {
  std::uint32_t n = 0;
  bool text = false;
  std::string note;
};

Bytes shapeBytes(int version, const ShapeText& t) {
  Bytes b = Bytes().i8(3).u32(t.n + 1).u32(t.n + 2).f32(1.5F).f32(-1.5F).i32(2).f32(0.5F).f32(0.25F).u32(t.n + 3);
  b.u32(t.n + 4).i32(1).u32(t.n + 5).i32(t.text ? 1 : 0);
  if (t.text) b.fill(256, static_cast<std::uint8_t>(t.n + 6));
  b.u32(t.n + 7).u32(t.n + 8).u32(t.n + 9);
  if (version >= 112 && version <= 120) b.u32(t.n + 10);
  if (version >= 151) b.u8(0x51).u8(0x52).u8(0x53).u32(t.n + 11);
  if (version >= 153) b.u8(0x54);
  if (version >= 158) b.u32(t.n + 12);
  if (version >= 160) b.lengthText(t.note);
  if (version >= 161) b.u32(t.n + 13).u32(t.n + 14);
  return b;
}

Shape shapeOf(int version, const ShapeText& t) {
  Shape s;
  s.type = 3;
  s.auxWord = static_cast<std::int32_t>(t.n + 1);
  s.flags = t.n + 2;
  s.x = 1.5F;
  s.y = -1.5F;
  s.valueCount = 2;
  s.values[0] = 0.5F;
  s.values[1] = 0.25F;
  s.linkIndex = static_cast<std::int32_t>(t.n + 3);
  s.auxValue1 = t.n + 4;
  s.extraCount = 1;
  s.extraValues[0] = t.n + 5;
  s.textFlag = t.text ? 1 : 0;
  if (t.text) std::memset(s.text, static_cast<int>(t.n + 6), sizeof s.text);
  s.auxValue2 = t.n + 7;
  s.auxValue3 = t.n + 8;
  s.auxValue4 = t.n + 9;
  if (version >= 112 && version <= 120) s.rangeValue = t.n + 10;
  if (version >= 151) {
    s.lateByte1 = 0x51;
    s.lateByte2 = 0x52;
    s.lateByte3 = 0x53;
    s.lateWord1 = t.n + 11;
  }
  if (version >= 153) s.lateByte4 = 0x54;
  if (version >= 158) s.lateWord2 = t.n + 12;
  if (version >= 160) s.note = t.note;
  if (version >= 161) {
    s.tailPair[0] = t.n + 13;
    s.tailPair[1] = t.n + 14;
  }
  return s;
}

void expectSame(const Shape& got, const Shape& want) {
  EXPECT_EQ(got.type, want.type);
  EXPECT_EQ(got.auxWord, want.auxWord);
  EXPECT_EQ(got.flags, want.flags);
  EXPECT_EQ(got.x, want.x);
  EXPECT_EQ(got.y, want.y);
  EXPECT_EQ(got.valueCount, want.valueCount);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(got.values[i], want.values[i]) << i;
  EXPECT_EQ(got.linkIndex, want.linkIndex);
  EXPECT_EQ(got.auxValue1, want.auxValue1);
  EXPECT_EQ(got.extraCount, want.extraCount);
  EXPECT_EQ(got.extraValues[0], want.extraValues[0]);
  EXPECT_EQ(got.extraValues[1], want.extraValues[1]);
  EXPECT_EQ(got.textFlag, want.textFlag);
  EXPECT_EQ(std::memcmp(got.text, want.text, sizeof got.text), 0);
  EXPECT_EQ(got.auxValue2, want.auxValue2);
  EXPECT_EQ(got.auxValue3, want.auxValue3);
  EXPECT_EQ(got.auxValue4, want.auxValue4);
  EXPECT_EQ(got.trailerValue, want.trailerValue);
  EXPECT_EQ(got.rangeValue, want.rangeValue);
  EXPECT_EQ(got.lateByte1, want.lateByte1);
  EXPECT_EQ(got.lateByte2, want.lateByte2);
  EXPECT_EQ(got.lateByte3, want.lateByte3);
  EXPECT_EQ(got.lateWord1, want.lateWord1);
  EXPECT_EQ(got.lateByte4, want.lateByte4);
  EXPECT_EQ(got.lateWord2, want.lateWord2);
  EXPECT_EQ(got.note, want.note);
  EXPECT_EQ(got.tailPair[0], want.tailPair[0]);
  EXPECT_EQ(got.tailPair[1], want.tailPair[1]);
}

void expectSame(const std::vector<Shape>& got, const std::vector<Shape>& want) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) expectSame(got[i], want[i]);
}

const ShapeText kFirst{100, true, "first"}, kSecond{200, false, "second"};

// Each of the four lists: what a version stores, the record that it gives, its reader and writer.
struct PlacedCase {
  using Record = PlacedShapeList;
  static constexpr int kSince = 102;
  static std::size_t firstShapeAt(int) { return 12; }
  static Bytes bytes(int version) {
    Bytes b = Bytes().raw({1, 2, 3, 4, 5, 6, 7, 8}).i32(2);
    return b.add(shapeBytes(version, kFirst)).add(shapeBytes(version, kSecond));
  }
  static Record record(int version) {
    Record r;
    for (int i = 0; i < 8; ++i) r.placedBlock[i] = static_cast<std::uint8_t>(i + 1);
    r.shapes.shapes = {shapeOf(version, kFirst), shapeOf(version, kSecond)};
    return r;
  }
  // The one shape that takes all stored shapes in turn has the text of the shape before.
  static Record loaded(int version) {
    Record r = record(version);
    std::memset(r.shapes.shapes[1].text, 106, sizeof r.shapes.shapes[1].text);
    return r;
  }
  static bool read(codec::InStream& s, int version, Record& r) { return ReadPlacedShapeList(s, version, r) == 0; }
  static bool write(codec::OutStream& s, int version, const Record& r) { return WritePlacedShapeList(s, version, r); }
  static void same(const Record& got, const Record& want) {
    EXPECT_EQ(std::memcmp(got.placedBlock, want.placedBlock, 8), 0);
    EXPECT_EQ(got.shapes.listKind, want.shapes.listKind);
    EXPECT_EQ(got.shapes.listTag, want.shapes.listTag);
    expectSame(got.shapes.shapes, want.shapes.shapes);
  }
};

struct NestCase {
  using Record = std::vector<ShapeGroup>;
  static constexpr int kSince = 151;
  static std::size_t firstShapeAt(int version) { return version >= 152 ? 21 : 20; }
  static Bytes bytes(int version) {
    Bytes b = Bytes().i32(2);
    for (int i = 0; i < 2; ++i) {
      b.i32(-7 - i);
      if (version >= 152) b.u8(static_cast<std::uint8_t>(200 + i));
      b.i32(21 + i).i32(31 + i).i32(i == 0 ? 2 : 1);  // the tag in front of the kind
      if (i == 0) b.add(shapeBytes(version, kFirst));
      b.add(shapeBytes(version, kSecond));
    }
    return b;
  }
  static Record record(int version) {
    Record r(2);
    for (int i = 0; i < 2; ++i) {
      ShapeGroup& g = r[static_cast<std::size_t>(i)];
      g.groupWord = -7 - i;
      if (version >= 152) g.groupByte = static_cast<std::uint8_t>(200 + i);
      g.shapes.listTag = 21 + i;
      g.shapes.listKind = 31 + i;
      if (i == 0) g.shapes.shapes.push_back(shapeOf(version, kFirst));
      g.shapes.shapes.push_back(shapeOf(version, kSecond));
    }
    return r;
  }
  static Record loaded(int version) { return record(version); }
  static bool read(codec::InStream& s, int version, Record& r) { return ReadNestShapeGroups(s, version, r); }
  static bool write(codec::OutStream& s, int version, const Record& r) { return WriteNestShapeGroups(s, version, r); }
  static void same(const Record& got, const Record& want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].groupWord, want[i].groupWord);
      EXPECT_EQ(got[i].groupByte, want[i].groupByte);
      EXPECT_EQ(got[i].shapes.listKind, want[i].shapes.listKind);
      EXPECT_EQ(got[i].shapes.listTag, want[i].shapes.listTag);
      expectSame(got[i].shapes.shapes, want[i].shapes.shapes);
    }
  }
};

struct ContourCase {
  using Record = std::vector<ContourGroup>;
  static constexpr int kSince = 154;
  static std::size_t firstShapeAt(int) { return 20; }
  static Bytes bytes(int version) {
    Bytes b = Bytes().i32(3);
    for (std::uint32_t i = 0; i < 3; ++i) {
      b.u32(11 + i).u32(21 + i).u32(31 + i).i32(i == 1 ? 0 : 1);
      if (i != 1) b.add(shapeBytes(version, i == 0 ? kFirst : kSecond));
      if (version >= 155) b.u8(static_cast<std::uint8_t>(41 + i));
    }
    return b;
  }
  static Record record(int version) {
    Record r(3);
    for (std::uint32_t i = 0; i < 3; ++i) {
      r[i].contourWord1 = 11 + i;
      r[i].contourWord2 = 21 + i;
      r[i].contourWord3 = 31 + i;
      if (i != 1) r[i].shapes.push_back(shapeOf(version, i == 0 ? kFirst : kSecond));
      if (version >= 155) r[i].contourByte = static_cast<std::uint8_t>(41 + i);
    }
    return r;
  }
  static Record loaded(int version) { return record(version); }
  static bool read(codec::InStream& s, int version, Record& r) { return ReadContourGroups(s, version, r); }
  static bool write(codec::OutStream& s, int version, const Record& r) { return WriteContourGroups(s, version, r); }
  static void same(const Record& got, const Record& want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].contourWord1, want[i].contourWord1);
      EXPECT_EQ(got[i].contourWord2, want[i].contourWord2);
      EXPECT_EQ(got[i].contourWord3, want[i].contourWord3);
      EXPECT_EQ(got[i].contourByte, want[i].contourByte);
      expectSame(got[i].shapes, want[i].shapes);
    }
  }
};

struct BindingCase {
  using Record = std::vector<BindingSet>;
  static constexpr int kSince = 161;
  static std::size_t firstShapeAt(int) { return 32; }
  static Bytes bytes(int version) {
    Bytes b = Bytes().i32(3).u32(71).i32(2).u32(81).u32(82).i32(2);
    b.u32(92).u32(91).add(shapeBytes(version, kFirst)).u32(94).u32(93).add(shapeBytes(version, kSecond));
    b.u32(72).i32(0).i32(0);
    return b.u32(73).i32(1).u32(83).i32(1).u32(96).u32(95).add(shapeBytes(version, kSecond));
  }
  static Record record(int version) {
    Record r(3);
    r[0].setWord = 71;
    r[0].numbers = {81, 82};
    r[0].entries = {{91, 92, shapeOf(version, kFirst)}, {93, 94, shapeOf(version, kSecond)}};
    r[1].setWord = 72;
    r[2].setWord = 73;
    r[2].numbers = {83};
    r[2].entries = {{95, 96, shapeOf(version, kSecond)}};
    return r;
  }
  static Record loaded(int version) { return record(version); }
  static bool read(codec::InStream& s, int version, Record& r) { return ReadBindingSets(s, version, r); }
  static bool write(codec::OutStream& s, int version, const Record& r) { return WriteBindingSets(s, version, r); }
  static void same(const Record& got, const Record& want) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) {
      EXPECT_EQ(got[i].setWord, want[i].setWord);
      EXPECT_EQ(got[i].numbers, want[i].numbers);
      ASSERT_EQ(got[i].entries.size(), want[i].entries.size());
      for (std::size_t k = 0; k < got[i].entries.size(); ++k) {
        EXPECT_EQ(got[i].entries[k].entryWord1, want[i].entries[k].entryWord1);
        EXPECT_EQ(got[i].entries[k].entryWord2, want[i].entries[k].entryWord2);
        expectSame(got[i].entries[k].shape, want[i].entries[k].shape);
      }
    }
  }
};

template <class Case>
class PartExtensionList : public testing::Test {};
using Cases = testing::Types<PlacedCase, NestCase, ContourCase, BindingCase>;
TYPED_TEST_SUITE(PartExtensionList, Cases);

TYPED_TEST(PartExtensionList, StoresTheTabledBytesAtEveryVersionAndLeavesTheRecord) {
  for (int version = TypeParam::kSince; version <= 180; ++version) {
    SCOPED_TRACE(version);
    const auto record = TypeParam::record(version);
    bool ok = false;
    const Bytes stored = written([&](auto& s) { return TypeParam::write(s, version, record); }, &ok);
    ASSERT_EQ(stored, TypeParam::bytes(version));
    EXPECT_TRUE(ok);
    TypeParam::same(record, TypeParam::record(version));
  }
}

TYPED_TEST(PartExtensionList, LoadsTheTabledBytesAtEveryVersionAndNotAByteMore) {
  for (int version = TypeParam::kSince; version <= 180; ++version) {
    SCOPED_TRACE(version);
    typename TypeParam::Record got{};
    std::size_t consumed = 0;
    const Bytes bytes = TypeParam::bytes(version);
    const Bytes longer = Bytes(bytes).fill(9, 0xEE);
    ASSERT_TRUE(readFrom(
        longer, [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed));
    EXPECT_EQ(consumed, bytes.size());
    TypeParam::same(got, TypeParam::loaded(version));
  }
}

// From version 161 on the last two words of the last shape may be missing where nothing stands behind.
TYPED_TEST(PartExtensionList, CutAtAnyByteFailsExceptInTheTailOfALastShape) {
  const bool endsWithShape = !std::is_same_v<TypeParam, ContourCase>;
  for (int version = TypeParam::kSince; version <= 180; ++version) {
    const Bytes bytes = TypeParam::bytes(version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      typename TypeParam::Record got{};
      std::size_t consumed = 0;
      const bool tolerated = endsWithShape && version >= 161 && cut + 8 >= bytes.size();
      const bool ok = readFrom(
          bytes.cut(cut), [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed);
      ASSERT_EQ(ok, tolerated) << "version " << version << ", cut at " << cut;
      ASSERT_EQ(consumed, cut);
    }
  }
}

TYPED_TEST(PartExtensionList, ElementsInFrontOfACutStay) {
  for (const int version : {TypeParam::kSince, 160, 161, 180}) {
    if (version < TypeParam::kSince) continue;
    const Bytes bytes = TypeParam::bytes(version);
    const auto whole = TypeParam::loaded(version);
    const auto sizeOf = [](const typename TypeParam::Record& r) {
      if constexpr (std::is_same_v<TypeParam, PlacedCase>)
        return r.shapes.shapes.size();
      else
        return r.size();
    };
    std::size_t before = 0;
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      typename TypeParam::Record got{};
      (void)readFrom(bytes.cut(cut), [&](auto& s) { return TypeParam::read(s, version, got); });
      ASSERT_GE(sizeOf(got), before) << "a later cut never gives fewer elements";
      ASSERT_LE(sizeOf(got), sizeOf(whole));
      before = sizeOf(got);
    }
    // One byte short of the end the last element is there only if its end may be missing.
    const bool mayEnd = version >= 161 && !std::is_same_v<TypeParam, ContourCase>;
    EXPECT_EQ(before, mayEnd ? sizeOf(whole) : sizeOf(whole) - 1) << version;
  }
}

TYPED_TEST(PartExtensionList, CountsThatTheFileCannotMeetFail) {
  const std::size_t countAt = std::is_same_v<TypeParam, PlacedCase> ? 8 : 0;
  for (const std::int64_t count : {1000LL, 2000000000LL, 2147483647LL})
    for (int version = TypeParam::kSince; version <= 180; ++version) {
      typename TypeParam::Record got{};
      const Bytes bytes = Bytes().zeros(countAt).i32(count).zeros(88);
      EXPECT_FALSE(readFrom(bytes, [&](auto& s) { return TypeParam::read(s, version, got); })) << version;
    }
}

TYPED_TEST(PartExtensionList, ShapeWithTooManyValuesFailsInReaderAndWriter) {
  for (int version = TypeParam::kSince; version <= 180; ++version) {
    auto record = TypeParam::record(version);
    if constexpr (std::is_same_v<TypeParam, PlacedCase>) record.shapes.shapes[0].valueCount = 10;
    if constexpr (std::is_same_v<TypeParam, NestCase>) record[0].shapes.shapes[0].valueCount = 10;
    if constexpr (std::is_same_v<TypeParam, ContourCase>) record[0].shapes[0].valueCount = 10;
    if constexpr (std::is_same_v<TypeParam, BindingCase>) record[0].entries[0].shape.valueCount = 10;
    bool ok = true;
    const Bytes stored = written([&](auto& s) { return TypeParam::write(s, version, record); }, &ok);
    ASSERT_FALSE(ok);
    // What stands in front of the count stays in the file; none of the values that it counts gets there.
    const std::size_t countAt = TypeParam::firstShapeAt(version) + 17;
    ASSERT_EQ(stored.cut(countAt), TypeParam::bytes(version).cut(countAt));
    ASSERT_LE(stored.size(), countAt + 4);

    const Bytes refused = Bytes(TypeParam::bytes(version).cut(countAt)).i32(10).zeros(5000);
    typename TypeParam::Record got{};
    std::size_t consumed = 0;
    ASSERT_FALSE(readFrom(
        refused, [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed));
    ASSERT_EQ(consumed, countAt + 4);
  }
}

TYPED_TEST(PartExtensionList, LoadIntoAUsedListFollowsTheListsOwnRule) {
  for (int version = TypeParam::kSince; version <= 180; ++version) {
    SCOPED_TRACE(version);
    auto got = TypeParam::loaded(version);
    auto want = TypeParam::loaded(version);
    if constexpr (std::is_same_v<TypeParam, NestCase>) want.insert(want.end(), got.begin(), got.end());
    ASSERT_TRUE(readFrom(TypeParam::bytes(version), [&](auto& s) { return TypeParam::read(s, version, got); }));
    TypeParam::same(got, want);
  }
}

TYPED_TEST(PartExtensionList, CountsOfZeroAndBelowReadNothingMore) {
  const std::size_t countAt = std::is_same_v<TypeParam, PlacedCase> ? 8 : 0;
  for (const int count : {0, -1, -2147483647})
    for (int version = TypeParam::kSince; version <= 180; ++version) {
      auto got = TypeParam::loaded(version);
      std::size_t consumed = 0;
      const Bytes bytes = Bytes().fill(countAt, 0x33).i32(count).fill(50, 0x77);
      ASSERT_TRUE(readFrom(
          bytes, [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed));
      EXPECT_EQ(consumed, countAt + 4);
      if constexpr (std::is_same_v<TypeParam, PlacedCase>) {
        EXPECT_TRUE(got.shapes.shapes.empty());
        EXPECT_EQ(got.placedBlock[7], 0x33);
      } else if constexpr (std::is_same_v<TypeParam, NestCase>) {
        TypeParam::same(got, TypeParam::loaded(version));
      } else {
        EXPECT_TRUE(got.empty());
      }
    }
}

TYPED_TEST(PartExtensionList, EmptyListStoresItsCountAlone) {
  const typename TypeParam::Record empty{};
  const std::size_t countAt = std::is_same_v<TypeParam, PlacedCase> ? 8 : 0;
  for (int version = TypeParam::kSince; version <= 180; ++version) {
    bool ok = false;
    EXPECT_EQ(written([&](auto& s) { return TypeParam::write(s, version, empty); }, &ok), Bytes().zeros(countAt + 4));
    EXPECT_TRUE(ok);
  }
}

TEST(PlacedShapesByHand, FieldsThatOneShapeDoesNotStoreComeFromTheShapeBefore) {
  // Nine values, then two: the other seven stay, and so do the second extra value, text and note.
  Bytes full = Bytes().i8(1).zeros(16).i32(9);
  for (int i = 0; i < 9; ++i) full.f32(static_cast<float>(i + 1));
  full.zeros(8).i32(2).u32(61).u32(62).i32(1).fill(256, 'T').zeros(12);
  full.zeros(3 + 4).u8(0).u32(0).lengthText("kept").u32(1).u32(2);
  const Bytes two = shapeBytes(180, {300, false, ""});
  for (const int negative : {0, 1}) {
    Bytes second = two;
    if (negative == 1) second = Bytes().add(two.cut(two.size() - 12)).i32(-4).u32(313).u32(314);
    PlacedShapeList placed;
    const Bytes file = Bytes().zeros(8).i32(2).add(full).add(second);
    ASSERT_EQ(readFrom(file, [&](auto& s) { return ReadPlacedShapeList(s, 180, placed); }), 0);
    const Shape& got = placed.shapes.shapes[1];
    EXPECT_EQ(got.valueCount, 2);
    EXPECT_EQ(got.values[0], 0.5F);
    for (int i = 2; i < 9; ++i) EXPECT_EQ(got.values[i], static_cast<float>(i + 1));
    EXPECT_EQ(got.extraValues[0], 305U);
    EXPECT_EQ(got.extraValues[1], 62U);
    EXPECT_EQ(got.text[255], 'T');
    EXPECT_EQ(got.note, "kept");
    EXPECT_EQ(got.tailPair[1], 314U);
  }
}

TEST(PlacedShapesByHand, LastTailPairThatIsMissingKeepsThatOfTheShapeBefore) {
  const Bytes file = PlacedCase::bytes(161);
  for (std::size_t left = 0; left < 8; ++left) {
    PlacedShapeList placed;
    const Bytes cut = file.cut(file.size() - 8 + left);
    ASSERT_EQ(readFrom(cut, [&](auto& s) { return ReadPlacedShapeList(s, 161, placed); }), 0);
    ASSERT_EQ(placed.shapes.shapes.size(), 2U);
    EXPECT_EQ(placed.shapes.shapes[1].tailPair[0], left < 4 ? 113U : 213U);
    EXPECT_EQ(placed.shapes.shapes[1].tailPair[1], 114U);
  }
}

TEST(NestShapeGroupsByHand, GroupWithAnEmptyShapeListHasNoShapesOfTheGroupBefore) {
  Bytes file = Bytes().i32(2).i32(1).u8(2).i32(3).i32(4).i32(1).add(shapeBytes(160, kFirst));
  file.i32(5).u8(6).i32(7).i32(8).i32(0);
  std::vector<ShapeGroup> groups;
  ASSERT_TRUE(readFrom(file, [&](auto& s) { return ReadNestShapeGroups(s, 160, groups); }));
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].shapes.shapes.size(), 1U);
  EXPECT_TRUE(groups[1].shapes.shapes.empty());
  EXPECT_EQ(groups[1].shapes.listTag, 7);
  EXPECT_EQ(groups[1].shapes.listKind, 8);
}

TEST(ContourGroupsByHand, NegativeShapeCountGivesAGroupWithoutShapes) {
  const Bytes file = Bytes().i32(1).u32(1).u32(2).u32(3).i32(-9).u8(4);
  std::vector<ContourGroup> groups;
  ASSERT_TRUE(readFrom(file, [&](auto& s) { return ReadContourGroups(s, 155, groups); }));
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_TRUE(groups[0].shapes.empty());
  EXPECT_EQ(groups[0].contourByte, 4);
}

TEST(BindingSetsByHand, NegativeCountsReadNoNumbersAndNoEntries) {
  const Bytes file = Bytes().i32(2).u32(1).i32(-5).i32(-6).u32(2).i32(0).i32(-1);
  std::vector<BindingSet> sets;
  std::size_t consumed = 0;
  ASSERT_TRUE(readFrom(
      file, [&](auto& s) { return ReadBindingSets(s, 161, sets); }, &consumed));
  EXPECT_EQ(consumed, file.size());
  ASSERT_EQ(sets.size(), 2U);
  EXPECT_EQ(sets[1].setWord, 2U);
  for (const BindingSet& set : sets) {
    EXPECT_TRUE(set.numbers.empty());
    EXPECT_TRUE(set.entries.empty());
  }
}

TEST(BindingSetsByHand, InnerCountsThatTheFileCannotMeetFail) {
  for (const std::int64_t count : {23LL, 2000000000LL, 2147483647LL}) {
    std::vector<BindingSet> sets;
    EXPECT_FALSE(
        readFrom(Bytes().i32(1).u32(1).i32(count).zeros(88), [&](auto& s) { return ReadBindingSets(s, 161, sets); }));
    EXPECT_FALSE(readFrom(Bytes().i32(1).u32(1).i32(0).i32(count).zeros(84),
                          [&](auto& s) { return ReadBindingSets(s, 161, sets); }));
    EXPECT_TRUE(sets.empty());
    std::vector<ContourGroup> contours;
    EXPECT_FALSE(readFrom(Bytes().i32(1).zeros(12).i32(count).zeros(84),
                          [&](auto& s) { return ReadContourGroups(s, 161, contours); }));
    EXPECT_TRUE(contours.empty());
  }
}

TEST(PartExtensionDefaults, FreshRecordsAreEmptyWithZeroWords) {
  const PlacedShapeList placed;
  for (const std::uint8_t one : placed.placedBlock) EXPECT_EQ(one, 0);
  EXPECT_TRUE(placed.shapes.shapes.empty());
  const ShapeGroup group;
  EXPECT_EQ(group.groupWord, 0);
  EXPECT_EQ(group.groupByte, 0);
  EXPECT_EQ(group.shapes.listKind, 1);
  EXPECT_EQ(group.shapes.listTag, -1);
  const ContourGroup contour;
  EXPECT_TRUE(contour.shapes.empty());
  EXPECT_EQ(contour.contourWord1, 0U);
  EXPECT_EQ(contour.contourWord2, 0U);
  EXPECT_EQ(contour.contourWord3, 0U);
  EXPECT_EQ(contour.contourByte, 0);
  const BindingSet set;
  EXPECT_TRUE(set.numbers.empty());
  EXPECT_TRUE(set.entries.empty());
  const BindingEntry entry;
  EXPECT_EQ(entry.entryWord1, 0U);
  EXPECT_EQ(entry.entryWord2, 0U);
  expectSame(entry.shape, Shape());
  EXPECT_EQ(entry.shape.linkIndex, -1);
  EXPECT_EQ(entry.shape.valueCount, 9);
  EXPECT_EQ(entry.shape.extraCount, 2);
}

}  // namespace by_hand
}  // namespace
