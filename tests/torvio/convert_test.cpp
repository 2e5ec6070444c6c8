// Files in other versions: what is reported as lost is what differs, whatever is written loads completely, and nothing
// is written that was not asked for.
#include "torvio/convert/convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
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
#include "torvio/convert/complete_save.h"
#include "torvio/convert/recover.h"
#include "torvio/convert/sheet_surplus.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using convert::Loss;
using frame::FileKind;

const convert::ConvertOptions kAllowLoss{true, "cp1252"};

int versionOf(std::span<const std::byte> bytes) {
  return static_cast<std::int16_t>(std::to_integer<unsigned>(bytes[0]) | std::to_integer<unsigned>(bytes[1]) << 8U);
}
const Loss* find(const convert::Report& report, std::string_view member) {
  const auto found = std::find_if(report.losses.begin(), report.losses.end(),
                                  [member](const Loss& loss) { return loss.member == member; });
  return found == report.losses.end() ? nullptr : &*found;
}

// ---- every kind and version -----------------------------------------------------------------------------

template <FileKind kKind>
void expectReportOfWhatDiffers(const Bytes& saved, int from, int to) {
  // A save below version 152 is read as without what it stores too much.
  const auto surplus = convert::surplusOf(saved.span(), kKind, explain::checkFile(saved.span(), kKind));
  const Bytes file = surplus ? Bytes::of(convert::without(saved.span(), *surplus)) : saved;
  SCOPED_TRACE(testing::Message() << frame::infoOf(kKind).name << " of version " << from << " to " << to);
  const convert::Converted strict = convert::convert(file.span(), kKind, to);
  const convert::Converted converted = convert::convert(saved.span(), kKind, to, kAllowLoss);
  ASSERT_EQ(converted.error, "");
  ASSERT_TRUE(isSound(converted.bytes, kKind));
  ASSERT_EQ(versionOf(converted.bytes), to);
  ASSERT_EQ(converted.report.newSize, converted.bytes.size());

  const auto before = values::loadRecord<kKind>(file.span());
  const auto after = values::loadRecord<kKind>(converted.bytes);
  FileRecord<kKind>::setVersion(*after.record, from);
  const auto difference = differenceOf(kKind, before.record.get(), after.record.get());
  const convert::Report& report = converted.report;
  const bool isOtherDefault = std::any_of(report.notes.begin(), report.notes.end(), [](const std::string& note) {
    return note.find("is not in the old file; the new file has defaults") != std::string::npos;
  });
  ASSERT_EQ(report.losses.empty() && !isOtherDefault, !difference.has_value()) << difference.value_or("nothing");

  const bool isComplete = converted.report.isComplete();
  ASSERT_EQ(strict.error.empty(), isComplete) << strict.error;
  ASSERT_TRUE(isComplete ? strict.bytes == converted.bytes : strict.bytes.empty());
}

// All, or some that are other ones in each round.
std::vector<int> someOf(const std::vector<int>& all, std::size_t round) {
  if (isLongRun()) return all;
  std::vector<int> some{all.front(), all.back()};
  const std::size_t step = std::max<std::size_t>(all.size() / 7, 1);
  for (std::size_t i = round % step; i < all.size(); i += step) some.push_back(all[i]);
  return some;
}

TEST(Convert, ReportIsEmptyExactlyIfTheNewFileHasTheSameContents) {
  int pairs = 0;
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      constexpr FileKind kKind = decltype(file)::kKind;
      const std::vector<int> all = versionsOf(kKind);
      std::vector<int> saved = all;
      std::erase_if(saved, [](int version) { return !convert::isSaved(kKind, version); });
      std::size_t round = 0;
      for (const int from : someOf(all, 3)) {
        const Bytes bytes = randomFile(kKind, from, 100U + static_cast<std::uint32_t>(from));
        for (const int to : someOf(saved, round++)) {
          if (testing::Test::HasFatalFailure()) return;
          expectReportOfWhatDiffers<kKind>(bytes, from, to);
          ++pairs;
        }
      }
    });
  EXPECT_GT(pairs, 300);
}

