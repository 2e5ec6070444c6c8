// The rules of a pattern: its group band, the tolerant tail of the group data, the two forms.
#include <gtest/gtest.h>

#include <vector>

#include "src/part/part_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

Bytes head(std::int32_t groupKind, std::int32_t grid = 1) {
  return Bytes().i32(3).i32(grid).i32(grid + 1).i32(8).i32(9).f32(1).f32(2).f32(0).f32(1).i32(55).i32(groupKind);
}
Bytes lateHead() { return Bytes().zeros(8 + 28 + 12 + 1 + 4); }
Bytes shorts() {
  Bytes b;
  for (int i = 0; i < 8; ++i) b.u16(static_cast<std::uint16_t>(i));
  return b;
}
int read(const Bytes& bytes, int version, Pattern& p, bool embedded = true) {
  return readFrom(bytes, [&](auto& s) { return ReadPattern(s, version, embedded, p); });
}

TEST(Pattern, GroupKindOutsideItsRangeBecomesZeroWithoutGroupData) {
  for (const int version : {52, 79, 100, 109, 110, 180}) {
    const std::int32_t last = version < 110 ? 32004 : 32006;
    for (const std::int32_t kind : {-1, 1, 31999, last + 1, 2000000000}) {
      Pattern p;
      Bytes bytes = head(kind).i32(0);
      if (version >= 80) bytes.i32(0).i32(0);
      EXPECT_EQ(read(bytes, version, p), 0) << kind << " at " << version;
      EXPECT_EQ(p.groupKind, 0);
      EXPECT_EQ(p.patternWord, 55U);
    }
  }
}

TEST(Pattern, SaveStoresAKindAboveTheRangeOfItsVersionWithoutGroupData) {
  Pattern p;
  p.groupKind = 32005;
  const Bytes at100 = written([&](auto& s) { return WritePattern(s, 100, p); });
  EXPECT_EQ(at100.size(), 44U + 12U);
  Pattern loaded;
  EXPECT_EQ(read(at100, 100, loaded), 0);
  EXPECT_EQ(loaded.groupKind, 0);
  const Bytes at110 = written([&](auto& s) { return WritePattern(s, 110, p); });
  EXPECT_EQ(at110.size(), 44U + 8 + 28 + 17 + 16 + 4 + 12);
  EXPECT_EQ(read(at110, 110, loaded), 0);
  EXPECT_EQ(loaded.groupKind, 32005);
}

TEST(Pattern, Versions151To155FillTheThirdColumnFromLateWord3) {
  for (int version = 150; version <= 157; ++version)
    for (const int bindings : {0, 2}) {
      Pattern p;
      p.bindThird.assign(1, 99);
      p.bindFirst.resize(1);
      Bytes bytes = head(32000).add(lateHead()).add(shorts()).i32(bindings);
      for (int i = 0; i < bindings; ++i) {
        bytes.i32(1).i32(2).i32(3).i32(4);
        if (version >= 156) bytes.i32(70 + i);
      }
      if (version >= 151) bytes.i32(5).i32(6).i32(7);
      ASSERT_EQ(read(bytes.i32(0).i32(0).i32(0), version, p), 0);
      if (bindings == 0) {
        ASSERT_EQ(p.bindThird.size(), 1U) << "a count of zero keeps the columns";
        EXPECT_EQ(p.bindThird[0], version >= 151 && version <= 155 ? 7U : 99U);
      } else {
        ASSERT_EQ(p.bindThird.size(), 2U);
        const std::uint32_t stored = version >= 156 ? 71U : version >= 151 ? 7U : 0U;
        EXPECT_EQ(p.bindThird[1], stored) << version;
        EXPECT_EQ(p.bindFourth, (std::vector<std::uint32_t>{0, 0}));
      }
    }
}

TEST(Pattern, CutInsideTheShortsEndsThePatternWithSuccessAndWithoutItems) {
  for (std::size_t cut = 0; cut < 16; ++cut) {
    Pattern p;
    EXPECT_EQ(read(head(32000, 5).add(lateHead()).add(shorts().cut(cut)), 110, p, false), 0);
    EXPECT_TRUE(p.items.empty());
    EXPECT_EQ(p.gridCount1, 5U) << "the head is not reset either";
    for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(p.bindShorts[i], i < cut / 2 ? i : 0xFFFFU);
  }
}

