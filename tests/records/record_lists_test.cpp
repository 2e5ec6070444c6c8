// The rules that all lists with a count before them share. Orders and versions are in stored_records_test.cpp.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "src/records/record_io.h"
#include "tests/support/host.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

// Of each list: its fixed bytes before the count, how it is read and stored, and an element that cannot be stored.
struct Marks {
  using Record = MarkList;
  static constexpr std::size_t kFront = 0;
  static MarkList& elements(Record& r) { return r; }
  static int read(InStream& s, Record& r) { return ReadMarkList(s, r); }
  static bool write(OutStream& s, const Record& r) { return WriteMarkList(s, r); }
  static void stored(Maker& m, Record& r) { storedMarks(m, 2, r); }
};
struct Items {
  using Record = PatternItemList;
  static constexpr std::size_t kFront = 0;
  static PatternItemList& elements(Record& r) { return r; }
  static int read(InStream& s, Record& r) { return ReadPatternItemList(s, 90, r); }
  static bool write(OutStream& s, const Record& r) { return WritePatternItemList(s, 90, r); }
  static void stored(Maker& m, Record& r) { storedItems(m, 90, 2, r); }
};
struct Profiles {
  using Record = ProfileList;
  static constexpr std::size_t kFront = 0;
  static ProfileList& elements(Record& r) { return r; }
  static int read(InStream& s, Record& r) { return ReadProfileList(s, 90, r); }
  static bool write(OutStream& s, const Record& r) { return WriteProfileList(s, 90, r); }
  static void stored(Maker& m, Record& r) { storedProfiles(m, 90, 2, r); }
  static void spoil(ProfileRecord& p) { p.secondBlock.steps.stepCount = 21; }
};
struct StepTables {
  using Record = StepTableList;
  static constexpr std::size_t kFront = 0;
  static StepTableList& elements(Record& r) { return r; }
  static int read(InStream& s, Record& r) { return ReadStepTableList(s, 90, r); }
  static bool write(OutStream& s, const Record& r) { return WriteStepTableList(s, 90, r); }
  static void stored(Maker& m, Record& r) { storedStepTables(m, 90, 2, 3, r); }
  static void spoil(StepTable& t) { t.stepCount = 21; }
};
struct Shapes {
  using Record = ShapeList;
  static constexpr std::size_t kFront = 8;
  static std::vector<Shape>& elements(Record& r) { return r.shapes; }
  static int read(InStream& s, Record& r) { return ReadShapeList(s, 90, r); }
  static bool write(OutStream& s, const Record& r) { return WriteShapeList(s, 90, r); }
  static void stored(Maker& m, Record& r) { storedShapeList(m, 90, {ShapeForm{}, ShapeForm{}}, r); }
  static void spoil(Shape& s) { s.valueCount = 10; }
};

template <class List>
class CountFirstLists : public testing::Test {
 protected:
  using Record = typename List::Record;
  static int read(const Bytes& bytes, Record& record, std::size_t* consumed = nullptr) {
    return readFrom(
        bytes, [&](InStream& s) { return List::read(s, record); }, consumed);
  }
  static Bytes counted(std::int64_t count) { return Bytes().zeros(List::kFront).i32(count); }
  // Two elements with values.
  static Bytes two(Record& made) {
    Maker m;
    List::stored(m, made);
    return m.bytes;
  }
};
using Lists = testing::Types<Marks, Items, Profiles, StepTables, Shapes>;
TYPED_TEST_SUITE(CountFirstLists, Lists);

TYPED_TEST(CountFirstLists, CountOfZeroKeepsExistingElements) {
  typename TypeParam::Record record, made;
  (void)this->two(made);
  record = made;
  std::size_t consumed = 0;
  EXPECT_EQ(this->read(this->counted(0).fill(900, 0x11), record, &consumed), 0);
  EXPECT_EQ(consumed, TypeParam::kFront + 4);
  const Bytes kept = written([&](OutStream& s) { return TypeParam::write(s, record); });
  const Bytes before = written([&](OutStream& s) { return TypeParam::write(s, made); });
  EXPECT_EQ(from(kept, TypeParam::kFront), from(before, TypeParam::kFront));
}

