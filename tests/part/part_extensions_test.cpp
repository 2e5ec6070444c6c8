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

TEST(ContourGroups, AreDeletedBeforeTheirCountIsRead) {
  std::vector<ContourGroup> groups(3);
  EXPECT_FALSE(readFrom(Bytes().zeros(3), [&](auto& s) { return ReadContourGroups(s, 180, groups); }));
  EXPECT_TRUE(groups.empty());
}

TEST(BindingSets, AreEmptiedOnlyAfterACountThatCouldBeRead) {
  std::vector<BindingSet> sets(3);
  EXPECT_FALSE(readFrom(Bytes().zeros(3), [&](auto& s) { return ReadBindingSets(s, 180, sets); }));
  EXPECT_EQ(sets.size(), 3U);
  EXPECT_TRUE(readFrom(Bytes().i32(0), [&](auto& s) { return ReadBindingSets(s, 180, sets); }));
  EXPECT_TRUE(sets.empty());
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

// ---- each of the four lists ----------------------------------------------------------------------

// The version that first stores it, where its first shape begins, its elements, its form, its reader and writer.
struct PlacedCase {
  using Record = PlacedShapeList;
  static constexpr int kSince = 102;
  static std::size_t firstShapeAt(int) { return 12; }
  static std::vector<Shape>& elements(Record& r) { return r.shapes.shapes; }
  static Shape& firstShape(Record& r) { return r.shapes.shapes[0]; }
  template <class M>
  static void stored(M& m, int version, Record& r) {
    storedPlacedShapes(m, version, 2, r);
  }
  static bool read(InStream& s, int version, Record& r) { return ReadPlacedShapeList(s, version, r) == 0; }
  static bool write(OutStream& s, int version, const Record& r) { return WritePlacedShapeList(s, version, r); }
};
struct NestCase {
  using Record = std::vector<ShapeGroup>;
  static constexpr int kSince = 151;
  static std::size_t firstShapeAt(int version) { return version >= 152 ? 21 : 20; }
  static Record& elements(Record& r) { return r; }
  static Shape& firstShape(Record& r) { return r[0].shapes.shapes[0]; }
  template <class M>
  static void stored(M& m, int version, Record& r) {
    storedNestGroups(m, version, 2, r);
  }
  static bool read(InStream& s, int version, Record& r) { return ReadNestShapeGroups(s, version, r); }
  static bool write(OutStream& s, int version, const Record& r) { return WriteNestShapeGroups(s, version, r); }
};
struct ContourCase {
  using Record = std::vector<ContourGroup>;
  static constexpr int kSince = 154;
  static std::size_t firstShapeAt(int) { return 20; }
  static Record& elements(Record& r) { return r; }
  static Shape& firstShape(Record& r) { return r[0].shapes[0]; }
  template <class M>
  static void stored(M& m, int version, Record& r) {
    storedContourGroups(m, version, 2, r);
  }
  static bool read(InStream& s, int version, Record& r) { return ReadContourGroups(s, version, r); }
  static bool write(OutStream& s, int version, const Record& r) { return WriteContourGroups(s, version, r); }
};
struct BindingCase {
  using Record = std::vector<BindingSet>;
  static constexpr int kSince = 161;
  static std::size_t firstShapeAt(int) { return 36; }
  static Record& elements(Record& r) { return r; }
  static Shape& firstShape(Record& r) { return r[0].entries[0].shape; }
  template <class M>
  static void stored(M& m, int version, Record& r) {
    storedBindingSets(m, version, 2, r);
  }
  static bool read(InStream& s, int version, Record& r) { return ReadBindingSets(s, version, r); }
  static bool write(OutStream& s, int version, const Record& r) { return WriteBindingSets(s, version, r); }
};

template <class Case>
class PartExtensionList : public testing::Test {
 protected:
  using Record = typename Case::Record;
  static Bytes made(int version, Record& record) {
    Maker m;
    Case::stored(m, version, record);
    return m.bytes;
  }
  static Bytes made(int version) {
    Record scratch{};
    return made(version, scratch);
  }
  static void check(int version, Record& record, std::size_t cut = Checker::kNoCut) {
    Checker c(cut);
    Case::stored(c, version, record);
  }
  static constexpr std::size_t kCountAt = std::is_same_v<Case, PlacedCase> ? 8 : 0;
  // From version 161 on the last two words of the last shape may be missing where nothing follows.
  static bool mayEndEarly(int version) { return version >= 161 && !std::is_same_v<Case, ContourCase>; }
};
using Cases = testing::Types<PlacedCase, NestCase, ContourCase, BindingCase>;
TYPED_TEST_SUITE(PartExtensionList, Cases);

TYPED_TEST(PartExtensionList, LoadsAndStoresItsBytesAtEveryVersion) {
  for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
    SCOPED_TRACE(version);
    typename TypeParam::Record record{}, got{};
    const Bytes bytes = this->made(version, record);
    bool ok = false;
    ASSERT_EQ(written([&](auto& s) { return TypeParam::write(s, version, record); }, &ok), bytes);
    EXPECT_TRUE(ok);
    std::size_t consumed = 0;
    ASSERT_TRUE(readFrom(
        Bytes(bytes).fill(9, 0xEE), [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed));
    EXPECT_EQ(consumed, bytes.size());
    this->check(version, got);
  }
}

TYPED_TEST(PartExtensionList, CutAtAnyByteFailsExceptInTheTailOfALastShapeAndKeepsTheElementsBeforeIt) {
  for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
    const Bytes bytes = this->made(version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      typename TypeParam::Record got{};
      std::size_t consumed = 0;
      const bool ok = readFrom(
          bytes.cut(cut), [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed);
      ASSERT_EQ(ok, this->mayEndEarly(version) && cut + 8 >= bytes.size()) << version << ", cut at " << cut;
      ASSERT_EQ(consumed, cut);
      SCOPED_TRACE("version " + std::to_string(version) + ", cut at " + std::to_string(cut));
      this->check(version, got, cut);
      if (this->HasFailure()) return;
    }
  }
}

TYPED_TEST(PartExtensionList, CountsBeyondTheFileFail) {
  for (const std::int64_t count : {1000LL, 2000000000LL, 2147483647LL})
    for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
      typename TypeParam::Record got{};
      const Bytes bytes = Bytes().zeros(this->kCountAt).i32(count).zeros(88);
      EXPECT_FALSE(readFrom(bytes, [&](auto& s) { return TypeParam::read(s, version, got); })) << version;
    }
}

