// Damaged files: what is before the fault is kept in a file that loads, and the report says what is not.
#include "torvio/convert/recover.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <string>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/long_tests.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/machines.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/random_files.h"
#include "tests/torvio/sound_files.h"
#include "torvio/convert/convert.h"
#include "torvio/values/compiled_records.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using convert::Recovered;
using frame::FileKind;

// Everything that must hold of the outcome for any bytes.
void expectSoundOrNothing(const Recovered& recovered, std::span<const std::byte> file, FileKind kind) {
  const convert::Report& report = recovered.report;
  EXPECT_EQ(report.size, file.size());
  EXPECT_EQ(report.newSize, recovered.bytes.size());
  EXPECT_EQ(recovered.isSound, isSound(file, kind));
  EXPECT_EQ(recovered.bytes.empty(), recovered.isSound || !recovered.error.empty());
  if (recovered.bytes.empty()) return;
  ASSERT_TRUE(isSound(recovered.bytes, kind));
  EXPECT_EQ(explain::checkFile(recovered.bytes, kind).version, report.to);
  EXPECT_FALSE(report.isComplete());
  EXPECT_NE(convert::textOf(report), "");
}

// Fields of a file by their path. Some are stored twice.
using FieldValues = std::map<std::string, std::vector<std::string>>;
FieldValues fieldsOf(std::span<const std::byte> bytes, FileKind kind, std::uint64_t end) {
  FieldValues fields;
  (void)explain::mapFile(bytes, kind, [&](const explain::MapLine& line) {
    if (line.size > 0 && line.offset + line.size <= end) fields[line.path].push_back(line.value);
  });
  return fields;
}

// Each field of the file up to what is left out is in the new file, unless the report names it or it is the count of a
// list that became shorter.
void expectFieldsKept(const Recovered& recovered, std::span<const std::byte> file, FileKind kind) {
  if (recovered.bytes.empty() || recovered.report.to != recovered.report.from) return;
  const convert::Report& report = recovered.report;
  const std::uint64_t end = report.leftOut.empty() ? file.size() : report.leftOut.front().offset;
  const FieldValues before = fieldsOf(file, kind, end);
  const FieldValues after = fieldsOf(recovered.bytes, kind, recovered.bytes.size());
  std::set<std::string> named;
  for (const convert::Loss& loss : report.losses) named.insert(loss.member);
  const std::string fault = report.fault ? report.fault->path : "";
  for (const auto& [path, values] : before) {
    // The length of a text that is not there.
    if (fault.ends_with(".text") && path == fault.substr(0, fault.size() - 5) + ".length") continue;
    const auto kept = after.find(path);
    const bool isSame = kept != after.end() && kept->second.size() >= values.size() &&
                        std::equal(values.begin(), values.end(), kept->second.begin());
    if (isSame || named.contains(convert::withoutIndexes(path))) continue;
    // A list of parts without parts stores no width. A list of which nothing was read is among the defaults.
    const bool isOfShorter = isCount(path) || path == "partList.nameWidth";
    EXPECT_TRUE(isOfShorter && !(report.shorter.empty() && report.defaults.empty()))
        << path << " was " << values.front() << " and is "
        << (kept == after.end() ? std::string("missing") : kept->second.front());
  }
}

// ---- cuts -----------------------------------------------------------------------------------------------

TEST(Recover, EveryCutOfEveryKindIsSoundOrNothing) {
  std::uint64_t cuts = 0, recoveredFiles = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes file = cleanCopy(kind.file(version), kind.kind, version);
      SCOPED_TRACE(testing::Message() << kind.name << " of version " << version);
      const std::size_t step = isLongRun() ? 1 : std::max<std::size_t>(file.size() / 60, 1);
      for (std::size_t size = 0; size < file.size() && !testing::Test::HasFailure();
           size += 1 + (isLongRun() ? 0 : size * 7919 % step)) {
        const Bytes cut = file.cut(size);
        const Recovered recovered = convert::recover(cut.span(), kind.kind);
        SCOPED_TRACE(testing::Message() << "cut at " << size);
        expectSoundOrNothing(recovered, cut.span(), kind.kind);
        if (cuts++ % (isLongRun() ? 50 : 5) == 0) expectFieldsKept(recovered, cut.span(), kind.kind);
        recoveredFiles += recovered.bytes.empty() ? 0U : 1U;
      }
    }
  EXPECT_GT(recoveredFiles, cuts / 2);
}

