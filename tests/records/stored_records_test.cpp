// Every embedded record at every version from 52 to 180: its bytes as put together by hand load into
// the fields they belong to, the record is stored as those bytes, and a file cut at any byte gives
// the told result with exactly the whole fields set.
#include <gtest/gtest.h>

#include "src/part/part_io.h"
#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

// stored(walker, version, record); read(stream, version, record); write(stream, version, record);
// tolerates(version, cut, size): a file cut there is read with success.
template <class Record, class Stored, class Read, class Write, class Tolerates>
void expectStoredForm(const Stored& stored, const Read& read, const Write& write, const Tolerates& tolerates,
                      bool checksCutFields = true) {
  for (const int version : allVersions()) {
    SCOPED_TRACE("version " + std::to_string(version));
    Maker maker;
    Record made;
    stored(maker, version, made);
    const Bytes& whole = maker.bytes;

    Record record;
    std::size_t consumed = 0;
    EXPECT_EQ(readFrom(
                  whole, [&](auto& s) { return read(s, version, record); }, &consumed),
              0);
    EXPECT_EQ(consumed, whole.size());
    Checker checker;
    stored(checker, version, record);

    bool ok = false;
    EXPECT_EQ(written([&](auto& s) { return write(s, version, made); }, &ok), whole);
    EXPECT_TRUE(ok);

    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
      Record part;
      std::size_t ended = 0;
      const int result = readFrom(
          whole.cut(cut), [&](auto& s) { return read(s, version, part); }, &ended);
      EXPECT_EQ(result, tolerates(version, cut, whole.size()) ? 0 : 1) << "cut at " << cut;
      EXPECT_EQ(ended, cut) << "a failed read leaves the stream at the end";
      if (!checksCutFields) continue;
      Checker whatIsThere(cut);
      stored(whatIsThere, version, part);
    }
    if (::testing::Test::HasFailure()) return;
  }
}

constexpr auto kNothing = [](int, std::size_t, std::size_t) { return false; };

TEST(StoredRecords, ToolOfEveryShapeCodeWithAndWithoutItsPath) {
  for (const std::int32_t code : {0, 1, 107, 108, 111, -5})
    for (const bool path : {true, false})
      expectStoredForm<OldTool>([&](auto& m, int v, OldTool& t) { storedTool(m, v, path, code, t); },
                                [&](auto& s, int v, OldTool& t) { return ReadOldTool(s, v, path, t); },
                                [&](auto& s, int v, const OldTool& t) { return WriteOldTool(s, v, path, t); },
                                kNothing);
}

TEST(StoredRecords, ToolStation) {
  expectStoredForm<ToolStation>([](auto& m, int v, ToolStation& r) { storedStation(m, v, r); },
                                [](auto& s, int v, ToolStation& r) { return ReadToolStation(s, v, r); },
                                [](auto& s, int v, const ToolStation& r) { return WriteToolStation(s, v, r); },
                                [](int v, std::size_t cut, std::size_t size) { return v >= 130 && cut >= size - 8; });
}

TEST(StoredRecords, ToolStationList) {
  expectStoredForm<ToolStationList>(
      [](auto& m, int v, ToolStationList& r) {
        storedStations(m, v, {1, 108, 107, 0}, r);
      },
      [](auto& s, int v, ToolStationList& r) { return ReadToolStationList(s, v, r); },
      [](auto& s, int v, const ToolStationList& r) { return WriteToolStationList(s, v, r); }, kNothing, false);
}

TEST(StoredRecords, ShapeWithEveryCountAndWithTextAndNote) {
  for (int values = 0; values <= 9; values += 3)
    for (int extras = 0; extras <= 2; ++extras)
      for (const bool text : {false, true}) {
        const ShapeForm form{3, values, extras, text, text ? "noted" : ""};
        expectStoredForm<Shape>([&](auto& m, int v, Shape& r) { storedShape(m, v, form, r); },
                                [](auto& s, int v, Shape& r) { return ReadShape(s, v, r); },
                                [](auto& s, int v, const Shape& r) { return WriteShape(s, v, r); },
                                [](int v, std::size_t cut, std::size_t size) { return v >= 161 && cut >= size - 8; });
      }
}

TEST(StoredRecords, ShapeList) {
  expectStoredForm<ShapeList>([](auto& m, int v, ShapeList& r) { storedShapeList(m, v, someShapes(), r); },
                              [](auto& s, int v, ShapeList& r) { return ReadShapeList(s, v, r); },
                              [](auto& s, int v, const ShapeList& r) { return WriteShapeList(s, v, r); },
                              [](int v, std::size_t cut, std::size_t size) { return v >= 161 && cut >= size - 8; },
                              false);
}