TYPED_TEST(PartExtensionList, ShapeWithTooManyValuesFailsInReaderAndWriter) {
  for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
    typename TypeParam::Record record{};
    const Bytes whole = this->made(version, record);
    TypeParam::firstShape(record).valueCount = 10;
    bool ok = true;
    const Bytes stored = written([&](auto& s) { return TypeParam::write(s, version, record); }, &ok);
    ASSERT_FALSE(ok);
    // What is before the count stays in the file; none of the values that it counts gets there.
    const std::size_t countAt = TypeParam::firstShapeAt(version) + 17;
    ASSERT_EQ(stored.cut(countAt), whole.cut(countAt));
    ASSERT_LE(stored.size(), countAt + 4);

    const Bytes refused = Bytes(whole.cut(countAt)).i32(10).zeros(5000);
    typename TypeParam::Record got{};
    std::size_t consumed = 0;
    ASSERT_FALSE(readFrom(
        refused, [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed));
    ASSERT_EQ(consumed, countAt + 4);
  }
}

TYPED_TEST(PartExtensionList, LoadIntoAUsedListReplacesItExceptThatNestGroupsAreAdded) {
  for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
    SCOPED_TRACE(version);
    typename TypeParam::Record got{};
    TypeParam::elements(got).resize(3);
    ASSERT_TRUE(readFrom(this->made(version), [&](auto& s) { return TypeParam::read(s, version, got); }));
    auto& elements = TypeParam::elements(got);
    if constexpr (std::is_same_v<TypeParam, NestCase>) {
      ASSERT_EQ(elements.size(), 5U);
      elements.erase(elements.begin(), elements.begin() + 3);
    }
    this->check(version, got);
  }
}

TYPED_TEST(PartExtensionList, CountsOfZeroAndBelowReadNothingMoreAndKeepNestGroupsOnly) {
  for (const int count : {0, -1, -2147483647})
    for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
      typename TypeParam::Record got{};
      TypeParam::elements(got).resize(3);
      std::size_t consumed = 0;
      const Bytes bytes = Bytes().fill(this->kCountAt, 0x33).i32(count).fill(50, 0x77);
      ASSERT_TRUE(readFrom(
          bytes, [&](auto& s) { return TypeParam::read(s, version, got); }, &consumed));
      EXPECT_EQ(consumed, this->kCountAt + 4);
      const bool isKept = std::is_same_v<TypeParam, NestCase>;
      EXPECT_EQ(TypeParam::elements(got).size(), isKept ? 3U : 0U);
    }
}

TYPED_TEST(PartExtensionList, EmptyListStoresOnlyItsCount) {
  const typename TypeParam::Record empty{};
  for (int version = TypeParam::kSince; version <= kLastVersion; ++version) {
    bool ok = false;
    EXPECT_EQ(written([&](auto& s) { return TypeParam::write(s, version, empty); }, &ok),
              Bytes().zeros(this->kCountAt + 4));
    EXPECT_TRUE(ok);
  }
}