// Sheets below version 152, which a save does not leave sound.
TEST(Recover, EveryCutOfSheetsOfOldVersionsIsSoundOrNothing) {
  for (const int version : {52, 60, 80, 110, 151}) {
    const Bytes file = cleanCopy(sheetFile(version), FileKind::sheet, version);
    for (std::size_t size = 0; size < file.size(); size += isLongRun() ? 7 : 1 + file.size() / 40) {
      const Bytes cut = file.cut(size);
      SCOPED_TRACE(testing::Message() << version << ", cut at " << size);
      const Recovered recovered = convert::recover(cut.span(), FileKind::sheet);
      expectSoundOrNothing(recovered, cut.span(), FileKind::sheet);
      expectFieldsKept(recovered, cut.span(), FileKind::sheet);
    }
  }
}

// ---- other damage ---------------------------------------------------------------------------------------

TEST(Recover, RefusedValuesAreCutOff) {
  std::uint64_t tried = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      if (!isLongRun() && version != kind.versions.front() && version != kind.versions.back()) continue;
      const Bytes file = kind.file(version);
      std::vector<explain::MapLine> counts;
      (void)explain::mapFile(file.span(), kind.kind, [&](const explain::MapLine& line) {
        if (line.size > 0 && isCount(line.path)) counts.push_back(line);
      });
      const std::size_t step = isLongRun() ? 1 : 1 + counts.size() / 25;
      for (std::size_t i = 0; i < counts.size(); i += step)
        for (const int value : {0x7F, 0x80, 0xFF}) {
          std::vector<std::byte> damaged(file.span().begin(), file.span().end());
          for (std::size_t k = 0; k < counts[i].size; ++k)
            damaged[static_cast<std::size_t>(counts[i].offset) + k] = static_cast<std::byte>(value);
          SCOPED_TRACE(testing::Message() << kind.name << ' ' << version << ' ' << counts[i].path << " = " << value);
          const Recovered recovered = convert::recover(damaged, kind.kind);
          expectSoundOrNothing(recovered, damaged, kind.kind);
          ++tried;
        }
    }
  EXPECT_GT(tried, 300U);
}

TEST(Recover, RandomDamageAndRandomBytesAreSoundOrNothing) {
  std::mt19937 engine(4);
  for (int round = 0; round < (isLongRun() ? 3000 : 120); ++round)
    for (const frame::FileKindInfo& info : frame::kFileKinds) {
      const std::vector<int> versions = versionsOf(info.kind);
      const Bytes file = randomFile(info.kind, versions[engine() % versions.size()], static_cast<std::uint32_t>(round));
      std::vector<std::byte> damaged(file.span().begin(), file.span().end());
      for (std::size_t n = 1 + engine() % 5; n > 0; --n)
        damaged[2 + engine() % (damaged.size() - 2)] = static_cast<std::byte>(engine());
      if (round % 3 == 0)
        for (std::size_t i = 2 + engine() % 2000; i < damaged.size(); ++i)
          damaged[i] = static_cast<std::byte>(engine());
      SCOPED_TRACE(testing::Message() << info.name << ", round " << round);
      expectSoundOrNothing(convert::recover(damaged, info.kind), damaged, info.kind);
      const int version = versions.back() > 180 ? 180 : versions.back();
      const convert::Converted converted = convert::convert(damaged, info.kind, version, {true, "cp1252"});
      EXPECT_EQ(converted.bytes.empty(), !converted.error.empty());
      EXPECT_TRUE(converted.bytes.empty() || isSound(converted.bytes, info.kind));
      if (testing::Test::HasFailure()) return;
    }
}

// ---- what is kept ---------------------------------------------------------------------------------------

// The offset of the first field of that path.
std::size_t offsetOf(const Bytes& file, FileKind kind, const std::string& path) {
  std::optional<std::uint64_t> at;
  (void)explain::mapFile(file.span(), kind, [&](const explain::MapLine& line) {
    if (line.path == path && !at) at = line.offset;
  });
  EXPECT_TRUE(at) << path;
  return static_cast<std::size_t>(at.value_or(0));
}