TEST(Pattern, CutInsideTheGroupWordsFails) {
  for (const std::size_t cut : {0U, 7U, 8U, 35U, 40U, 52U}) {
    Pattern p;
    EXPECT_EQ(read(head(32000).add(lateHead().cut(cut)), 110, p), 1) << cut;
  }
}

TEST(Pattern, CutInsideABindingKeepsTheCompleteOnes) {
  Pattern p;
  const Bytes one = Bytes().i32(1).i32(2).i32(3).i32(4);
  EXPECT_EQ(read(head(32000).add(lateHead()).add(shorts()).i32(3).add(one).add(one.cut(9)), 110, p), 0);
  ASSERT_EQ(p.bindFirst.size(), 1U);
  EXPECT_EQ(p.bindSecond[0].second, 4U);
  EXPECT_EQ(p.bindFifth.size(), 1U);
}

TEST(Pattern, BindingCountOfZeroOrBelowKeepsTheColumns) {
  for (const int count : {0, -1}) {
    Pattern p;
    p.bindFirst.resize(2);
    ASSERT_EQ(read(head(32000).add(lateHead()).add(shorts()).i32(count).i32(0).i32(0).i32(0), 110, p), 0);
    EXPECT_EQ(p.bindFirst.size(), 2U);
  }
}

TEST(Pattern, PositiveBindingCountReplacesTheColumns) {
  for (const int count : {1, 2, 5}) {
    Pattern p;
    p.bindFirst.resize(3);
    Bytes bytes = head(32000).add(lateHead()).add(shorts()).i32(count);
    for (int i = 0; i < count; ++i) bytes.i32(1).i32(2).i32(3).i32(4);
    ASSERT_EQ(read(bytes.i32(0).i32(0).i32(0), 110, p), 0);
    EXPECT_EQ(p.bindFirst.size(), static_cast<std::size_t>(count));
  }
}

TEST(Pattern, EmbeddedFormKeepsTheGridAndThePartFileResetsIt) {
  for (const bool embedded : {true, false}) {
    Pattern p;
    ASSERT_EQ(read(head(0, 5).i32(0), 79, p, embedded), 0);
    EXPECT_EQ(p.headWord, embedded ? 3 : 0);
    EXPECT_EQ(p.gridCount1, embedded ? 5U : 1U);
    EXPECT_EQ(p.gridCount2, embedded ? 6U : 1U);
    EXPECT_EQ(p.gridStep1, embedded ? 8U : 0U);
    EXPECT_EQ(p.gridStep2, embedded ? 9U : 0U);
    EXPECT_EQ(p.originX, 1.0F);
    EXPECT_EQ(p.rotationSin, 1.0F);
  }
}

TEST(Pattern, ColumnsOfDifferentLengthCannotBeStored) {
  for (int shorter = 0; shorter < 4; ++shorter) {
    Pattern p;
    p.groupKind = 32000;
    p.bindFirst.resize(2);
    p.bindSecond.resize(shorter == 0 ? 1 : 2);
    p.bindThird.resize(shorter == 1 ? 1 : 2);
    p.bindFourth.resize(shorter == 2 ? 1 : 2);
    p.bindFifth.resize(shorter == 3 ? 3 : 2);
    bool ok = true;
    (void)written([&](auto& s) { return WritePattern(s, 180, p); }, &ok);
    EXPECT_FALSE(ok);
  }
}

TEST(EmbeddedPatternList, AppendsToTheList) {
  PatternList list(1);
  Bytes bytes = Bytes().i32(2).add(head(0)).i32(0).add(head(0)).i32(0);
  EXPECT_EQ(readFrom(bytes, [&](auto& s) { return ReadEmbeddedPatternList(s, 60, true, list); }), 0);
  EXPECT_EQ(list.size(), 3U);
  EXPECT_EQ(readFrom(bytes.cut(60), [&](auto& s) { return ReadEmbeddedPatternList(s, 60, true, list); }), 1);
  EXPECT_EQ(list.size(), 4U);
  for (const int count : {0, -3}) {
    EXPECT_EQ(readFrom(Bytes().i32(count), [&](auto& s) { return ReadEmbeddedPatternList(s, 60, true, list); }), 0);
    EXPECT_EQ(list.size(), 4U);
  }
  list.resize(1);
  const Bytes stored = written([&](auto& s) { return WriteEmbeddedPatternList(s, 60, list); });
  EXPECT_EQ(stored.size(), 4U + 44U + 4U);
}

