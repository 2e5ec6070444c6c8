// Every embedded record at every version: its bytes as hand-written here load into the fields they belong to, the
// record is stored as those bytes, and a file cut at any byte gives the right status with exactly the complete fields
// set. What a version does not store keeps what the record held.
#include <gtest/gtest.h>

#include "src/part/part_io.h"
#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

// All versions, and numbers that no file has.
std::vector<int> versionsAndBeyond() {
  std::vector<int> all = allVersions();
  all.insert(all.end(), {-32768, -1, 0, 2, 51, 181, 32767, 65535});
  return all;
}
// Both sides of each gate. Files of these are cut at every byte.
const std::vector<int> kGates = {0,   52,  53,  54,  59,  60,  61,  62,  79,  80,  89,  90,
                                 99,  100, 109, 110, 111, 112, 120, 121, 129, 130, 149, 150,
                                 151, 152, 153, 155, 156, 157, 158, 159, 160, 161, 162, 180};

// stored(walker, version, record); read(stream, version, record); write(stream, version, record);
// tolerates(version, cut, size): a file cut there is read with success.
template <class Record, class Stored, class Read, class Write, class Tolerates>
void expectStoredForm(const Stored& stored, const Read& read, const Write& write, const Tolerates& tolerates) {
  Record fresh, used;
  Checker defaults(0);
  stored(defaults, 180, fresh);
  Maker other = Maker::ofEveryField(1);
  stored(other, 180, used);
  for (const int version : versionsAndBeyond()) {
    SCOPED_TRACE("version " + std::to_string(version));
    Maker maker;
    Record made;
    stored(maker, version, made);
    const Bytes& whole = maker.bytes;
    bool ok = false;
    EXPECT_EQ(written([&](auto& s) { return write(s, version, made); }, &ok), whole);
    EXPECT_TRUE(ok);

    for (const Record& before : {Record(), used}) {
      Record record = before;
      std::size_t consumed = 0;
      EXPECT_EQ(readFrom(
                    Bytes(whole).fill(9, 0xEE), [&](auto& s) { return read(s, version, record); }, &consumed),
                0);
      EXPECT_EQ(consumed, whole.size());
      Checker complete(record, before);
      stored(complete, version, record);
      Record wanted = before;
      Loader loader;
      stored(loader, version, wanted);
      std::string difference;
      EXPECT_FALSE(values::findDifference(record, wanted, difference)) << difference;
      if (std::find(kGates.begin(), kGates.end(), version) == kGates.end()) continue;
      for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        SCOPED_TRACE("cut at " + std::to_string(cut));
        record = before;
        const int result = readFrom(
            whole.cut(cut), [&](auto& s) { return read(s, version, record); }, &consumed);
        EXPECT_EQ(result, tolerates(version, cut, whole.size()) ? 0 : 1);
        EXPECT_EQ(consumed, cut) << "a failed read leaves the stream at its end";
        Checker part(record, before, cut);
        stored(part, version, record);
        if (::testing::Test::HasFailure()) return;
      }
    }
    if (::testing::Test::HasFailure()) return;
  }
}

constexpr auto kNothing = [](int, std::size_t, std::size_t) { return false; };
// A shape, a station, and what ends with one, may lack two last words.
constexpr auto kShapeTail = [](int v, std::size_t cut, std::size_t size) { return v >= 161 && cut >= size - 8; };
constexpr auto kStationTail = [](int v, std::size_t cut, std::size_t size) { return v >= 130 && cut >= size - 8; };
constexpr auto kProfileTail = [](int v, std::size_t cut, std::size_t size) {
  return cut >= size - ((v >= 150 ? 4U : 0U) + (v >= 151 ? 8U : 0U) + (v >= 152 ? 1U : 0U) + (v >= 161 ? 4U : 0U));
};

TEST(StoredRecords, ToolOfEveryShapeCodeIsStoredFieldByFieldAndAnyCutFails) {
  for (const std::int32_t code : {0, 1, 3, 107, 108, 109, 111, -5, -108, 364, std::numeric_limits<int>::min()})
    for (const bool path : {true, false})
      expectStoredForm<OldTool>(
          [&](auto& m, int v, OldTool& t) {
            storedTool(m, v, path, code, t);
            neverStored(m, [&](auto& n) {
              if (code != 108) n.number(t.symmetryFlags);
              numbersOr(n, -1, t.runtimeIndexA, t.runtimeIndexB);
              numbers(n, t.fileVersion, t.lateFlag, t.lateFlag2);
            });
          },
          [&](auto& s, int v, OldTool& t) { return ReadOldTool(s, v, path, t); },
          [&](auto& s, int v, const OldTool& t) { return WriteOldTool(s, v, path, t); }, kNothing);
}