TEST(Recover, SheetKeepsItsCompleteParts) {
  auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, 180);
  for (int i = 1; i < 5; ++i) {
    sheet->partList.parts.push_back(sheet->partList.parts.front());
    std::strcpy(sheet->partList.parts.back().partName, ("PLATE " + std::to_string(i)).c_str());
  }
  const Bytes file = Bytes::of(values::saveRecord<FileKind::sheet>(*sheet, 180).bytes);
  const std::size_t fourth = offsetOf(file, FileKind::sheet, "partList.parts[3].partName");
  const std::size_t at = offsetOf(file, FileKind::sheet, "partList.parts[3].revision");
  const Bytes cut = file.cut(at + 5);
  const Recovered recovered = convert::recover(cut.span(), FileKind::sheet);
  ASSERT_EQ(recovered.error, "");
  const auto loaded = values::loadRecord<FileKind::sheet>(recovered.bytes);
  ASSERT_EQ(loaded.record->partList.parts.size(), 3U);
  EXPECT_EQ(fixedText(loaded.record->partList.parts[2].partName), "PLATE 2");
  EXPECT_EQ(loaded.record->width, sheet->width);
  const convert::Report& report = recovered.report;
  ASSERT_TRUE(report.fault);
  EXPECT_EQ(report.fault->offset, at);
  EXPECT_EQ(report.fault->path, "partList.parts[3].revision");
  ASSERT_EQ(report.shorter.size(), 1U);
  EXPECT_EQ(report.shorter[0].list, "partList.parts");
  EXPECT_EQ(report.shorter[0].kept, 3U);
  EXPECT_EQ(report.shorter[0].stored, 5U);
  EXPECT_EQ(report.shorter[0].brokenAt, "revision");
  ASSERT_EQ(report.leftOut.size(), 1U);
  EXPECT_EQ(report.leftOut[0].offset, fourth);
  EXPECT_EQ(report.leftOut[0].size, cut.size() - fourth);
  EXPECT_TRUE(report.losses.empty()) << convert::textOf(report);
  const auto has = [&](const char* name) {
    return std::find(report.defaults.begin(), report.defaults.end(), name) != report.defaults.end();
  };
  EXPECT_TRUE(has("machine"));
  EXPECT_TRUE(has("paramTable"));
  EXPECT_TRUE(has("patternItems") || has("shapes"));
  EXPECT_FALSE(has("partList"));
  EXPECT_FALSE(has("width"));
}

TEST(Recover, MachineOfASheetKeepsItsPathAndItsStations) {
  auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, 180);
  std::strcpy(sheet->machine.path, "C:\\MACHINES\\ONE.MCH");
  sheet->machine.stationsA.stations.resize(4, sheet->machine.stationsA.stations.front());
  sheet->machine.stationsA.tools.resize(4, sheet->machine.stationsA.tools.front());
  const Bytes file = Bytes::of(values::saveRecord<FileKind::sheet>(*sheet, 180).bytes);
  const Bytes cut = file.cut(offsetOf(file, FileKind::sheet, "machine.stationsA.tools[2].dimension1"));
  const Recovered recovered = convert::recover(cut.span(), FileKind::sheet);
  ASSERT_EQ(recovered.error, "");
  const auto loaded = values::loadRecord<FileKind::sheet>(recovered.bytes);
  EXPECT_EQ(fixedText(loaded.record->machine.path), "C:\\MACHINES\\ONE.MCH");
  EXPECT_EQ(loaded.record->machine.stationsA.stations.size(), 2U);
  EXPECT_EQ(loaded.record->machine.stationsA.tools.size(), 2U);
  ASSERT_EQ(recovered.report.shorter.size(), 1U);
  EXPECT_EQ(recovered.report.shorter[0].stored, 4U);
  EXPECT_EQ(recovered.report.shorter[0].kept, 2U);
}