TYPED_TEST(CountFirstLists, NegativeCountRemovesAllElements) {
  for (const int count : {-1, -2, std::numeric_limits<int>::min()}) {
    typename TypeParam::Record record;
    TypeParam::elements(record).resize(3);
    std::size_t consumed = 0;
    EXPECT_EQ(this->read(this->counted(count).fill(900, 0x11), record, &consumed), 0) << count;
    EXPECT_EQ(consumed, TypeParam::kFront + 4) << count;
    EXPECT_TRUE(TypeParam::elements(record).empty()) << count;
  }
}

TYPED_TEST(CountFirstLists, CutBeforeTheEndOfTheCountFailsAndKeepsTheElements) {
  for (std::size_t cut = 0; cut < TypeParam::kFront + 4; ++cut) {
    typename TypeParam::Record record;
    TypeParam::elements(record).resize(3);
    EXPECT_EQ(this->read(this->counted(1).cut(cut), record), 1) << cut;
    EXPECT_EQ(TypeParam::elements(record).size(), 3U) << cut;
  }
}

TYPED_TEST(CountFirstLists, LoadReplacesTheElementsByFreshOnes) {
  typename TypeParam::Record made, record, other;
  const Bytes bytes = this->two(made);
  Maker m = Maker::ofEveryField(1);
  TypeParam::stored(m, record);
  TypeParam::elements(record).resize(5, TypeParam::elements(record)[0]);
  EXPECT_EQ(this->read(bytes, record), 0);
  EXPECT_EQ(TypeParam::elements(record).size(), 2U);
  EXPECT_EQ(written([&](OutStream& s) { return TypeParam::write(s, record); }), bytes);
}

TYPED_TEST(CountFirstLists, CountBeyondTheFileFailsWithTheElementsThatAreThere) {
  for (const int count : {3, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    typename TypeParam::Record made, record;
    const Bytes elements = from(this->two(made), TypeParam::kFront + 4);
    EXPECT_EQ(this->read(this->counted(count).add(elements).zeros(7), record), 1) << count;
    EXPECT_EQ(TypeParam::elements(record).size(), 2U) << count;
  }
}

TYPED_TEST(CountFirstLists, RefusedElementKeepsThoseBeforeIt) {
  if constexpr (requires(typename TypeParam::Record & r) { TypeParam::spoil(TypeParam::elements(r)[0]); }) {
    typename TypeParam::Record made;
    const Bytes whole = this->two(made);
    const std::size_t one = (whole.size() - TypeParam::kFront - 4) / 2;
    TypeParam::spoil(TypeParam::elements(made)[1]);
    bool ok = true;
    const Bytes stored = written([&](OutStream& s) { return TypeParam::write(s, made); }, &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(stored.cut(TypeParam::kFront + 4 + one), whole.cut(TypeParam::kFront + 4 + one));
    EXPECT_LT(stored.size(), whole.size());

    // The stored bytes end with the refused count, or before it.
    typename TypeParam::Record record;
    const Bytes bad = Bytes(stored).fill(3000, 0x7F);
    EXPECT_EQ(this->read(bad, record), 1);
    EXPECT_EQ(TypeParam::elements(record).size(), 1U);
  }
}

TYPED_TEST(CountFirstLists, SaveIntoAFileThatTakesNothingIsFalse) {
  typename TypeParam::Record record;
  TypeParam::elements(record).resize(300000 / sizeof(TypeParam::elements(record)[0]) * 64);
  std::FILE* file = unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(TypeParam::write(stream, record));
  }
  std::fclose(file);
}

// ---- elements after richer ones ------------------------------------------------------------------

TEST(ListElements, AStepTableStartsFreshAfterALongerOne) {
  Maker m;
  StepTable rich, poor;
  m.stored(2);
  storedSteps(m, 90, 20, rich);
  Maker second;
  storedSteps(second, 90, 1, poor);
  StepTableList list;
  ASSERT_EQ(readFrom(m.bytes.add(second.bytes), [&](InStream& s) { return ReadStepTableList(s, 90, list); }), 0);
  Checker c;
  storedSteps(c, 90, 1, list.at(1));
}

TEST(ListElements, AShapeStartsFreshAfterOneWithTextAndNote) {
  Maker m, second;
  Shape rich, poor;
  const ShapeForm bare{3, 0, 0, false, ""};
  storedShape(m, 161, ShapeForm{3, 9, 2, true, "noted"}, rich);
  storedShape(second, 161, bare, poor);
  ShapeList list;
  const Bytes bytes = Bytes().i32(0).i32(0).i32(2).add(m.bytes).add(second.bytes);
  ASSERT_EQ(readFrom(bytes, [&](InStream& s) { return ReadShapeList(s, 161, list); }), 0);
  Checker c;
  storedShape(c, 161, bare, list.shapes.at(1));
}

TEST(ListElements, AStepTableThatEndsBeforeItsCountIsKeptAndTheNextOneFails) {
  StepTableList list;
  EXPECT_EQ(readFrom(Bytes().i32(2).u32(11).zeros(16), [&](auto& s) { return ReadStepTableList(s, 90, list); }), 1);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].tableWord1, 11U);
  EXPECT_EQ(list[0].stepCount, 0);
  EXPECT_EQ(readFrom(Bytes().i32(1).zeros(20), [&](auto& s) { return ReadStepTableList(s, 90, list); }), 0);
}