TEST(Convert, SavedFileIsUnchangedInItsOwnVersion) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    for (const int version : someOf(versionsOf(info.kind), 2)) {
      const bool hasSurplus = (info.kind == FileKind::sheet || info.kind == FileKind::machine) && version < 152;
      if (!convert::isSaved(info.kind, version) || hasSurplus) continue;
      const Bytes file = randomFile(info.kind, version, 7);
      const convert::Converted converted = convert::convert(file.span(), info.kind, version);
      EXPECT_TRUE(Bytes::of(converted.bytes) == file) << info.name << ' ' << version << converted.error;
      EXPECT_TRUE(converted.report.isComplete());
      EXPECT_EQ(convert::textOf(converted.report), "");
    }
}

TEST(Convert, VersionsThatNoSaveStoresAreRefusedWithThoseThatAre) {
  const struct {
    FileKind kind;
    int version;
    const char* versions;
  } cases[] = {{FileKind::part, 5, "52, 54, 60 to 62, 71, 80, 90 to 92, 100 to 102"},
               {FileKind::part, 181, "150 to 162, 170, 180"},
               {FileKind::material, 501, "52, 60 to 62, 71"},
               {FileKind::sheet, 500, "52 to 180"},
               {FileKind::groupPart, 151, "152 and above"},
               {FileKind::macro, 3, "52, 54"}};
  for (const auto& one : cases) {
    const convert::Converted converted = convert::convert(
        randomFile(one.kind, one.kind == FileKind::groupPart ? 160 : 80, 1).span(), one.kind, one.version, kAllowLoss);
    EXPECT_TRUE(converted.bytes.empty());
    EXPECT_NE(converted.error.find("file cannot be saved in version " + std::to_string(one.version)),
              std::string::npos);
    EXPECT_NE(converted.error.find(one.versions), std::string::npos) << converted.error;
  }
}

TEST(Convert, DamagedFilesAndThoseOfOtherKindsAreRefused) {
  for (const Kind& kind : kinds()) {
    const Bytes file = kind.file(kind.versions.back());
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, file.size() / 3}) {
      const Bytes cut = file.cut(size);
      const convert::Converted converted = convert::convert(cut.span(), kind.kind, 180, kAllowLoss);
      EXPECT_TRUE(converted.bytes.empty()) << kind.name;
      EXPECT_NE(converted.error, "");
    }
    const Bytes foreign = Bytes().u16(0x4D42).zeros(500);
    EXPECT_TRUE(convert::convert(foreign.span(), kind.kind, 180, kAllowLoss).bytes.empty() ||
                kind.kind == FileKind::groupPart || kind.kind == FileKind::sheet);
  }
}

// ---- what is reported -----------------------------------------------------------------------------------

TEST(ConvertReport, MembersOfAllElementsAreOneLine) {
  auto macro = std::make_unique<OldMacro>();
  macro->shapes.shapes.resize(2000);
  for (std::size_t i = 0; i < 2000; ++i) macro->shapes.shapes[i].lateWord2 = static_cast<std::uint32_t>(i);
  macro->shapes.shapes[7].note = "seven";
  const auto saved = values::saveRecord<FileKind::macro>(*macro, 180);
  const convert::Converted converted = convert::convert(saved.bytes, FileKind::macro, 150);
  EXPECT_TRUE(converted.bytes.empty());
  const Loss* const words = find(converted.report, "shapes.shapes[].lateWord2");
  ASSERT_NE(words, nullptr);
  EXPECT_EQ(words->effect, Loss::Effect::lost);
  EXPECT_EQ(words->count, 1999U);
  EXPECT_EQ(words->path, "shapes.shapes[1].lateWord2");
  EXPECT_EQ(words->before, "1");
  EXPECT_EQ(words->after, "0");
  const Loss* const note = find(converted.report, "shapes.shapes[].note");
  ASSERT_NE(note, nullptr);
  EXPECT_EQ(note->count, 1U);
  EXPECT_EQ(note->before, "\"seven\"");
  EXPECT_EQ(converted.report.losses.size(), 2U);
  const std::string text = convert::textOf(converted.report);
  EXPECT_NE(text.find("  2 members lost:\n"), std::string::npos) << text;
  EXPECT_NE(text.find("shapes.shapes[].lateWord2: 1999 times, first shapes.shapes[1].lateWord2: 1, now 0\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("shapes.shapes[7].note: \"seven\", now \"\"\n"), std::string::npos) << text;
}