TEST(StoredRecords, ProcessSlot) {
  expectStoredForm<ProcessSlot>([](auto& m, int v, ProcessSlot& r) { storedSlot(m, v, r); },
                                [](auto& s, int v, ProcessSlot& r) { return ReadProcessSlot(s, v, r); },
                                [](auto& s, int v, const ProcessSlot& r) { return WriteProcessSlot(s, v, r); },
                                kNothing);
}

TEST(StoredRecords, StepTableToleratesAnEndInFrontOfItsCount) {
  for (int steps = 0; steps <= 20; ++steps)
    expectStoredForm<StepTable>([&](auto& m, int v, StepTable& r) { storedSteps(m, v, steps, r); },
                                [](auto& s, int v, StepTable& r) { return ReadStepTable(s, v, r); },
                                [](auto& s, int v, const StepTable& r) { return WriteStepTable(s, v, r); },
                                [](int, std::size_t cut, std::size_t) { return cut == 20; });
}

TEST(StoredRecords, SetupEntry) {
  expectStoredForm<SetupEntry>([](auto& m, int, SetupEntry& r) { storedSetupEntry(m, r); },
                               [](auto& s, int, SetupEntry& r) { return ReadSetupEntry(s, r); },
                               [](auto& s, int, const SetupEntry& r) { return WriteSetupEntry(s, r); }, kNothing);
}

TEST(StoredRecords, SetupList) {
  for (const std::size_t entries : {0U, 1U, 3U})
    expectStoredForm<SetupList>([&](auto& m, int, SetupList& r) { storedSetupList(m, entries, r); },
                                [](auto& s, int, SetupList& r) { return ReadSetupList(s, r); },
                                [](auto& s, int, const SetupList& r) { return WriteSetupList(s, r); }, kNothing, false);
}

TEST(StoredRecords, MotionBlockToleratesAnEndInItsLateWords) {
  expectStoredForm<MotionBlock>([](auto& m, int v, MotionBlock& r) { storedMotion(m, v, 5, r); },
                                [](auto& s, int v, MotionBlock& r) { return ReadMotionBlock(s, v, r); },
                                [](auto& s, int v, const MotionBlock& r) { return WriteMotionBlock(s, v, r); },
                                [](int v, std::size_t cut, std::size_t) {
                                  const std::size_t late = v >= 152 ? 20U : v == 151 ? 8U : 0U;
                                  return (cut >= 28 && cut < 28 + late) || cut == 28 + late + 20;
                                });
}

TEST(StoredRecords, ProfileRecordToleratesAnEndInItsLateFields) {
  expectStoredForm<ProfileRecord>([](auto& m, int v, ProfileRecord& r) { storedProfile(m, v, r); },
                                  [](auto& s, int v, ProfileRecord& r) { return ReadProfileRecord(s, v, r); },
                                  [](auto& s, int v, const ProfileRecord& r) { return WriteProfileRecord(s, v, r); },
                                  [](int v, std::size_t cut, std::size_t size) {
                                    const std::size_t late = (v >= 150 ? 4U : 0U) + (v >= 151 ? 8U : 0U) +
                                                             (v >= 152 ? 1U : 0U) + (v >= 161 ? 4U : 0U);
                                    return cut >= size - late;
                                  });
}

TEST(StoredRecords, ProfileListAndStepTableList) {
  expectStoredForm<ProfileList>(
      [](auto& m, int v, ProfileList& r) {
        m.size(r, 2);
        for (ProfileRecord& one : r) storedProfile(m, v, one);
      },
      [](auto& s, int v, ProfileList& r) { return ReadProfileList(s, v, r); },
      [](auto& s, int v, const ProfileList& r) { return WriteProfileList(s, v, r); },
      [](int v, std::size_t cut, std::size_t size) {
        const std::size_t late =
            (v >= 150 ? 4U : 0U) + (v >= 151 ? 8U : 0U) + (v >= 152 ? 1U : 0U) + (v >= 161 ? 4U : 0U);
        return cut >= size - late;
      },
      false);
  expectStoredForm<StepTableList>(
      [](auto& m, int v, StepTableList& r) {
        m.size(r, 1);
        storedSteps(m, v, 4, r[0]);
      },
      [](auto& s, int v, StepTableList& r) { return ReadStepTableList(s, v, r); },
      [](auto& s, int v, const StepTableList& r) { return WriteStepTableList(s, v, r); },
      [](int, std::size_t cut, std::size_t) { return cut == 24; }, false);
}

