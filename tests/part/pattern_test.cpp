// The rules of a pattern: its group band, the tolerant tail of the group data, the two forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
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

TEST(Pattern, FreshPatternHasTheToldDefaults) {
  const Pattern p;
  EXPECT_EQ(p.gridCount1, 1U);
  EXPECT_EQ(p.gridCount2, 1U);
  EXPECT_EQ(p.rotationCos, 1.0F);
  EXPECT_EQ(p.rotationSin, 0.0F);
  EXPECT_EQ(p.transformKind, 1);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(p.transform[i], i % 4 == 0 ? 1.0F : 0.0F);
  for (const std::uint16_t one : p.bindShorts) EXPECT_EQ(one, 0xFFFF);
  for (const std::uint8_t one : p.groupBlock) EXPECT_EQ(one, 0);
  for (const std::uint32_t one : p.groupWords) EXPECT_EQ(one, 0U);
  for (const std::uint32_t one : {p.bindWord1, p.bindWord2, p.bindWord3, p.bindWord4, p.lateWord1, p.lateWord2,
                                  p.lateWord3, p.patternWord, std::uint32_t{p.bindByte}})
    EXPECT_EQ(one, 0U);
  EXPECT_EQ(p.groupKind, 0);
  EXPECT_EQ(p.scratchShapes.listKind, 1);
  EXPECT_EQ(p.scratchShapes.listTag, -1);
}

