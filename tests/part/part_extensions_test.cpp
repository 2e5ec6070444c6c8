// The four shape lists that later versions added to a part, and the rules by which they differ.
#include <gtest/gtest.h>

#include <memory>

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