TEST(Recover, SecondCopyOfTheClampsLeavesTheFirst) {
  const Bytes file = machineFile(180);
  std::vector<std::uint64_t> at;
  (void)explain::mapFile(file.span(), FileKind::machine, [&](const explain::MapLine& line) {
    if (line.path == "clampInfo.clampSpacing") at.push_back(line.offset);
  });
  ASSERT_EQ(at.size(), 2U);
  const Recovered recovered = convert::recover(file.cut(static_cast<std::size_t>(at[1])).span(), FileKind::machine);
  ASSERT_EQ(recovered.error, "");
  const auto before = values::loadRecord<FileKind::machine>(file.span());
  const auto after = values::loadRecord<FileKind::machine>(recovered.bytes);
  EXPECT_EQ(after.record->clampInfo.clampCount, before.record->clampInfo.clampCount);
  EXPECT_TRUE(recovered.report.shorter.empty());
}

TEST(Recover, PartDamagedInItsPatternGetsAPatternWithoutTools) {
  const Bytes file = storedPartFile(180, {.groupKind = 32001});
  const auto before = values::loadRecord<FileKind::part>(file.span());
  ASSERT_FALSE(before.record->patterns[0].items.empty());
  const Bytes cut = file.cut(offsetOf(file, FileKind::part, "patterns[0].items[0].toolNumber"));
  const Recovered recovered = convert::recover(cut.span(), FileKind::part);
  ASSERT_EQ(recovered.error, "");
  const auto after = values::loadRecord<FileKind::part>(recovered.bytes);
  ASSERT_EQ(after.record->patterns.size(), 1U);
  EXPECT_EQ(after.record->patterns[0].items.size(), before.record->shapes.shapes.size());
  EXPECT_EQ(after.record->patterns[0].items[0].toolNumber, 0);
  EXPECT_EQ(after.record->shapes.shapes.size(), before.record->shapes.shapes.size());
  ASSERT_EQ(recovered.report.shorter.size(), 1U);
  EXPECT_EQ(recovered.report.shorter[0].list, "patterns");
  EXPECT_EQ(recovered.report.shorter[0].kept, 0U);
}

TEST(Recover, CountsOfRowsAgreeWithTheRows) {
  auto part = std::make_unique<TorvPart>();
  part->patterns.resize(1);
  part->processSlotCount = 9;
  for (int i = 0; i < 9; ++i) part->processSlots[i].slotWord1 = static_cast<std::uint32_t>(i + 1);
  const Bytes file = Bytes::of(values::saveRecord<FileKind::part>(*part, 180).bytes);
  const Bytes cut = file.cut(offsetOf(file, FileKind::part, "processSlots[4].slotWord3"));
  const Recovered recovered = convert::recover(cut.span(), FileKind::part);
  const auto after = values::loadRecord<FileKind::part>(recovered.bytes);
  EXPECT_EQ(after.record->processSlotCount, 4);
  EXPECT_EQ(after.record->processSlots[3].slotWord1, 4U);
  EXPECT_EQ(after.record->processSlots[4].slotWord1, 0U);
  ASSERT_EQ(recovered.report.shorter.size(), 1U);
  EXPECT_EQ(recovered.report.shorter[0].list, "processSlots");
  EXPECT_EQ(recovered.report.shorter[0].kept, 4U);
  EXPECT_EQ(recovered.report.shorter[0].stored, 9U);
  EXPECT_TRUE(recovered.report.losses.empty()) << convert::textOf(recovered.report);
}

TEST(Recover, ListsInRowsKeepTheirElements) {
  auto material = std::make_unique<OldMaterial>();
  material->params.version = 180;
  material->params.nameLength = 1;
  material->settingListCount = 4;
  for (int i = 0; i < 4; ++i) material->settingLists[i].resize(5);
  const Bytes file = Bytes::of(values::saveRecord<FileKind::material>(*material, 180).bytes);
  const Bytes cut = file.cut(offsetOf(file, FileKind::material, "settingLists[1][3].entryText"));
  const Recovered recovered = convert::recover(cut.span(), FileKind::material);
  const auto after = values::loadRecord<FileKind::material>(recovered.bytes);
  EXPECT_EQ(after.record->settingListCount, 2);
  EXPECT_EQ(after.record->settingLists[0].size(), 5U);
  EXPECT_EQ(after.record->settingLists[1].size(), 3U);
  ASSERT_EQ(recovered.report.shorter.size(), 2U);
  EXPECT_EQ(recovered.report.shorter[0].list, "settingLists");
  EXPECT_EQ(recovered.report.shorter[0].kept, 2U);
  EXPECT_EQ(recovered.report.shorter[0].stored, 4U);
  EXPECT_EQ(recovered.report.shorter[1].list, "settingLists[1]");
  EXPECT_EQ(recovered.report.shorter[1].kept, 3U);
  EXPECT_EQ(recovered.report.shorter[1].stored, 5U);
  EXPECT_EQ(recovered.report.shorter[1].brokenAt, "entryText");
  EXPECT_TRUE(recovered.report.losses.empty()) << convert::textOf(recovered.report);
}