TEST(Pattern, GroupKindOutsideTheBandIsWipedAndNothingElseIsReadForIt) {
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

TEST(Pattern, WriterStoresAKindAboveTheBandOfItsVersionWithoutGroupData) {
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
        const std::uint32_t told = version >= 156 ? 71U : version >= 151 ? 7U : 0U;
        EXPECT_EQ(p.bindThird[1], told) << version;
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

TEST(Pattern, CutInsideTheGroupWordsGivesOne) {
  for (const std::size_t cut : {0U, 7U, 8U, 35U, 40U, 52U}) {
    Pattern p;
    EXPECT_EQ(read(head(32000).add(lateHead().cut(cut)), 110, p), 1) << cut;
  }
}

TEST(Pattern, CutInsideABindingKeepsTheWholeOnes) {
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

TEST(EmbeddedPatternList, AddsBehindWhatTheListHolds) {
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

}  // namespace

// The stored form once more as a plain table of rows: each row knows its bytes, what it does to the
// record when it arrives whole, and what becomes of the reading when it does not.
namespace {
namespace rows_of_a_pattern {

enum class Missing { kGivesOne, kEndsWithZero };

struct Row {
  Bytes stored;  // nothing for a step that reads nothing
  std::function<void(Pattern&)> apply;
  Missing missing = Missing::kGivesOne;
};

struct Form {
  std::int32_t groupKind = 0;
  int bindings = 2;
  int items = 2;
  bool embedded = true;
};

bool isGroup(int version, std::int32_t kind) { return kind >= 32000 && kind <= (version < 110 ? 32004 : 32006); }

PatternItem itemOf(int version, std::uint32_t first) {
  PatternItem item;
  item.itemWord1 = first;
  item.toolNumber = static_cast<std::int32_t>(first + 1);
  if (version >= 62) {
    item.itemWord2 = first + 2;
    item.itemPair1[0] = first + 3;
    item.itemPair1[1] = first + 4;
    item.itemPair2[0] = first + 5;
    item.itemPair2[1] = first + 6;
    item.itemShort1 = first + 7;
    item.itemShort2 = first + 8;
    item.itemWord3 = first + 9;
    item.itemWord4 = first + 10;
  }
  if (version >= 90) item.lateWord = first + 11;
  return item;
}

Bytes itemBytes(int version, std::uint32_t first) {
  Bytes b;
  const std::uint32_t words = version >= 90 ? 12 : version >= 62 ? 11 : 2;
  for (std::uint32_t i = 0; i < words; ++i) b.u32(first + i);
  return b;
}

std::vector<Row> rowsOf(int version, const Form& form) {
  std::vector<Row> rows;
  const auto add = [&](const Bytes& stored, std::function<void(Pattern&)> apply) { rows.push_back({stored, apply}); };
  const auto tail = [&](const Bytes& stored, std::function<void(Pattern&)> apply) {
    rows.push_back({stored, apply, Missing::kEndsWithZero});
  };
  add(Bytes().i32(-101), [](Pattern& p) { p.headWord = -101; });
  add(Bytes().u32(102), [](Pattern& p) { p.gridCount1 = 102; });
  add(Bytes().u32(103), [](Pattern& p) { p.gridCount2 = 103; });
  add(Bytes().u32(104), [](Pattern& p) { p.gridStep1 = 104; });
  add(Bytes().u32(105), [](Pattern& p) { p.gridStep2 = 105; });
  add(Bytes().f32(1.5F).f32(-2.5F).f32(0.25F).f32(-0.75F), [](Pattern& p) {
    p.originX = 1.5F;
    p.originY = -2.5F;
    p.rotationCos = 0.25F;
    p.rotationSin = -0.75F;
  });
  add(Bytes().u32(107), [](Pattern& p) { p.patternWord = 107; });
  const bool group = isGroup(version, form.groupKind);
  add(Bytes().i32(form.groupKind), [=](Pattern& p) { p.groupKind = group ? form.groupKind : 0; });
  if (group) {
    add(Bytes().raw({11, 12, 13, 14, 15, 16, 17, 18}), [](Pattern& p) {
      for (int i = 0; i < 8; ++i) p.groupBlock[i] = static_cast<std::uint8_t>(11 + i);
    });
    for (std::uint32_t i = 0; i < 7; ++i) add(Bytes().u32(120 + i), [=](Pattern& p) { p.groupWords[i] = 120 + i; });
  }
  if (group && version >= 110) {
    add(Bytes().u32(131), [](Pattern& p) { p.bindWord1 = 131; });
    add(Bytes().u32(132), [](Pattern& p) { p.bindWord2 = 132; });
    add(Bytes().u32(133), [](Pattern& p) { p.bindWord3 = 133; });
    add(Bytes().u8(134), [](Pattern& p) { p.bindByte = 134; });
    add(Bytes().u32(135), [](Pattern& p) { p.bindWord4 = 135; });
    for (int i = 0; i < 8; ++i) {
      const auto value = static_cast<std::uint16_t>(0x1400 + i);
      tail(Bytes().u16(value), [=](Pattern& p) { p.bindShorts[i] = value; });
    }
    const int bindings = form.bindings;
    tail(Bytes().i32(bindings), [=](Pattern& p) {
      if (bindings <= 0) return;
      p.bindFirst.clear();
      p.bindSecond.clear();
      p.bindThird.clear();
      p.bindFourth.clear();
      p.bindFifth.clear();
    });
    for (int i = 0; i < bindings; ++i) {
      const auto w = static_cast<std::uint32_t>(200 + 10 * i);
      Bytes one = Bytes().u32(w).u32(w + 1).u32(w + 2).u32(w + 3);
      if (version >= 156) one.u32(w + 4);
      if (version >= 160) one.u32(w + 5).u32(w + 6);
      tail(one, [=](Pattern& p) {
        p.bindFirst.emplace_back(w, w + 1);
        p.bindSecond.emplace_back(w + 2, w + 3);
        p.bindThird.push_back(version >= 156 ? w + 4 : 0);
        p.bindFourth.push_back(version >= 160 ? w + 5 : 0);
        p.bindFifth.push_back(version >= 160 ? w + 6 : 0);
      });
    }
    if (version >= 151) {
      tail(Bytes().u32(141), [](Pattern& p) { p.lateWord1 = 141; });
      tail(Bytes().u32(142), [](Pattern& p) { p.lateWord2 = 142; });
      tail(Bytes().u32(143), [](Pattern& p) { p.lateWord3 = 143; });
      if (version <= 155) add(Bytes(), [](Pattern& p) { std::fill(p.bindThird.begin(), p.bindThird.end(), 143U); });
    }
  }
  if (!form.embedded)
    add(Bytes(), [](Pattern& p) {
      p.headWord = 0;
      p.gridCount1 = p.gridCount2 = 1;
      p.gridStep1 = p.gridStep2 = 0;
    });
  add(Bytes().i32(form.items), [=](Pattern& p) {
    if (form.items != 0) p.items.clear();
  });
  for (int i = 0; i < form.items; ++i) {
    const auto first = static_cast<std::uint32_t>(300 + 20 * i);
    add(itemBytes(version, first), [=](Pattern& p) { p.items.push_back(itemOf(version, first)); });
  }
  if (version >= 80) {
    add(Bytes().i32(0), [](Pattern&) {});  // profiles
    add(Bytes().i32(0), [](Pattern&) {});  // step tables
  }
  return rows;
}

Bytes bytesOf(const std::vector<Row>& rows) {
  Bytes all;
  for (const Row& row : rows) all.add(row.stored);
  return all;
}

// What a file cut behind `cut` bytes makes of `start`, and the reader's result.
int expectedOf(const std::vector<Row>& rows, std::size_t cut, Pattern& start) {
  std::size_t at = 0;
  for (const Row& row : rows) {
    at += row.stored.size();
    if (at > cut) return row.missing == Missing::kGivesOne ? 1 : 0;
    row.apply(start);
  }
  return 0;
}

void expectSameItem(const PatternItem& got, const PatternItem& want) {
  EXPECT_EQ(got.itemWord1, want.itemWord1);
  EXPECT_EQ(got.toolNumber, want.toolNumber);
  EXPECT_EQ(got.memoryWord1, want.memoryWord1);
  EXPECT_EQ(got.itemWord2, want.itemWord2);
  for (int i : {0, 1}) {
    EXPECT_EQ(got.itemPair1[i], want.itemPair1[i]);
    EXPECT_EQ(got.itemPair2[i], want.itemPair2[i]);
  }
  EXPECT_EQ(got.itemShort1, want.itemShort1);
  EXPECT_EQ(got.itemShort2, want.itemShort2);
  EXPECT_EQ(got.itemWord3, want.itemWord3);
  EXPECT_EQ(got.itemWord4, want.itemWord4);
  EXPECT_EQ(got.memoryWord2, want.memoryWord2);
  EXPECT_EQ(got.lateWord, want.lateWord);
}

void expectSame(const Pattern& got, const Pattern& want) {
  EXPECT_EQ(got.headWord, want.headWord);
  EXPECT_EQ(got.gridCount1, want.gridCount1);
  EXPECT_EQ(got.gridCount2, want.gridCount2);
  EXPECT_EQ(got.gridStep1, want.gridStep1);
  EXPECT_EQ(got.gridStep2, want.gridStep2);
  EXPECT_EQ(got.originX, want.originX);
  EXPECT_EQ(got.originY, want.originY);
  EXPECT_EQ(got.rotationCos, want.rotationCos);
  EXPECT_EQ(got.rotationSin, want.rotationSin);
  EXPECT_EQ(got.patternWord, want.patternWord);
  EXPECT_EQ(got.groupKind, want.groupKind);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(got.groupBlock[i], want.groupBlock[i]) << i;
  for (int i = 0; i < 7; ++i) EXPECT_EQ(got.groupWords[i], want.groupWords[i]) << i;
  EXPECT_EQ(got.bindWord1, want.bindWord1);
  EXPECT_EQ(got.bindWord2, want.bindWord2);
  EXPECT_EQ(got.bindWord3, want.bindWord3);
  EXPECT_EQ(got.bindByte, want.bindByte);
  EXPECT_EQ(got.bindWord4, want.bindWord4);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(got.bindShorts[i], want.bindShorts[i]) << i;
  EXPECT_EQ(got.bindFirst, want.bindFirst);
  EXPECT_EQ(got.bindSecond, want.bindSecond);
  EXPECT_EQ(got.bindThird, want.bindThird);
  EXPECT_EQ(got.bindFourth, want.bindFourth);
  EXPECT_EQ(got.bindFifth, want.bindFifth);
  EXPECT_EQ(got.lateWord1, want.lateWord1);
  EXPECT_EQ(got.lateWord2, want.lateWord2);
  EXPECT_EQ(got.lateWord3, want.lateWord3);
  EXPECT_EQ(got.transformKind, want.transformKind);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(got.transform[i], want.transform[i]) << i;
  EXPECT_EQ(got.scratchShapes.shapes.size(), want.scratchShapes.shapes.size());
  EXPECT_EQ(got.profiles.size(), want.profiles.size());
  EXPECT_EQ(got.stepTables.size(), want.stepTables.size());
  ASSERT_EQ(got.items.size(), want.items.size());
  for (std::size_t i = 0; i < got.items.size(); ++i) expectSameItem(got.items[i], want.items[i]);
}

// A pattern that holds something in every field.
Pattern usedPattern() {
  Pattern p;
  p.headWord = 901;
  p.gridCount1 = 902;
  p.gridCount2 = 903;
  p.gridStep1 = 904;
  p.gridStep2 = 905;
  p.originX = p.originY = p.rotationCos = p.rotationSin = 9.5F;
  p.items.resize(3);
  for (PatternItem& item : p.items) item.itemWord1 = 906;
  p.patternWord = 907;
  std::memset(p.groupBlock, 99, sizeof p.groupBlock);
  p.groupKind = 32001;
  for (std::uint32_t& word : p.groupWords) word = 908;
  p.profiles.resize(1);
  p.stepTables.resize(2);
  p.transformKind = 9;
  p.transform[4] = 7.0F;
  p.scratchShapes.shapes.resize(1);
  p.bindWord1 = p.bindWord2 = p.bindWord3 = p.bindWord4 = 909;
  p.bindByte = 91;
  for (std::uint16_t& one : p.bindShorts) one = 910;
  p.lateWord1 = p.lateWord2 = p.lateWord3 = 911;
  p.bindFirst.assign(3, {912, 913});
  p.bindSecond.assign(3, {914, 915});
  p.bindThird.assign(3, 916);
  p.bindFourth.assign(3, 917);
  p.bindFifth.assign(3, 918);
  return p;
}

std::vector<Form> allForms() {
  std::vector<Form> forms;
  for (const bool embedded : {true, false})
    for (const std::int32_t kind : {0, 1, 31999, 32000, 32004, 32005, 32006, 32007, -32000})
      for (const int bindings : {0, 2}) forms.push_back({kind, bindings, 2, embedded});
  return forms;
}

std::string nameOf(int version, const Form& form) {
  return "version " + std::to_string(version) + ", kind " + std::to_string(form.groupKind) + ", bindings " +
         std::to_string(form.bindings) + (form.embedded ? ", embedded" : "");
}

int readPattern(const Bytes& bytes, int version, bool embedded, Pattern& p, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](auto& s) { return ReadPattern(s, version, embedded, p); }, consumed);
}

TEST(PatternRows, EveryVersionLoadsItsRowsIntoAFreshAndIntoAUsedPattern) {
  for (const Form& form : allForms())
    for (int version = 52; version <= 180; ++version) {
      SCOPED_TRACE(nameOf(version, form));
      const auto rows = rowsOf(version, form);
      const Bytes bytes = bytesOf(rows);
      for (const bool used : {false, true}) {
        Pattern want = used ? usedPattern() : Pattern();
        Pattern got = want;
        std::size_t consumed = 0;
        ASSERT_EQ(expectedOf(rows, bytes.size(), want), 0);
        ASSERT_EQ(readPattern(Bytes(bytes).fill(3, 0xEE), version, form.embedded, got, &consumed), 0);
        EXPECT_EQ(consumed, bytes.size());
        expectSame(got, want);
      }
      if (HasFailure()) return;
    }
}

TEST(PatternRows, EveryVersionStoresItsRowsAndTheHeadAsItStands) {
  for (const Form& form : allForms()) {
    if (!form.embedded) continue;
    for (int version = 52; version <= 180; ++version) {
      SCOPED_TRACE(nameOf(version, form));
      const auto rows = rowsOf(version, form);
      Pattern p;
      (void)expectedOf(rows, bytesOf(rows).size(), p);
      p.groupKind = form.groupKind;  // stored as it stands, also outside the band
      bool ok = false;
      EXPECT_EQ(written([&](auto& s) { return WritePattern(s, version, p); }, &ok), bytesOf(rows));
      EXPECT_TRUE(ok);
      if (HasFailure()) return;
    }
  }
}

TEST(PatternRows, CutAtAnyByteKeepsTheRowsThatArrivedWhole) {
  for (const bool embedded : {true, false})
    for (const std::int32_t kind : {0, 32001})
      for (const int version : {52, 61, 62, 79, 80, 89, 90, 109, 110, 150, 151, 155, 156, 159, 160, 180}) {
        const Form form{kind, 2, 2, embedded};
        SCOPED_TRACE(nameOf(version, form));
        const auto rows = rowsOf(version, form);
        const Bytes bytes = bytesOf(rows);
        for (std::size_t cut = 0; cut < bytes.size(); ++cut)
          for (const bool used : {false, true}) {
            SCOPED_TRACE("cut at " + std::to_string(cut));
            Pattern want = used ? usedPattern() : Pattern();
            Pattern got = want;
            std::size_t consumed = 0;
            const int result = expectedOf(rows, cut, want);
            ASSERT_EQ(readPattern(bytes.cut(cut), version, embedded, got, &consumed), result);
            EXPECT_EQ(consumed, cut) << "a field that is cut in two leaves the stream at its end";
            // The raw block of four numbers arrives whole or not at all, so do items and bindings.
            expectSame(got, want);
            if (HasFailure()) return;
          }
      }
}

TEST(PatternRows, Version100WipesKind32005AndReadsTheItemCountNextWhileVersion110ReadsTheGroup) {
  const Bytes plain = Bytes().zeros(40).i32(32005).i32(1);
  Pattern p;
  EXPECT_EQ(readPattern(Bytes(plain).add(itemBytes(100, 50)).i32(0).i32(0), 100, true, p), 0);
  EXPECT_EQ(p.groupKind, 0);
  ASSERT_EQ(p.items.size(), 1U);
  EXPECT_EQ(p.items[0].lateWord, 61U);

  Pattern group;
  const Form form{32005, 1, 1, true};
  EXPECT_EQ(readPattern(bytesOf(rowsOf(110, form)), 110, true, group), 0);
  EXPECT_EQ(group.groupKind, 32005);
  EXPECT_EQ(group.groupBlock[0], 11);
}

TEST(PatternRows, NegativeBindingAndItemCountsReadNothingAndOnlyTheItemsAreEmptied) {
  for (const int version : {110, 150, 160, 180}) {
    const Form form{32000, -1, -5, true};
    const auto rows = rowsOf(version, form);
    Pattern got = usedPattern();
    Pattern want = usedPattern();
    (void)expectedOf(rows, bytesOf(rows).size(), want);
    EXPECT_EQ(readPattern(bytesOf(rows), version, true, got), 0);
    expectSame(got, want);
    EXPECT_TRUE(got.items.empty());
    EXPECT_EQ(got.bindFirst.size(), 3U);
  }
}

TEST(PatternRows, ProfilesAndStepTablesAreStoredFromVersion80OnInThisOrder) {
  for (const int version : {79, 80, 89, 90}) {
    Pattern p;
    p.profiles.resize(1);
    p.profiles[0].profileIndex = 77;
    p.stepTables.resize(1);
    p.stepTables[0].tableWord1 = 88;
    Bytes expected = Bytes().i32(0).i32(1).i32(1).i32(0).i32(0).f32(0).f32(0).f32(1).f32(0).i32(0).i32(0).i32(0);
    if (version >= 80) {
      const auto table = [&](std::uint32_t word) {
        Bytes b = Bytes().u32(word).zeros(8).u32(0).u32(0).i8(0).u8(0);
        return version >= 90 ? b.u8(0) : b;
      };
      const auto motion = [&](std::int32_t kind) {
        return Bytes().i32(kind).u32(0).f32(50).f32(0.125F).u32(0x3FC90FDB).u32(0x3F490FDB).f32(0.125F).add(table(0));
      };
      expected.i32(1).zeros(16).i32(77).u32(0).u32(0).u32(0).zeros(8).u32(0).u32(0).u32(0).zeros(14 * 4);
      expected.add(motion(5)).add(motion(3)).u32(0).u32(0).i32(-1).u32(0);
      expected.i32(1).add(table(88));
    }
    EXPECT_EQ(written([&](auto& s) { return WritePattern(s, version, p); }), expected) << version;
    Pattern got;
    ASSERT_EQ(readPattern(expected, version, true, got), 0);
    ASSERT_EQ(got.profiles.size(), version >= 80 ? 1U : 0U);
    ASSERT_EQ(got.stepTables.size(), version >= 80 ? 1U : 0U);
    if (version >= 80) {
      EXPECT_EQ(got.profiles[0].profileIndex, 77);
      EXPECT_EQ(got.profiles[0].secondBlock.motionKind, 3);
      EXPECT_EQ(got.stepTables[0].tableWord1, 88U);
    }
  }
}

TEST(PatternRows, LastTableThatEndsInFrontOfItsStepCountIsKeptAndIsNoFault) {
  const Bytes front = Bytes().zeros(40).i32(0).i32(0).i32(0).i32(1).u32(66).zeros(16);
  Pattern p;
  EXPECT_EQ(readPattern(front, 80, true, p), 0);
  ASSERT_EQ(p.stepTables.size(), 1U);
  EXPECT_EQ(p.stepTables[0].tableWord1, 66U);
  Pattern further;
  EXPECT_EQ(readPattern(Bytes(front).i8(0), 80, true, further), 1);
  EXPECT_TRUE(further.stepTables.empty());
}

TEST(PatternRows, CountsThatTheFileCannotMeetGiveOneExceptThatOfTheBindings) {
  for (const std::int64_t count : {2LL, 1000000LL, 2147483647LL}) {
    Pattern p;
    EXPECT_EQ(readPattern(Bytes().zeros(44).i32(count).add(itemBytes(100, 1)).zeros(7), 100, true, p), 1) << count;
    EXPECT_EQ(p.items.size(), 1U);

    Pattern profiles;
    EXPECT_EQ(readPattern(Bytes().zeros(48).i32(count).zeros(40), 100, true, profiles), 1) << count;
    EXPECT_TRUE(profiles.profiles.empty());

    Pattern tables;
    EXPECT_EQ(readPattern(Bytes().zeros(52).i32(count).zeros(23).zeros(7), 100, true, tables), 1) << count;
    EXPECT_EQ(tables.stepTables.size(), 1U);

    Pattern bindings;
    const Bytes group = Bytes().zeros(40).i32(32000).zeros(8 + 28 + 17 + 16).i32(count).zeros(16).zeros(11);
    EXPECT_EQ(readPattern(group, 110, true, bindings), 0) << count;
    EXPECT_EQ(bindings.bindFirst.size(), 1U);

    PatternList list;
    const Bytes one = Bytes().zeros(44 + 12);
    EXPECT_EQ(readFrom(Bytes().i32(count).add(one).zeros(43),
                       [&](auto& s) { return ReadEmbeddedPatternList(s, 100, true, list); }),
              1);
    EXPECT_EQ(list.size(), 1U);
  }
}

TEST(EmbeddedPatternRows, ListHoldsItsCountAndThenEachPattern) {
  for (const int version : {52, 61, 62, 80, 110, 151, 156, 160, 180})
    for (const int count : {0, 1, 3}) {
      const Form form{32000, 2, 1, true};
      const auto rows = rowsOf(version, form);
      Pattern made;
      (void)expectedOf(rows, bytesOf(rows).size(), made);
      const PatternList list(static_cast<std::size_t>(count), made);
      Bytes expected = Bytes().i32(count);
      for (int i = 0; i < count; ++i) expected.add(bytesOf(rows));
      bool ok = false;
      EXPECT_EQ(written([&](auto& s) { return WriteEmbeddedPatternList(s, version, list); }, &ok), expected);
      EXPECT_TRUE(ok);
      for (const bool embedded : {true, false}) {
        PatternList got;
        ASSERT_EQ(readFrom(expected, [&](auto& s) { return ReadEmbeddedPatternList(s, version, embedded, got); }), 0);
        ASSERT_EQ(got.size(), list.size());
        for (const Pattern& one : got) {
          Pattern want = made;
          if (!embedded) {
            want.headWord = 0;
            want.gridCount1 = want.gridCount2 = 1;
            want.gridStep1 = want.gridStep2 = 0;
          }
          expectSame(one, want);
        }
      }
    }
}

TEST(EmbeddedPatternRows, ShortCountGivesOneAndKeepsTheList) {
  for (std::size_t cut = 0; cut < 4; ++cut) {
    PatternList list(2);
    const Bytes bytes = Bytes().i32(0).cut(cut);
    EXPECT_EQ(readFrom(bytes, [&](auto& s) { return ReadEmbeddedPatternList(s, 90, true, list); }), 1);
    EXPECT_EQ(list.size(), 2U);
  }
}

}  // namespace rows_of_a_pattern
}  // namespace