TEST(ConvertReport, ElementsThatAreNotStoredAreLostAndOtherValuesChanged) {
  auto part = std::make_unique<TorvPart>();
  part->patterns.resize(1);
  part->patterns[0].groupKind = 32006;
  part->workList.resize(3);
  part->workKind = 7;
  const auto saved = values::saveRecord<FileKind::part>(*part, 180);
  const convert::Converted converted = convert::convert(saved.bytes, FileKind::part, 62);
  const Loss* const list = find(converted.report, "workList[]");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->effect, Loss::Effect::lost);
  EXPECT_EQ(list->count, 3U);
  EXPECT_EQ(list->after, "");
  const Loss* const kind = find(converted.report, "workKind");
  ASSERT_NE(kind, nullptr);
  EXPECT_EQ(kind->before, "7");
  EXPECT_EQ(kind->after, "2");
  const Loss* const group = find(converted.report, "patterns[].groupKind");
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->before, "32006");
}

TEST(ConvertReport, BytesThatNoLoadKeepsAreLeftOut) {
  const Bytes macro = macroFile(180);
  const Bytes longer = Bytes(macro).text(9, "my remark");
  const convert::Converted refused = convert::convert(longer.span(), FileKind::macro, 180);
  EXPECT_TRUE(refused.bytes.empty());
  ASSERT_EQ(refused.report.leftOut.size(), 1U);
  EXPECT_EQ(refused.report.leftOut[0].offset, macro.size());
  EXPECT_EQ(refused.report.leftOut[0].size, 9U);
  EXPECT_TRUE(Bytes::of(convert::convert(longer.span(), FileKind::macro, 180, kAllowLoss).bytes) == macro);

  // A part has 499 reserved bytes.
  const Bytes part = storedPartFile(180);
  std::optional<std::uint64_t> at;
  (void)explain::mapFile(part.span(), FileKind::part, [&](const explain::MapLine& line) {
    if (line.path == "reserved" && !at) at = line.offset;
  });
  ASSERT_TRUE(at);
  std::vector<std::byte> marked(part.span().begin(), part.span().end());
  marked[static_cast<std::size_t>(*at) + 10] = std::byte{1};
  const convert::Converted reserved = convert::convert(marked, FileKind::part, 180);
  ASSERT_EQ(reserved.report.leftOut.size(), 1U);
  EXPECT_EQ(reserved.report.leftOut[0].offset, *at);
  EXPECT_NE(reserved.report.leftOut[0].reason.find("reserved"), std::string::npos);
}

TEST(ConvertReport, SpareWordOfASheetIsLeftOut) {
  const Bytes file = cleanCopy(sheetFile(180), FileKind::sheet, 180);
  std::optional<std::uint64_t> at;
  (void)explain::mapFile(file.span(), FileKind::sheet, [&](const explain::MapLine& line) {
    if (line.path == "spareWord") at = line.offset;
  });
  ASSERT_TRUE(at);
  std::vector<std::byte> marked(file.span().begin(), file.span().end());
  marked[static_cast<std::size_t>(*at)] = std::byte{7};
  const convert::Converted converted = convert::convert(marked, FileKind::sheet, 180);
  ASSERT_EQ(converted.report.leftOut.size(), 1U);
  EXPECT_EQ(converted.report.leftOut[0].offset, *at);
  EXPECT_TRUE(converted.report.losses.empty());
}

TEST(ConvertReport, JsonHasTheSame) {
  auto macro = std::make_unique<OldMacro>();
  macro->shapes.shapes.resize(2);
  macro->shapes.shapes[1].note = "a \"note\"\n\x1b[31m\xe2\x80\xae";
  const auto saved = values::saveRecord<FileKind::macro>(*macro, 180);
  const convert::Converted converted = convert::convert(saved.bytes, FileKind::macro, 110);
  const auto json = nlohmann::json::parse(convert::jsonOf(converted.report, "a\nb", converted.error, false));
  EXPECT_EQ(json["path"], "a\nb");
  EXPECT_EQ(json["kind"], "macro");
  EXPECT_EQ(json["from"], 180);
  EXPECT_EQ(json["to"], 110);
  EXPECT_EQ(json["written"], false);
  EXPECT_EQ(json["error"], converted.error);
  ASSERT_EQ(json["losses"].size(), 1U);
  EXPECT_EQ(json["losses"][0]["member"], "shapes.shapes[].note");
  EXPECT_EQ(json["losses"][0]["effect"], "lost");
  EXPECT_EQ(json["losses"][0]["count"], 1);
  for (const std::string& text :
       {convert::textOf(converted.report), convert::jsonOf(converted.report, "x", converted.error)})
    for (const char c : text) EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << text;
}