TEST(StoredRecords, ToolStationToleratesAnEndInItsLastTwoWords) {
  expectStoredForm<ToolStation>([](auto& m, int v, ToolStation& r) { storedStation(m, v, r); },
                                [](auto& s, int v, ToolStation& r) { return ReadToolStation(s, v, r); },
                                [](auto& s, int v, const ToolStation& r) { return WriteToolStation(s, v, r); },
                                kStationTail);
}

TEST(StoredRecords, ToolStationListIsStoredFieldByFieldAndAnyCutFails) {
  expectStoredForm<ToolStationList>(
      [](auto& m, int v, ToolStationList& r) {
        storedStations(m, v, {1, 108, 107, 0}, r);
      },
      [](auto& s, int v, ToolStationList& r) { return ReadToolStationList(s, v, r); },
      [](auto& s, int v, const ToolStationList& r) { return WriteToolStationList(s, v, r); }, kNothing);
}

TEST(StoredRecords, ShapeWithEveryCountAndWithTextAndNoteToleratesAnEndInItsLastPair) {
  for (int values = 0; values <= 9; ++values)
    for (int extras = 0; extras <= 2; ++extras) {
      const bool text = (values + extras) % 2 == 0;
      const ShapeForm form{3, values, extras, text, text ? "noted" : ""};
      expectStoredForm<Shape>(
          [&](auto& m, int v, Shape& r) {
            storedShape(m, v, form, r);
            neverStored(m, [&](auto& n) { n.number(r.trailerValue); });
          },
          [](auto& s, int v, Shape& r) { return ReadShape(s, v, r); },
          [](auto& s, int v, const Shape& r) { return WriteShape(s, v, r); }, kShapeTail);
    }
}

TEST(StoredRecords, ShapeListToleratesAnEndInTheLastPairOfItsLastShape) {
  expectStoredForm<ShapeList>([](auto& m, int v, ShapeList& r) { storedShapeList(m, v, someShapes(), r); },
                              [](auto& s, int v, ShapeList& r) { return ReadShapeList(s, v, r); },
                              [](auto& s, int v, const ShapeList& r) { return WriteShapeList(s, v, r); }, kShapeTail);
}

TEST(StoredRecords, ProcessSlotIsStoredFieldByFieldAndAnyCutFails) {
  expectStoredForm<ProcessSlot>([](auto& m, int v, ProcessSlot& r) { storedSlot(m, v, r); },
                                [](auto& s, int v, ProcessSlot& r) { return ReadProcessSlot(s, v, r); },
                                [](auto& s, int v, const ProcessSlot& r) { return WriteProcessSlot(s, v, r); },
                                kNothing);
}

TEST(StoredRecords, StepTableToleratesAnEndBeforeItsCount) {
  for (int steps = 0; steps <= 20; ++steps)
    expectStoredForm<StepTable>([&](auto& m, int v, StepTable& r) { storedSteps(m, v, steps, r); },
                                [](auto& s, int v, StepTable& r) { return ReadStepTable(s, v, r); },
                                [](auto& s, int v, const StepTable& r) { return WriteStepTable(s, v, r); },
                                [](int, std::size_t cut, std::size_t) { return cut == 20; });
}

TEST(StoredRecords, SetupEntryIsStoredFieldByFieldAndAnyCutFails) {
  expectStoredForm<SetupEntry>([](auto& m, int, SetupEntry& r) { storedSetupEntry(m, r); },
                               [](auto& s, int, SetupEntry& r) { return ReadSetupEntry(s, r); },
                               [](auto& s, int, const SetupEntry& r) { return WriteSetupEntry(s, r); }, kNothing);
}

TEST(StoredRecords, SetupListIsStoredFieldByFieldAndAnyCutFails) {
  for (const std::size_t entries : {1U, 3U})
    expectStoredForm<SetupList>([&](auto& m, int, SetupList& r) { storedSetupList(m, entries, r); },
                                [](auto& s, int, SetupList& r) { return ReadSetupList(s, r); },
                                [](auto& s, int, const SetupList& r) { return WriteSetupList(s, r); }, kNothing);
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
                                  kProfileTail);
}