// ---- rules of single lists -----------------------------------------------------------------------

TEST(PlacedShapes, FieldsThatOneShapeDoesNotStoreComeFromTheShapeBefore) {
  // Nine values, then two: the other seven stay, and so do the second extra value, text and note.
  Bytes full = Bytes().i8(1).zeros(16).i32(9);
  for (int i = 0; i < 9; ++i) full.f32(static_cast<float>(i + 1));
  full.zeros(8).i32(2).u32(61).u32(62).i32(1).fill(256, 'T').zeros(12);
  full.zeros(3 + 4).u8(0).u32(0).lengthText("kept").u32(1).u32(2);
  Maker m;
  Shape second;
  storedShape(m, 180, {3, 2, 1, false, ""}, second);
  const Bytes& two = m.bytes;
  for (const int negative : {0, 1}) {
    const Bytes last = negative == 1 ? patched(two, two.size() - 12, Bytes().i32(-4)) : two;
    PlacedShapeList placed;
    const Bytes file = Bytes().zeros(8).i32(2).add(full).add(last);
    ASSERT_EQ(readFrom(file, [&](auto& s) { return ReadPlacedShapeList(s, 180, placed); }), 0);
    const Shape& got = placed.shapes.shapes[1];
    EXPECT_EQ(got.valueCount, 2);
    EXPECT_EQ(got.values[0], second.values[0]);
    for (int i = 2; i < 9; ++i) EXPECT_EQ(got.values[i], static_cast<float>(i + 1));
    EXPECT_EQ(got.extraValues[0], second.extraValues[0]);
    EXPECT_EQ(got.extraValues[1], 62U);
    EXPECT_EQ(got.text[255], 'T');
    EXPECT_EQ(got.note, "kept");
    EXPECT_EQ(got.tailPair[1], second.tailPair[1]);
  }
}

TEST(PlacedShapes, LastTailPairThatIsMissingKeepsThatOfTheShapeBefore) {
  Maker m;
  PlacedShapeList made;
  storedPlacedShapes(m, 161, 2, made);
  const Bytes& file = m.bytes;
  const std::uint32_t* const first = made.shapes.shapes[0].tailPair;
  const std::uint32_t* const second = made.shapes.shapes[1].tailPair;
  for (std::size_t left = 0; left < 8; ++left) {
    PlacedShapeList placed;
    const Bytes cut = file.cut(file.size() - 8 + left);
    ASSERT_EQ(readFrom(cut, [&](auto& s) { return ReadPlacedShapeList(s, 161, placed); }), 0);
    ASSERT_EQ(placed.shapes.shapes.size(), 2U);
    EXPECT_EQ(placed.shapes.shapes[1].tailPair[0], left < 4 ? first[0] : second[0]);
    EXPECT_EQ(placed.shapes.shapes[1].tailPair[1], first[1]);
  }
}

TEST(NestShapeGroups, GroupWithAnEmptyShapeListHasNoShapesOfTheGroupBefore) {
  Bytes file = Bytes().i32(2).i32(1).u8(2).i32(3).i32(4).i32(1).add(storedShapeBytes(160, {}));
  file.i32(5).u8(6).i32(7).i32(8).i32(0);
  std::vector<ShapeGroup> groups;
  ASSERT_TRUE(readFrom(file, [&](auto& s) { return ReadNestShapeGroups(s, 160, groups); }));
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].shapes.shapes.size(), 1U);
  EXPECT_TRUE(groups[1].shapes.shapes.empty());
  EXPECT_EQ(groups[1].shapes.listTag, 7);
  EXPECT_EQ(groups[1].shapes.listKind, 8);
}

TEST(ContourGroups, NegativeShapeCountGivesAGroupWithoutShapes) {
  const Bytes file = Bytes().i32(1).u32(1).u32(2).u32(3).i32(-9).u8(4);
  std::vector<ContourGroup> groups;
  ASSERT_TRUE(readFrom(file, [&](auto& s) { return ReadContourGroups(s, 155, groups); }));
  ASSERT_EQ(groups.size(), 1U);
  EXPECT_TRUE(groups[0].shapes.empty());
  EXPECT_EQ(groups[0].contourByte, 4);
}

TEST(BindingSets, NegativeCountsReadNoNumbersAndNoEntries) {
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

TEST(BindingSets, InnerCountsBeyondTheFileFail) {
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
  BindingEntry entry;
  EXPECT_EQ(entry.entryWord1, 0U);
  EXPECT_EQ(entry.entryWord2, 0U);
  Checker defaults(0);
  storedShape(defaults, 180, ShapeForm{}, entry.shape);
}

}  // namespace