// ---- sheets and machines --------------------------------------------------------------------------------

class ConvertSheet : public testing::TestWithParam<int> {};

// As SaveOldSheet and the edits leave it.
TEST_P(ConvertSheet, RuinedByASaveIsFixedInItsVersionAndInNewerOnes) {
  const int version = GetParam();
  auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, version);
  sheet->version = static_cast<std::uint16_t>(version);
  const auto ruined = values::saveRecord<FileKind::sheet>(*sheet, version).bytes;
  ASSERT_FALSE(isSound(ruined, FileKind::sheet));
  for (const int to : {version, 151, 152, 180}) {
    const convert::Converted converted = convert::convert(ruined, FileKind::sheet, to, kAllowLoss);
    ASSERT_EQ(converted.error, "") << to;
    ASSERT_TRUE(isSound(converted.bytes, FileKind::sheet)) << to;
    ASSERT_FALSE(converted.report.notes.empty());
    EXPECT_EQ(converted.report.notes[0].find("fixed: "), 0U);
    // Everything after the machine is where it belongs.
    const auto loaded = values::loadRecord<FileKind::sheet>(converted.bytes);
    EXPECT_EQ(loaded.record->textEntries.size(), version < 60 ? 0U : 1U);
    EXPECT_EQ(loaded.record->partList.parts.size(), 1U);
    if (version >= 102) {
      EXPECT_EQ(loaded.record->utilization, sheet->utilization) << to;
    }
  }
  const convert::Converted same = convert::convert(ruined, FileKind::sheet, version, kAllowLoss);
  EXPECT_EQ(same.bytes.size() + lateMachineBytes(version), ruined.size());
  const convert::Converted again = convert::convert(same.bytes, FileKind::sheet, version);
  EXPECT_EQ(again.error, "");
  EXPECT_TRUE(again.bytes == same.bytes);
}
INSTANTIATE_TEST_SUITE_P(EveryVersion, ConvertSheet, testing::Values(52, 54, 60, 80, 90, 100, 111, 130, 141, 150, 151));

TEST(ConvertMachine, BelowVersion152EndsExactly) {
  for (const int version : {52, 60, 110, 150, 151}) {
    const Bytes file = machineFile(180);
    const convert::Converted converted = convert::convert(file.span(), FileKind::machine, version, kAllowLoss);
    ASSERT_EQ(converted.error, "") << version;
    EXPECT_TRUE(isSound(converted.bytes, FileKind::machine)) << version;
  }
}

TEST(ConvertSheets, WidthsOfTextsAreThoseThatASaveStores) {
  auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, 180);
  sheet->machine.textWidth = 100;
  sheet->machine.secondTextWidth = 40;
  std::strcpy(sheet->machine.machineText3, "third");
  // A save stores 256 bytes of every text, whatever the widths are: fewer are made of those.
  auto stored = std::make_unique<OldSheet>(*sheet);
  stored->machine.textWidth = stored->machine.secondTextWidth = 256;
  const Bytes once =
      cleanCopy(Bytes::of(values::saveRecord<FileKind::sheet>(*stored, 180).bytes), FileKind::sheet, 180);
  auto loaded = values::loadRecord<FileKind::sheet>(once.span());
  loaded.record->machine.textWidth = 100;
  loaded.record->machine.secondTextWidth = 40;
  const convert::CompleteSave complete = convert::saveCompletely<FileKind::sheet>(*loaded.record, 180);
  EXPECT_EQ(complete.error, "");
  EXPECT_TRUE(Bytes::of(complete.bytes) == once);
}