// ---- setup lists ---------------------------------------------------------------------------------

TEST(SetupList, WithoutEntriesStoresFourBytesAndLosesTheRest) {
  SetupList list;
  list.current.setupShort1 = 5;
  list.tailWord2 = 6;
  EXPECT_EQ(written([&](auto& s) { return WriteSetupList(s, list); }), Bytes().i32(0));
}

TEST(SetupList, CountOfZeroKeepsEntriesCurrentAndTail) {
  SetupList used;
  Maker other(1);
  storedSetupList(other, 3, used);
  SetupList list = used;
  std::size_t consumed = 0;
  EXPECT_EQ(readFrom(
                Bytes().i32(0).fill(100, 0xEE), [&](auto& s) { return ReadSetupList(s, list); }, &consumed),
            0);
  EXPECT_EQ(consumed, 4U);
  EXPECT_EQ(written([&](auto& s) { return WriteSetupList(s, list); }), other.bytes);
}

TEST(SetupList, NegativeCountEmptiesTheEntriesAndReadsTheRest) {
  SetupList made;
  Maker m;
  storedSetupList(m, 1, made);
  for (const int count : {-1, -2, std::numeric_limits<int>::min()}) {
    SetupList list;
    list.entries.resize(2);
    const Bytes rest = from(m.bytes, 4 + 42);
    std::size_t consumed = 0;
    EXPECT_EQ(
        readFrom(
            Bytes().i32(count).add(rest).fill(9, 0xEE), [&](auto& s) { return ReadSetupList(s, list); }, &consumed),
        0);
    EXPECT_EQ(consumed, 4 + rest.size());
    EXPECT_TRUE(list.entries.empty());
    EXPECT_EQ(list.current.setupWord3, made.current.setupWord3);
    EXPECT_EQ(list.tailWord2, made.tailWord2);
    for (std::size_t cut = 0; cut < rest.size(); ++cut)
      EXPECT_EQ(readFrom(Bytes().i32(count).add(rest.cut(cut)), [&](auto& s) { return ReadSetupList(s, list); }), 1);
  }
}