TEST(StoredRecords, ListsOfProfilesAndStepTablesTolerateAnEndInTheirLastElement) {
  expectStoredForm<ProfileList>([](auto& m, int v, ProfileList& r) { storedProfiles(m, v, 2, r); },
                                [](auto& s, int v, ProfileList& r) { return ReadProfileList(s, v, r); },
                                [](auto& s, int v, const ProfileList& r) { return WriteProfileList(s, v, r); },
                                kProfileTail);
  expectStoredForm<StepTableList>([](auto& m, int v, StepTableList& r) { storedStepTables(m, v, 3, 4, r); },
                                  [](auto& s, int v, StepTableList& r) { return ReadStepTableList(s, v, r); },
                                  [](auto& s, int v, const StepTableList& r) { return WriteStepTableList(s, v, r); },
                                  [](int, std::size_t cut, std::size_t size) {
                                    const std::size_t one = (size - 4) / 3;
                                    return cut == 4 + 2 * one + 20;
                                  });
}

TEST(StoredRecords, PatternItemAndItsListAreStoredFieldByFieldAndAnyCutFails) {
  expectStoredForm<PatternItem>([](auto& m, int v, PatternItem& r) { storedItem(m, v, r); },
                                [](auto& s, int v, PatternItem& r) { return ReadPatternItem(s, v, r); },
                                [](auto& s, int v, const PatternItem& r) { return WritePatternItem(s, v, r); },
                                kNothing);
  expectStoredForm<PatternItemList>(
      [](auto& m, int v, PatternItemList& r) { storedItems(m, v, 3, r); },
      [](auto& s, int v, PatternItemList& r) { return ReadPatternItemList(s, v, r); },
      [](auto& s, int v, const PatternItemList& r) { return WritePatternItemList(s, v, r); }, kNothing);
}

TEST(StoredRecords, WorkEntryIsStoredFieldByFieldAndAnyCutFails) {
  expectStoredForm<WorkEntry>([](auto& m, int v, WorkEntry& r) { storedWork(m, v, r); },
                              [](auto& s, int v, WorkEntry& r) { return ReadWorkEntry(s, v, r); },
                              [](auto& s, int v, const WorkEntry& r) { return WriteWorkEntry(s, v, r); }, kNothing);
}

TEST(StoredRecords, MarkEntryAndItsListAreStoredFieldByFieldAndAnyCutFails) {
  expectStoredForm<MarkEntry>([](auto& m, int, MarkEntry& r) { storedMark(m, r); },
                              [](auto& s, int, MarkEntry& r) { return ReadMarkEntry(s, r); },
                              [](auto& s, int, const MarkEntry& r) { return WriteMarkEntry(s, r); }, kNothing);
  expectStoredForm<MarkList>([](auto& m, int, MarkList& r) { storedMarks(m, 2, r); },
                             [](auto& s, int, MarkList& r) { return ReadMarkList(s, r); },
                             [](auto& s, int, const MarkList& r) { return WriteMarkList(s, r); }, kNothing);
}

// Which bytes at the end of a group's late data tolerate a cut.
struct TolerantRange {
  std::size_t from, to;
};
TolerantRange lateGroupData(int version, std::size_t bindings) {
  const std::size_t from = 44 + 8 + 28 + 17;
  const std::size_t row = 16 + (version >= 156 ? 4U : 0U) + (version >= 160 ? 8U : 0U);
  return {from, from + 16 + 4 + bindings * row + (version >= 151 ? 12U : 0U)};
}

TEST(StoredRecords, PatternToleratesAnEndInItsLateGroupDataAndItsLastStepTable) {
  for (const bool embedded : {true, false})
    for (const std::int32_t kind : {0, 1, 31999, 32000, 32004, 32005, 32006, 32007, -32000}) {
      const PatternForm form{kind, embedded, 2, 3};
      expectStoredForm<Pattern>(
          [&](auto& m, int v, Pattern& r) {
            storedPattern(m, v, form, r);
            neverStored(m, [&](auto& n) {
              numberOr(n, r.transformKind, 1);
              for (int i = 0; i < 9; ++i) numberOr(n, r.transform[i], i % 4 == 0 ? 1.0F : 0.0F);
              numberOr(n, r.scratchShapes.listTag, -1);
              numberOr(n, r.scratchShapes.listKind, 1);
            });
          },
          [&](auto& s, int v, Pattern& r) { return ReadPattern(s, v, embedded, r); },
          [](auto& s, int v, const Pattern& r) { return WritePattern(s, v, r); },
          [&](int v, std::size_t cut, std::size_t size) {
            const TolerantRange late = lateGroupData(v, 3);
            const bool inGroup = isGroupKind(v, kind) && v >= 110 && cut >= late.from && cut < late.to;
            // The pattern ends with a step table of one step, which may end before its count.
            const std::size_t steps = 7 + 1 + (v >= 90 ? 1U : 0U);
            return inGroup || (v >= 80 && cut == size - steps - 1);
          });
    }
}

}  // namespace