TEST(ConvertSheets, SmallValueAndTheMarkOfShapesAreKept) {
  for (const int version : {79, 80, 120, 151, 152, 180})
    for (const int shapes : {0, 3})
      for (const int mark : {0, 1, 2}) {
        auto sheet = std::make_unique<OldSheet>();
        fullSheet(*sheet, version);
        sheet->shapes.shapes.resize(static_cast<std::size_t>(shapes));
        for (Shape& shape : sheet->shapes.shapes) shape.trailerValue = 41;
        sheet->machine.smallValue = -5;
        sheet->machine.shapesPresent = static_cast<std::uint8_t>(mark);
        const convert::CompleteSave complete = convert::saveCompletely<FileKind::sheet>(*sheet, version);
        ASSERT_EQ(complete.error, "") << version << ' ' << shapes << ' ' << mark;
        const auto loaded = values::loadRecord<FileKind::sheet>(complete.bytes);
        EXPECT_EQ(loaded.record->machine.smallValue, -5);
        EXPECT_EQ(loaded.record->machine.shapesPresent, mark);
        ASSERT_EQ(loaded.record->shapes.shapes.size(), static_cast<std::size_t>(shapes));
        if (shapes > 0) {
          EXPECT_EQ(loaded.record->shapes.shapes[2].trailerValue, mark == 1 && version >= 80 ? 41 : 0)
              << version << ' ' << mark;
        }
        const convert::Converted copy = convert::convert(complete.bytes, FileKind::sheet, version);
        EXPECT_EQ(copy.error, "") << version << ' ' << shapes << ' ' << mark << convert::textOf(copy.report);
        const convert::Converted again = convert::convert(copy.bytes, FileKind::sheet, version);
        EXPECT_TRUE(again.bytes == copy.bytes) << version << ' ' << shapes << ' ' << mark;
      }
}

// A sheet of that version with `stored` blocks, of which `count` are announced.
Bytes sheetWithBlocks(int version, int count, int stored) {
  auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, version);
  const Bytes copy =
      cleanCopy(Bytes::of(values::saveRecord<FileKind::sheet>(*sheet, version).bytes), FileKind::sheet, version);
  const auto saved = copy.span();
  const std::size_t lateText = version >= 161 ? 256 : 0;
  const std::size_t at = saved.size() - lateText - 4;
  Bytes file = Bytes::of(saved.first(at)).i32(count);
  codec::OutStream block;
  EXPECT_TRUE(codec::writeRecord(block, version, ShapeWorkBlock()));
  for (int i = 0; i < stored; ++i) file.add(Bytes::of(block.bytes()));
  return file.add(Bytes::of(saved.subspan(at + 4)));
}

TEST(ConvertSheets, OnlyBlockIsKeptWhereTheVersionStoresAllOfIt) {
  for (const int from : {152, 161, 180}) {
    const Bytes file = sheetWithBlocks(from, 1, 1);
    const convert::Converted same = convert::convert(file.span(), FileKind::sheet, from);
    EXPECT_EQ(same.error, "");
    EXPECT_TRUE(Bytes::of(same.bytes) == file) << from;
    EXPECT_TRUE(same.report.isComplete());
    const convert::Converted newer = convert::convert(file.span(), FileKind::sheet, 180, kAllowLoss);
    ASSERT_TRUE(isSound(newer.bytes, FileKind::sheet));
    const Bytes older = Bytes::of(convert::convert(newer.bytes, FileKind::sheet, from, kAllowLoss).bytes);
    EXPECT_TRUE(older == file) << from;
  }
}

TEST(ConvertSheets, OnlyBlockIsKeptByARecovery) {
  for (const int version : {152, 161, 180}) {
    const Bytes file = sheetWithBlocks(version, 1, 1);
    const convert::Recovered recovered = convert::recover(Bytes(file).zeros(5).span(), FileKind::sheet);
    EXPECT_TRUE(Bytes::of(recovered.bytes) == file) << version;
    ASSERT_EQ(recovered.report.leftOut.size(), 1U);
    EXPECT_EQ(recovered.report.leftOut[0].size, 5U);
    const convert::Recovered cut = convert::recover(file.cut(file.size() - 300).span(), FileKind::sheet);
    EXPECT_TRUE(isSound(cut.bytes, FileKind::sheet)) << version;
  }
}

