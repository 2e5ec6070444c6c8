// The tables of a material, each through its own reader and writer.
#include <gtest/gtest.h>

#include "src/material/material_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/random_records.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

constexpr int kVersions[] = {61, 80, 110, 120, 130, 140, 150, 152, 154, 156, 160, 162, 170, 180};

// Stores what `pick` names of a random material, reads it into a fresh one and stores that again.
template <class Pick, class Write, class Read>
void expectMirrored(const Pick& pick, const Write& write, const Read& read) {
  for (const int version : kVersions) {
    RandomRecords random(static_cast<std::uint32_t>(version));
    const auto stored = random.newRecord<OldMaterial>(version);
    bool ok = false;
    const Bytes bytes = written([&](OutStream& s) { return write(s, version, pick(*stored)); }, &ok);
    ASSERT_TRUE(ok) << version;
    ASSERT_GT(bytes.size(), 0U) << version;
    const auto loaded = std::make_unique<OldMaterial>();
    std::size_t used = 0;
    EXPECT_EQ(readFrom(
                  bytes, [&](InStream& s) { return read(s, version, pick(*loaded)); }, &used),
              0)
        << version;
    EXPECT_EQ(used, bytes.size()) << version;
    EXPECT_EQ(written([&](OutStream& s) { return write(s, version, pick(*loaded)); }), bytes) << version;
  }
}

TEST(MaterialTables, FreshElementsOfTheListsAreZeroButForTheTenValuesOfARule) {
  const Bytes setting = Bytes().i32(1).zeros(41), entry = Bytes().i32(1).zeros(260);
  EXPECT_EQ(written([](OutStream& s) { return WriteSettingList(s, 180, {SettingEntry()}); }), setting);
  EXPECT_EQ(written([](OutStream& s) { return WriteMaterialEntryList(s, 180, {MaterialEntry()}); }), entry);
  const AngleRule angle;
  EXPECT_EQ(angle.ruleCode, 0);
  EXPECT_EQ(angle.angleCount, 0);
  for (const float one : angle.ruleValues) EXPECT_EQ(one, 0.025F);
  for (const float one : angle.ruleAngles) EXPECT_EQ(one, 0.0F);
  EXPECT_EQ(angle.sizeLimitX, 0.0F);
  EXPECT_EQ(angle.sizeLimitY, 0.0F);
  const SizeRule size;
  EXPECT_EQ(size.sizeValue1, 0U);
  for (const float one : {size.sizeValue2, size.sizeValue3, size.sizeValue4, size.sizeValue5, size.sizeValue6})
    EXPECT_EQ(one, 0.0F);
  EXPECT_EQ(size.sizeFlagA, 0);
  EXPECT_EQ(size.sizeFlagB, 0);
}

TEST(SaveMaterial, TableWithoutABodyReturnsMinusTwoForFaults) {
  const TempFolder folder;
  const auto material = std::make_unique<OldMaterial>();
  material->params.version = 52;
  material->params.nameLength = 1;
  EXPECT_EQ(SaveMaterial(folder.path("m").c_str(), *material, 52), 0);
  EXPECT_EQ(SaveMaterial((folder.path("no") + "/such/folder").c_str(), *material, 52), -2);
  material->params.nameLength = 0;
  EXPECT_EQ(SaveMaterial(folder.path("m").c_str(), *material, 52), -2);
}

TEST(SaveMaterial, TableOrBodyThatCannotBeStoredReturnsMinusTwo) {
  const TempFolder folder;
  const std::string path = folder.path("material");
  const auto material = std::make_unique<OldMaterial>();
  EXPECT_EQ(SaveMaterial(path.c_str(), *material, 180), -2) << "a table without a name";
  material->params.version = 52;
  material->params.nameLength = 1;
  EXPECT_EQ(SaveMaterial(path.c_str(), *material, 180), 0);
  material->name = std::string(10001, 'n');
  EXPECT_EQ(SaveMaterial(path.c_str(), *material, 180), -2) << "a name that no load takes";
}

TEST(MaterialTables, SettingListComesBackAsItWasStored) {
  expectMirrored([](OldMaterial& m) -> SettingList& { return m.settingLists[0]; }, WriteSettingList, ReadSettingList);
}
TEST(MaterialTables, ToolSetsComeBackAsTheyWereStored) {
  expectMirrored([](OldMaterial& m) -> MaterialToolSetTable& { return m.toolSets; }, WriteMaterialToolSetTable,
                 ReadMaterialToolSetTable);
}
TEST(MaterialTables, PaletteComesBackAsItWasStored) {
  expectMirrored([](OldMaterial& m) -> MaterialPalette& { return m.palette; }, WriteMaterialPalette,
                 ReadMaterialPalette);
}
TEST(MaterialTables, StagesComeBackAsTheyWereStored) {
  expectMirrored([](OldMaterial& m) -> MaterialStageTable& { return m.stages; }, WriteMaterialStageTable,
                 ReadMaterialStageTable);
}
TEST(MaterialTables, EntriesComeBackAsTheyWereStored) {
  expectMirrored([](OldMaterial& m) -> std::vector<MaterialEntry>& { return m.entryList; }, WriteMaterialEntryList,
                 ReadMaterialEntryList);
}
TEST(MaterialTables, RulesComeBackAsTheyWereStored) {
  expectMirrored([](OldMaterial& m) -> MaterialRuleLists& { return m.rules; }, WriteMaterialRuleLists,
                 ReadMaterialRuleLists);
}
TEST(MaterialTables, HeadRecordComesBackAsItWasStored) {
  expectMirrored([](OldMaterial& m) -> MaterialHeadRecord& { return m.head; }, WriteMaterialHeadRecord,
                 ReadMaterialHeadRecord);
}

}  // namespace