TEST(StoredRecords, PatternItemAndItsList) {
  expectStoredForm<PatternItem>([](auto& m, int v, PatternItem& r) { storedItem(m, v, r); },
                                [](auto& s, int v, PatternItem& r) { return ReadPatternItem(s, v, r); },
                                [](auto& s, int v, const PatternItem& r) { return WritePatternItem(s, v, r); },
                                kNothing);
  expectStoredForm<PatternItemList>(
      [](auto& m, int v, PatternItemList& r) {
        m.size(r, 3);
        for (PatternItem& one : r) storedItem(m, v, one);
      },
      [](auto& s, int v, PatternItemList& r) { return ReadPatternItemList(s, v, r); },
      [](auto& s, int v, const PatternItemList& r) { return WritePatternItemList(s, v, r); }, kNothing, false);
}

TEST(StoredRecords, WorkEntry) {
  expectStoredForm<WorkEntry>([](auto& m, int v, WorkEntry& r) { storedWork(m, v, r); },
                              [](auto& s, int v, WorkEntry& r) { return ReadWorkEntry(s, v, r); },
                              [](auto& s, int v, const WorkEntry& r) { return WriteWorkEntry(s, v, r); }, kNothing);
}

TEST(StoredRecords, MarkEntryAndItsList) {
  expectStoredForm<MarkEntry>([](auto& m, int, MarkEntry& r) { storedMark(m, r); },
                              [](auto& s, int, MarkEntry& r) { return ReadMarkEntry(s, r); },
                              [](auto& s, int, const MarkEntry& r) { return WriteMarkEntry(s, r); }, kNothing);
  expectStoredForm<MarkList>(
      [](auto& m, int, MarkList& r) {
        m.size(r, 2);
        for (MarkEntry& one : r) storedMark(m, one);
      },
      [](auto& s, int, MarkList& r) { return ReadMarkList(s, r); },
      [](auto& s, int, const MarkList& r) { return WriteMarkList(s, r); }, kNothing, false);
}

// How many bytes from the late group data to the end of the pattern's group part tolerate a cut.
struct TolerantRange {
  std::size_t from, to;
};
TolerantRange lateGroupData(int version, std::size_t bindings) {
  const std::size_t from = 44 + 8 + 28 + 17;
  const std::size_t row = 16 + (version >= 156 ? 4U : 0U) + (version >= 160 ? 8U : 0U);
  return {from, from + 16 + 4 + bindings * row + (version >= 151 ? 12U : 0U)};
}

TEST(StoredRecords, PatternPlainAndAsAGroupInBothForms) {
  for (const bool embedded : {true, false})
    for (const std::int32_t kind : {0, 32000, 32004}) {
      const PatternForm form{kind, embedded, 2, 3};
      expectStoredForm<Pattern>([&](auto& m, int v, Pattern& r) { storedPattern(m, v, form, r); },
                                [&](auto& s, int v, Pattern& r) { return ReadPattern(s, v, embedded, r); },
                                [](auto& s, int v, const Pattern& r) { return WritePattern(s, v, r); },
                                [&](int v, std::size_t cut, std::size_t size) {
                                  const TolerantRange late = lateGroupData(v, 3);
                                  const bool inGroup = kind != 0 && v >= 110 && cut >= late.from && cut < late.to;
                                  // The pattern ends with a step table of one step, which may end in front of its count.
                                  const std::size_t steps = 7 + 1 + (v >= 90 ? 1U : 0U);
                                  return inGroup || (v >= 80 && cut == size - steps - 1);
                                },
                                false);
    }
}

TEST(StoredRecords, GroupKinds32005And32006ExistFromVersion110On) {
  for (const std::int32_t kind : {32005, 32006})
    for (const int version : {110, 151, 180}) {
      Maker maker;
      Pattern made, record;
      storedPattern(maker, version, PatternForm{kind, true, 1, 1}, made);
      EXPECT_EQ(readFrom(maker.bytes, [&](auto& s) { return ReadPattern(s, version, true, record); }), 0);
      EXPECT_EQ(record.groupKind, kind);
      EXPECT_EQ(record.bindFirst.size(), 1U);
    }
}

}  // namespace