TEST(ConvertSheets, BlocksThatCannotBeKeptAreLeftOut) {
  const struct { int from, to, count; } cases[] = {{180, 151, 1}, {180, 180, 2}, {152, 152, 2}};
  for (const auto& one : cases) {
    const Bytes file = sheetWithBlocks(one.from, one.count, one.count);
    const convert::Converted refused = convert::convert(file.span(), FileKind::sheet, one.to);
    EXPECT_TRUE(refused.bytes.empty());
    ASSERT_FALSE(refused.report.leftOut.empty()) << one.from << refused.error;
    EXPECT_NE(refused.report.leftOut[0].reason.find("block"), std::string::npos);
    EXPECT_GE(refused.report.leftOut[0].size, 68U);
    const convert::Converted converted = convert::convert(file.span(), FileKind::sheet, one.to, kAllowLoss);
    ASSERT_EQ(converted.error, "");
    EXPECT_TRUE(isSound(converted.bytes, FileKind::sheet));
  }
}

TEST(ConvertSheets, SheetThatEndsInItsOnlyBlockIsConvertedWithoutIt) {
  const Bytes file = sheetWithBlocks(160, 1, 1);
  const Bytes cut = file.cut(file.size() - 10);
  ASSERT_EQ(explain::checkFile(cut.span(), FileKind::sheet).status, 0);
  EXPECT_TRUE(convert::convert(cut.span(), FileKind::sheet, 160).bytes.empty());
  for (const int version : {151, 152, 180}) {
    const convert::Converted converted = convert::convert(cut.span(), FileKind::sheet, version, kAllowLoss);
    ASSERT_EQ(converted.error, "");
    EXPECT_TRUE(isSound(converted.bytes, FileKind::sheet));
    const Loss* const blocks = find(converted.report, "blocks[]");
    ASSERT_NE(blocks, nullptr);
    EXPECT_EQ(blocks->effect, Loss::Effect::lost);
  }
}

TEST(ConvertMaterials, TablesOfOldVersionsAreStoredInTheLayoutOfTheNewOne) {
  for (const int from : {500, 501, 502}) {
    const Bytes file = randomFile(FileKind::material, from, 3);
    const convert::Converted converted = convert::convert(file.span(), FileKind::material, 180, kAllowLoss);
    ASSERT_EQ(converted.error, "") << from;
    const auto before = values::loadRecord<FileKind::material>(file.span());
    const auto after = values::loadRecord<FileKind::material>(converted.bytes);
    EXPECT_EQ(after.record->params.version, 180);
    EXPECT_EQ(std::memcmp(before.record->params.intParams, after.record->params.intParams,
                          sizeof before.record->params.intParams),
              0);
    EXPECT_EQ(std::memcmp(before.record->params.realParams, after.record->params.realParams,
                          sizeof before.record->params.realParams),
              0);
    ASSERT_NE(find(converted.report, "params.version"), nullptr);
  }
}

TEST(ConvertMaterials, DefaultRulesAreNotAddedAgain) {
  auto material = std::make_unique<OldMaterial>();
  material->params.version = 180;
  material->params.nameLength = 1;
  material->rules.angleRules.resize(2);
  const auto saved = values::saveRecord<FileKind::material>(*material, 180);
  ASSERT_EQ(values::loadRecord<FileKind::material>(saved.bytes).record->rules.angleRules.size(), 8U);
  const convert::Converted converted = convert::convert(saved.bytes, FileKind::material, 180);
  EXPECT_TRUE(converted.bytes == saved.bytes) << convert::textOf(converted.report);
}

// ---- the command ----------------------------------------------------------------------------------------

class ConvertCommand : public testing::Test {
 protected:
  TempFolder folder_;
  std::string in_ = folder_.write("tool.spt", cleanCopy(specialToolFile(110, {1, 2}), FileKind::specialTool, 110));
  std::string out_ = folder_.path("new.spt");

  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_.path()), std::filesystem::directory_iterator()));
  }
  Outcome convert(const std::string& arguments) const { return torvio("convert " + in_ + " " + arguments); }
};

TEST_F(ConvertCommand, WritesTheFileAndSaysSo) {
  const Outcome run = convert(out_ + " --version 180");
  EXPECT_EQ(run.code, 0) << run.errors;
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output.find(in_ + ": special-tool of version 110 to version 180, nothing is lost\n"), 0U) << run.output;
  EXPECT_NE(run.output.find("  written: " + out_ + ", "), std::string::npos) << run.output;
  EXPECT_TRUE(isSound(TempFolder::read(out_).span(), FileKind::specialTool));
  EXPECT_EQ(filesInFolder(), 2U);
}