TEST(Recover, SetupEntriesOfASheetThatWereNotReadAreDropped) {
  auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, 180);
  sheet->setupList.entries.resize(300);
  const Bytes file = Bytes::of(values::saveRecord<FileKind::sheet>(*sheet, 180).bytes);
  const Bytes cut = file.cut(offsetOf(file, FileKind::sheet, "setupList.entries[7].entry.setupBlock"));
  ASSERT_GT(values::loadRecord<FileKind::sheet>(cut.span()).record->setupList.entries.size(), 200U);
  const Recovered recovered = convert::recover(cut.span(), FileKind::sheet);
  ASSERT_EQ(recovered.error, "");
  EXPECT_EQ(values::loadRecord<FileKind::sheet>(recovered.bytes).record->setupList.entries.size(), 7U);
  ASSERT_EQ(recovered.report.shorter.size(), 1U);
  EXPECT_EQ(recovered.report.shorter[0].kept, 7U);
  EXPECT_EQ(recovered.report.shorter[0].stored, 300U);
}

TEST(Recover, GroupFileKeepsItsCompletePartsAndNeedsOne) {
  SheetPartList list;
  list.parts.resize(3);
  for (TorvPart& part : list.parts) part.patterns.resize(1);
  const Bytes file = Bytes::of(values::saveRecord<FileKind::groupPart>(list, 180).bytes);
  const Recovered two = convert::recover(file.cut(file.size() - 1).span(), FileKind::groupPart);
  EXPECT_EQ(values::loadRecord<FileKind::groupPart>(two.bytes).record->parts.size(), 2U);
  ASSERT_EQ(two.report.shorter.size(), 1U);
  EXPECT_EQ(two.report.shorter[0].stored, 3U);
  EXPECT_EQ(two.report.shorter[0].kept, 2U);
  const Recovered none = convert::recover(file.cut(700).span(), FileKind::groupPart);
  EXPECT_TRUE(none.bytes.empty());
  EXPECT_NE(none.error.find("not one part"), std::string::npos) << none.error;
}

TEST(Recover, SheetThatASaveRuinedIsTheFileWithoutItsSurplus) {
  for (const int version : {52, 80, 130, 150, 151}) {
    const Bytes ruined = sheetFile(version);
    const Recovered recovered = convert::recover(ruined.span(), FileKind::sheet);
    ASSERT_TRUE(isSound(recovered.bytes, FileKind::sheet)) << version;
    EXPECT_EQ(recovered.bytes.size() + lateMachineBytes(version), ruined.size());
    EXPECT_TRUE(recovered.report.losses.empty());
    EXPECT_TRUE(recovered.report.defaults.empty());
    ASSERT_EQ(recovered.report.leftOut.size(), 1U);
    const auto at = static_cast<std::size_t>(recovered.report.leftOut[0].offset);
    EXPECT_TRUE(Bytes::of(recovered.bytes).cut(at) == ruined.cut(at));
  }
}

TEST(Recover, VersionsThatNoSaveStoresBecomeTheNearest) {
  const struct {
    FileKind kind;
    int from, to;
  } cases[] = {{FileKind::part, 2, 52},       {FileKind::part, 3, 52},       {FileKind::part, 5, 52},
               {FileKind::material, 502, 60}, {FileKind::material, 500, 60}, {FileKind::sheet, 500, 180}};
  for (const auto& one : cases) {
    Bytes file = one.from < 4 ? Bytes().i16(one.from).f32(10).f32(20).zeros(500) : randomFile(one.kind, one.from, 2);
    if (one.from > 4) file = file.cut(file.size() - 2);
    const Recovered recovered = convert::recover(file.span(), one.kind);
    EXPECT_EQ(recovered.error, "") << one.from;
    EXPECT_EQ(recovered.report.to, one.to);
    ASSERT_TRUE(isSound(recovered.bytes, one.kind)) << one.from;
    EXPECT_EQ(explain::checkFile(recovered.bytes, one.kind).version, one.to);
    if (one.from < 4) {
      EXPECT_EQ(values::loadRecord<FileKind::part>(recovered.bytes).record->height, 20.0F);
    }
  }
}