TEST(Pattern, NegativeBindingAndItemCountsReadNothingAndOnlyTheItemsAreEmptied) {
  for (const int version : {110, 150, 160, 180}) {
    Pattern p;
    p.items.resize(3);
    p.bindFirst.resize(3);
    Bytes bytes = head(32000).add(lateHead()).add(shorts()).i32(-1);
    if (version >= 151) bytes.zeros(12);
    EXPECT_EQ(read(bytes.i32(-5).i32(0).i32(0), version, p), 0);
    EXPECT_TRUE(p.items.empty());
    EXPECT_EQ(p.bindFirst.size(), 3U);
  }
}

TEST(Pattern, LastTableThatEndsBeforeItsStepCountIsKeptAndIsNoFault) {
  const Bytes front = Bytes().zeros(40).i32(0).i32(0).i32(0).i32(1).u32(66).zeros(16);
  Pattern p;
  EXPECT_EQ(read(front, 80, p), 0);
  ASSERT_EQ(p.stepTables.size(), 1U);
  EXPECT_EQ(p.stepTables[0].tableWord1, 66U);
  Pattern further;
  EXPECT_EQ(read(Bytes(front).i8(0), 80, further), 1);
  EXPECT_TRUE(further.stepTables.empty());
}

TEST(Pattern, CountsBeyondTheFileFailExceptThatOfTheBindings) {
  for (const std::int64_t count : {2LL, 1000000LL, 2147483647LL}) {
    Pattern p;
    EXPECT_EQ(read(Bytes().zeros(44).i32(count).zeros(48).zeros(7), 100, p), 1) << count;
    EXPECT_EQ(p.items.size(), 1U);

    Pattern profiles;
    EXPECT_EQ(read(Bytes().zeros(48).i32(count).zeros(40), 100, profiles), 1) << count;
    EXPECT_TRUE(profiles.profiles.empty());

    Pattern tables;
    EXPECT_EQ(read(Bytes().zeros(52).i32(count).zeros(23).zeros(7), 100, tables), 1) << count;
    EXPECT_EQ(tables.stepTables.size(), 1U);

    Pattern bindings;
    const Bytes group = Bytes().zeros(40).i32(32000).zeros(8 + 28 + 17 + 16).i32(count).zeros(16).zeros(11);
    EXPECT_EQ(read(group, 110, bindings), 0) << count;
    EXPECT_EQ(bindings.bindFirst.size(), 1U);

    PatternList list;
    const Bytes one = Bytes().zeros(44 + 12);
    EXPECT_EQ(readFrom(Bytes().i32(count).add(one).zeros(43),
                       [&](auto& s) { return ReadEmbeddedPatternList(s, 100, true, list); }),
              1);
    EXPECT_EQ(list.size(), 1U);
  }
}

TEST(EmbeddedPatternList, StoresItsCountAndThenEachPattern) {
  for (const int version : {52, 61, 62, 80, 110, 151, 156, 160, 180})
    for (const std::size_t count : {0U, 1U, 3U}) {
      const PatternForm form{32000, true, 1};
      const auto stored = [&](auto& m, PatternList& list, bool embedded) {
        PatternForm read = form;
        read.embedded = embedded;
        testing_support::list(m, list, count,
                              [&](auto& n, Pattern& p, std::size_t) { storedPattern(n, version, read, p); });
      };
      Maker m;
      PatternList made;
      stored(m, made, true);
      bool ok = false;
      EXPECT_EQ(written([&](auto& s) { return WriteEmbeddedPatternList(s, version, made); }, &ok), m.bytes);
      EXPECT_TRUE(ok);
      for (const bool embedded : {true, false}) {
        PatternList got;
        ASSERT_EQ(readFrom(m.bytes, [&](auto& s) { return ReadEmbeddedPatternList(s, version, embedded, got); }), 0);
        Checker c;
        stored(c, got, embedded);
      }
    }
}

TEST(EmbeddedPatternList, CutInItsCountFailsAndKeepsTheList) {
  for (std::size_t cut = 0; cut < 4; ++cut) {
    PatternList list(2);
    const Bytes bytes = Bytes().i32(0).cut(cut);
    EXPECT_EQ(readFrom(bytes, [&](auto& s) { return ReadEmbeddedPatternList(s, 90, true, list); }), 1);
    EXPECT_EQ(list.size(), 2U);
  }
}

}  // namespace