TEST_F(ConvertCommand, LossIsRefusedUnlessItIsAllowed) {
  auto tool = values::loadRecord<FileKind::specialTool>(TempFolder::read(in_).span());
  tool.record->shapes.shapes.resize(1);
  tool.record->shapes.shapes[0].note = "\x1b]0;title\x07 <b> \"x\"\n";
  folder_.write("tool.spt", Bytes::of(values::saveRecord<FileKind::specialTool>(*tool.record, 180).bytes));
  const Outcome refused = convert(out_ + " --version 140");
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.errors.find("torvio: " + in_ + ": a file of version 140 would lose what is listed; --allow-loss"),
            0U)
      << refused.errors;
  EXPECT_NE(refused.output.find("shapes.shapes[0].note: "), std::string::npos) << refused.output;
  EXPECT_FALSE(std::filesystem::exists(out_));
  for (const char c : refused.output) EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20);

  const Outcome dry = convert("--dry-run --version 140");
  EXPECT_EQ(dry.code, 1);
  EXPECT_EQ(dry.output, refused.output);
  EXPECT_EQ(convert("--dry-run --version 140 --allow-loss").code, 0);
  EXPECT_FALSE(std::filesystem::exists(out_));

  EXPECT_EQ(convert(out_ + " --version 140 --allow-loss").code, 0);
  EXPECT_TRUE(isSound(TempFolder::read(out_).span(), FileKind::specialTool));
}

TEST_F(ConvertCommand, PrintsOneJsonObject) {
  const Outcome run = convert(out_ + " --json --version 52");
  const auto json = nlohmann::json::parse(run.output);
  EXPECT_EQ(json["to"], 52);
  EXPECT_EQ(json["written"], run.code == 0);
  EXPECT_EQ(std::filesystem::exists(out_), run.code == 0);
  const auto written = nlohmann::json::parse(convert(out_ + " --json --version 180").output);
  EXPECT_EQ(written["written"], true);
  EXPECT_EQ(written["newSize"], TempFolder::read(out_).size());
}

TEST_F(ConvertCommand, RefusedFilesLeaveWhatWasThere) {
  const Bytes before = Bytes().text(5, "hello");
  folder_.write("new.spt", before);
  EXPECT_EQ(convert(out_ + " --version 51").code, 1);
  EXPECT_EQ(convert(out_ + " --version 181").code, 1);
  EXPECT_EQ(convert(out_).code, 2);
  EXPECT_EQ(convert("--version 180").code, 2);
  EXPECT_EQ(convert(out_ + " --version 40000").code, 2);
  EXPECT_EQ(convert(out_ + " --version -1").code, 2);
  EXPECT_EQ(convert(out_ + " --version x").code, 2);
  EXPECT_EQ(torvio("convert " + folder_.path("none") + " " + out_ + " --version 180").code, 3);
  EXPECT_EQ(torvio("convert " + folder_.path() + " " + out_ + " --version 180").code, 3);
  const std::string foreign = folder_.write("foreign", Bytes().text(40, "this is a text of some other program"));
  EXPECT_EQ(torvio("convert " + foreign + " " + out_ + " --version 180").code, 1);
  const std::string cut = folder_.write("cut.spt", TempFolder::read(in_).cut(100));
  const Outcome damaged = torvio("convert " + cut + " " + out_ + " --version 180");
  EXPECT_EQ(damaged.code, 1);
  EXPECT_NE(damaged.errors.find("\"torvio recover\""), std::string::npos) << damaged.errors;
  EXPECT_TRUE(TempFolder::read(out_) == before);
  EXPECT_EQ(filesInFolder(), 4U);
}

TEST_F(ConvertCommand, InAndOutAreTwoFiles) {
  const Bytes before = TempFolder::read(in_);
  const Outcome same = convert(in_ + " --version 180");
  EXPECT_EQ(same.code, 2);
  EXPECT_EQ(same.errors.find("torvio: convert: \"" + in_ + "\" is both a file to read and the output\n"), 0U);
  if (kIsPosix) {
    std::filesystem::create_hard_link(in_, out_);
    EXPECT_EQ(convert(out_ + " --version 180").code, 2);
    std::filesystem::remove(out_);
    std::filesystem::create_symlink(in_, out_);
    EXPECT_EQ(convert(out_ + " --version 180").code, 2);
    std::filesystem::remove(out_);
    std::filesystem::create_symlink(folder_.path("elsewhere"), out_);
    EXPECT_EQ(convert(out_ + " --version 180").code, 3);
    EXPECT_EQ(convert("/dev/null --version 180").code, 3);
  }
  EXPECT_EQ(convert(folder_.path() + " --version 180").code, 3);
  EXPECT_EQ(convert(folder_.path("none") + "/x --version 180").code, 3);
  EXPECT_TRUE(TempFolder::read(in_) == before);
}