TEST(SetupList, CountBeyondTheFileFailsWithTheEntriesThatAreThere) {
  for (const int count : {3, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    SetupList list;
    EXPECT_EQ(readFrom(Bytes().i32(count).zeros(96), [&](auto& s) { return ReadSetupList(s, list); }), 1) << count;
    EXPECT_EQ(list.entries.size(), 2U) << count;
  }
}

// ---- single records ------------------------------------------------------------------------------

TEST(StepTable, NegativeCountReadsNoStepsAndIsKeptAndSaved) {
  for (int count : {-1, -20, -127, -128}) {
    const Bytes bytes = Bytes().u32(11).fill(8, 1).u32(12).u32(13).i8(count).u8(0x51).u8(0x52);
    StepTable table;
    std::size_t consumed = 0;
    EXPECT_EQ(readFrom(
                  Bytes(bytes).fill(9, 0xEE), [&](auto& s) { return ReadStepTable(s, 90, table); }, &consumed),
              0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(table.stepCount, count);
    EXPECT_EQ(table.tableFlag, 0x51);
    EXPECT_EQ(table.stepByteA[0], 255);
    bool ok = false;
    EXPECT_EQ(written([&](auto& s) { return WriteStepTable(s, 90, table); }, &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(StepTable, CountAboveTwentyIsRefusedAsSoonAsItIsRead) {
  for (int count = 21; count <= 127; ++count) {
    StepTable table;
    table.tableFlag = 9;
    std::size_t consumed = 0;
    const Bytes bytes = Bytes().u32(11).zeros(12).u32(13).i8(count).fill(1000, 0x33);
    EXPECT_EQ(readFrom(
                  bytes, [&](auto& s) { return ReadStepTable(s, 90, table); }, &consumed),
              1);
    EXPECT_EQ(consumed, 21U) << count;
    EXPECT_EQ(table.tableWord3, 13U);
    EXPECT_EQ(table.stepByteA[0], 255);
    EXPECT_EQ(table.tableFlag, 9);
  }
}

TEST(StepTable, SaveOfACountAboveTwentyStoresNoSteps) {
  for (int count = 21; count <= 127; ++count) {
    StepTable table;
    table.tableWord1 = 11;
    table.stepCount = static_cast<std::int8_t>(count);
    bool ok = true;
    const Bytes bytes = written([&](auto& s) { return WriteStepTable(s, 90, table); }, &ok);
    EXPECT_FALSE(ok) << count;
    EXPECT_LE(bytes.size(), 21U) << count;
    EXPECT_EQ(bytes.cut(20), Bytes().u32(11).zeros(16)) << count;
  }
}

// What single records return when nothing more can be written.
TEST(RecordWriters, ReturnFalseOnceTheFileTakesNoMore) {
  const auto failsAtLast = [](auto&& write) {
    std::FILE* file = unwritableFile();
    bool ok = true;
    {
      OutStream stream(file);
      // The stream may hold back what is little.
      for (int i = 0; ok && i < 100000; ++i) ok = write(stream);
    }
    std::fclose(file);
    return !ok;
  };
  EXPECT_TRUE(failsAtLast([](OutStream& s) { return WriteProcessSlot(s, 90, ProcessSlot()); }));
  EXPECT_TRUE(failsAtLast([](OutStream& s) { return WriteWorkEntry(s, 130, WorkEntry()); }));
  EXPECT_TRUE(failsAtLast([](OutStream& s) { return WriteOldTool(s, 180, true, OldTool()); }));
  EXPECT_TRUE(failsAtLast([](OutStream& s) { return WriteToolStation(s, 180, ToolStation()); }));
  SetupList setup;
  setup.entries.resize(10);
  EXPECT_TRUE(failsAtLast([&](OutStream& s) { return WriteSetupList(s, setup); }));
  ToolStationList stations;
  stations.stations.resize(2);
  stations.tools.resize(2);
  EXPECT_TRUE(failsAtLast([&](OutStream& s) { return WriteToolStationList(s, 180, stations); }));
}

}  // namespace