TEST(Recover, NothingIsMadeOfSoundOrForeignFilesAndOfBeginnings) {
  for (const Kind& kind : kinds()) {
    const Bytes file = cleanCopy(kind.file(kind.versions.back()), kind.kind, kind.versions.back());
    const Recovered sound = convert::recover(file.span(), kind.kind);
    EXPECT_TRUE(sound.isSound) << kind.name;
    EXPECT_TRUE(sound.bytes.empty());
    EXPECT_EQ(sound.error, "");
    for (const std::size_t size : {0U, 1U, 2U}) {
      const Recovered nothing = convert::recover(file.cut(size).span(), kind.kind);
      EXPECT_TRUE(nothing.bytes.empty()) << kind.name << ' ' << size;
      EXPECT_NE(nothing.error, "") << kind.name << ' ' << size;
    }
    const Bytes refused = Bytes().i16(-3).zeros(100);
    EXPECT_NE(convert::recover(refused.span(), kind.kind).error.find("is not a version"), std::string::npos);
    const Bytes longer = Bytes(file).zeros(11);
    const Recovered shorter = convert::recover(longer.span(), kind.kind);
    EXPECT_TRUE(Bytes::of(shorter.bytes) == file) << kind.name;
    ASSERT_EQ(shorter.report.leftOut.size(), 1U);
    EXPECT_EQ(shorter.report.leftOut[0].size, 11U);
  }
}

TEST(Recover, FileThatEndsWhereLoadsTolerateItIsCompleted) {
  const Bytes file = cleanCopy(sheetFile(160), FileKind::sheet, 160);
  const Bytes cut = file.cut(offsetOf(file, FileKind::sheet, "materialText5"));
  ASSERT_EQ(explain::checkFile(cut.span(), FileKind::sheet).status, 0);
  const Recovered recovered = convert::recover(cut.span(), FileKind::sheet);
  ASSERT_TRUE(isSound(recovered.bytes, FileKind::sheet));
  EXPECT_TRUE(Bytes::of(recovered.bytes).cut(cut.size()) == cut);
  EXPECT_EQ(recovered.report.defaults.front(), "materialText5");
  EXPECT_TRUE(recovered.report.leftOut.empty());
}

TEST(RecoverReport, MembersThatWereReadInPartAreNamed) {
  const Bytes machine = machineFile(180);
  const std::size_t name = offsetOf(machine, FileKind::machine, "material.name.text");
  const Recovered noName = convert::recover(machine.cut(name).span(), FileKind::machine);
  ASSERT_FALSE(noName.report.defaults.empty());
  EXPECT_EQ(noName.report.defaults.front(), "material.name");
  const Bytes material = materialFile(180);
  const std::size_t number = offsetOf(material, FileKind::material, "params.intParams[77]");
  const Recovered numbers = convert::recover(material.cut(number).span(), FileKind::material);
  ASSERT_FALSE(numbers.report.defaults.empty());
  EXPECT_EQ(numbers.report.defaults.front(), "params.intParams[77] and the elements after it");
  const Bytes macro = macroFile(180);
  const std::size_t trailer = offsetOf(macro, FileKind::macro, "shapes[1].trailerValue");
  const Recovered shapes = convert::recover(macro.cut(trailer).span(), FileKind::macro);
  ASSERT_EQ(shapes.report.defaults.size(), 1U);
  EXPECT_EQ(shapes.report.defaults.front(), "shapes.shapes[1].trailerValue and the elements after it");
  EXPECT_TRUE(shapes.report.shorter.empty());
}

TEST(RecoverReport, RunsOfNumberedMembersAreOneName) {
  const Bytes file = materialFile(180);
  const Bytes cut = file.cut(offsetOf(file, FileKind::material, "setting20"));
  const Recovered recovered = convert::recover(cut.span(), FileKind::material);
  const std::string text = convert::textOf(recovered.report);
  EXPECT_NE(text.find("setting20 to setting128, setting163 to setting166\n"), std::string::npos) << text;
  const auto json = nlohmann::json::parse(convert::jsonOf(recovered.report, "m", recovered.error));
  EXPECT_EQ(json["defaults"].size(), 109U + 4U);
  EXPECT_EQ(json["fault"]["field"], "setting20");
  EXPECT_EQ(json["leftOut"].size(), 0U);
}