TEST_F(ConvertCommand, FullDiskLeavesNoFile) {
  if (!kIsPosix) GTEST_SKIP() << "no limit of the size of files";
  const std::string sheet = folder_.write("nest", sheetFile(180));
  const Bytes before = Bytes().u8(1);
  folder_.write("new.spt", before);
  const std::string command = std::string(TORVIO_COMMAND) + " convert " + sheet + " " + out_ + " --version 180";
  const Outcome run = runShell("(trap '' XFSZ; ulimit -f 16; " + command + ")");
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.errors.find("torvio: " + out_ + ": cannot be written"), 0U) << run.errors;
  EXPECT_TRUE(TempFolder::read(out_) == before);
  EXPECT_EQ(filesInFolder(), 3U);
  if (std::filesystem::exists("/dev/full")) {
    EXPECT_EQ(convert(out_ + " --version 180 > /dev/full").code, 3);
  }
}

// examples/convert_file.sh
TEST_F(ConvertCommand, ScriptKeepsNoResultOfAFileThatIsNowRefused) {
  if (!kIsPosix || runShell("bash --version").code != 0) GTEST_SKIP() << "no bash";
  namespace fs = std::filesystem;
  const std::string from = folder_.path("from"), to = folder_.path("to"), file = from + "/tool.spt";
  const std::string report = to + ".reports/tool.spt.json";
  fs::create_directories(from);
  const auto runScript = [&](const std::string& options = "") {
    return runShell("PATH=" + folder_.path() + ":$PATH bash " TORVIO_SOURCE "/examples/convert_file.sh 180 " + from +
                    " " + to + " " + options + file);
  };
  const auto putTorvio = [&](const std::string& script) {
    std::ofstream(folder_.path("torvio")) << "#!/bin/sh\n" << script << '\n';
    fs::permissions(folder_.path("torvio"), fs::perms::owner_all);
  };
  // On an emulated host the command is that of the emulator.
  putTorvio("exec " TORVIO_COMMAND " \"$@\"");
  // Each is newer than the report of the one before.
  int age = 9;
  const auto write = [&](const Bytes& bytes) {
    folder_.write("from/tool.spt", bytes);
    if (fs::exists(report)) fs::last_write_time(report, fs::file_time_type::clock::now() - std::chrono::hours(age--));
  };
  const Bytes sound = TempFolder::read(in_);
  write(sound);
  EXPECT_EQ(runScript().code, 0);
  EXPECT_TRUE(fs::exists(to + "/tool.spt"));
  write(sound.cut(30));
  EXPECT_EQ(runScript("--dry-run ").code, 0);
  EXPECT_TRUE(fs::exists(to + "/tool.spt"));
  write(sound.cut(30));
  EXPECT_EQ(runScript().code, 0);
  EXPECT_FALSE(fs::exists(to + "/tool.spt"));
  EXPECT_NE(asText(TempFolder::read(report)).find("is damaged"), std::string::npos);

  // A report that is lost is an error.
  putTorvio("echo new >\"$3\"");
  write(sound);
  const Outcome lost = runScript();
  EXPECT_EQ(lost.code, 3);
  EXPECT_EQ(lost.errors, "convert_file.sh: " + file + ": torvio convert printed no report\n");
}

TEST_F(ConvertCommand, OddNamesAreEscaped) {
  if (!kIsPosix) GTEST_SKIP() << "no such names";
  const std::string odd = folder_.write("a\n\x1b[1mb.spt", TempFolder::read(in_));
  const Outcome run = torvio("convert '" + odd + "' " + out_ + " --version 180");
  EXPECT_EQ(run.code, 0);
  EXPECT_NE(run.output.find("a\\n\\x1b[1mb.spt: special-tool"), std::string::npos) << run.output;
}

}  // namespace