// ---- the command ----------------------------------------------------------------------------------------

class RecoverCommand : public testing::Test {
 protected:
  TempFolder folder_;
  Bytes sound_ = sheetFile(180);
  std::string in_ = folder_.write("nest", sound_.cut(sound_.size() / 2));
  std::string out_ = folder_.path("new");

  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_.path()), std::filesystem::directory_iterator()));
  }
  Outcome recover(const std::string& arguments) const { return torvio("recover " + in_ + " " + arguments); }
};

TEST_F(RecoverCommand, WritesAFileThatLoadsAndReportsWhatIsLost) {
  const Bytes before = TempFolder::read(in_);
  const Outcome run = recover(out_);
  EXPECT_EQ(run.code, 0) << run.errors;
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output.find(in_ + ": sheet of version 180\n  breaks at "), 0U) << run.output;
  EXPECT_NE(run.output.find("not read; these have the defaults of a new record:\n"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("  written: " + out_ + ", "), std::string::npos) << run.output;
  EXPECT_TRUE(isSound(TempFolder::read(out_).span(), FileKind::sheet));
  EXPECT_TRUE(TempFolder::read(in_) == before);
  EXPECT_EQ(filesInFolder(), 2U);
  EXPECT_EQ(torvio("check " + out_).code, 0);
  EXPECT_EQ(torvio("recover " + out_ + " " + folder_.path("third")).code, 0);
  EXPECT_FALSE(std::filesystem::exists(folder_.path("third")));
}

TEST_F(RecoverCommand, SoundFilesAreNotCopied) {
  const std::string sound = folder_.write("sound", sound_);
  const Outcome run = torvio("recover " + sound + " " + out_);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.output, sound + ": sheet of version 180 is sound, nothing to recover\n");
  EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(RecoverCommand, DryRunAndJson) {
  const Outcome dry = recover("--dry-run");
  EXPECT_EQ(dry.code, 0);
  EXPECT_EQ(dry.output.find("written"), std::string::npos);
  const auto json = nlohmann::json::parse(recover(out_ + " --json").output);
  EXPECT_EQ(json["written"], true);
  EXPECT_EQ(json["newSize"], TempFolder::read(out_).size());
  EXPECT_EQ(json["kind"], "sheet");
  EXPECT_EQ(recover("").code, 2);
}

TEST_F(RecoverCommand, NothingIsWrittenIfNothingIsRecovered) {
  const Bytes before = Bytes().text(5, "hello");
  folder_.write("new", before);
  const std::string nothing = folder_.write("nothing", sound_.cut(3));
  const Outcome run = torvio("recover --kind sheet " + nothing + " " + out_);
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.errors.find("nothing can be recovered"), std::string::npos) << run.errors;
  const std::string foreign =
      folder_.write("foreign", Bytes().text(60, "a text of another program, no file of this suite"));
  EXPECT_EQ(torvio("recover " + foreign + " " + out_).code, 1);
  EXPECT_EQ(torvio("recover " + folder_.write("empty", Bytes()) + " " + out_).code, 1);
  EXPECT_EQ(torvio("recover " + folder_.path("none") + " " + out_).code, 3);
  EXPECT_EQ(recover(in_).code, 2);
  EXPECT_EQ(recover(folder_.path()).code, 3);
  EXPECT_TRUE(TempFolder::read(out_) == before);
  if (!kIsPosix) return;
  EXPECT_EQ(
      runShell("(trap '' XFSZ; ulimit -f 16; " + std::string(TORVIO_COMMAND) + " recover " + in_ + " " + out_ + ")")
          .code,
      3);
  EXPECT_TRUE(TempFolder::read(out_) == before);
  std::filesystem::remove(out_);
  std::filesystem::create_symlink(folder_.path("elsewhere"), out_);
  EXPECT_EQ(recover(out_).code, 3);
  EXPECT_FALSE(std::filesystem::exists(folder_.path("elsewhere")));
}

}  // namespace
