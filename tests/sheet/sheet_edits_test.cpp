// The three edits of sheet files, byte by byte, and five of the queries of them.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/part/part_io.h"
#include "src/records/record_io.h"
#include "tests/support/files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using Sheet = std::unique_ptr<OldSheet>;

// ---- versions ------------------------------------------------------------------------------------

const std::vector<int>& knownVersions() {
  static const std::vector<int> all = joined({1, 6, 52}, inventoryVersions());
  return all;
}
bool isKnown(int version) { return contains(knownVersions(), version); }
std::vector<int> savedVersions() { return {knownVersions().begin() + 2, knownVersions().end()}; }

// ---- files ---------------------------------------------------------------------------------------

std::string stringOf(const Bytes& all) { return {reinterpret_cast<const char*>(all.span().data()), all.size()}; }
std::string contentOf(const std::string& path) { return stringOf(TempFolder::read(path)); }
std::string put(const TempFolder& folder, const std::string& name, const std::string& all) {
  std::ofstream(folder.path(name), std::ios::binary) << all;
  return folder.path(name);
}
std::string word(std::uint32_t value) { return stringOf(Bytes().u32(value)); }

// Sheets are too long to be printed completely.
testing::AssertionResult sameBytes(const std::string& is, const std::string& shouldBe) {
  if (is == shouldBe) return testing::AssertionSuccess();
  std::size_t at = 0;
  while (at < is.size() && at < shouldBe.size() && is[at] == shouldBe[at]) ++at;
  return testing::AssertionFailure() << is.size() << " bytes instead of " << shouldBe.size()
                                     << ", the first difference at " << at;
}

// The one place of `what`.
std::size_t placeOf(const std::string& in, const std::string& what) {
  const auto at = in.find(what);
  EXPECT_NE(at, std::string::npos);
  EXPECT_EQ(in.find(what, at + 1), std::string::npos) << "is there twice";
  return at == std::string::npos ? 0 : at;
}

// ---- a sheet with a value of its own wherever the edits and queries look ---------------------------

const std::string kNcPath = "C:\\NC\\Out\\Plant";
const std::string kAfterSheet = "bytes after the end, which a save drops";

// The text, its NUL, and after it something that must not get lost.
template <std::size_t N>
void setText(char (&field)[N], const std::string& text, char after = '#') {
  std::memset(field, after, N);
  std::memcpy(field, text.c_str(), std::min(N, text.size() + 1));
}
std::string storedText(const std::string& text, char after = '#') {
  return (text + std::string(1, '\0') + std::string(256, after)).substr(0, 256);
}
void lay(char* field, const std::string& text) { std::memcpy(field, text.c_str(), text.size() + 1); }

// Numbers of the parameter table that its main layout stores since 80, in stored order.
std::vector<int> storedNumbers() {
  std::vector<int> all;
  for (const auto& [first, last] : {std::pair{55, 89}, {101, 125}, {401, 500}, {551, 600}})
    for (int n = first; n <= last; ++n) all.push_back(n);
  return all;
}
std::int32_t flagValue(int n) { return 0x31000000 + n; }

Shape someShape(int type, float x) {
  Shape shape;
  shape.type = static_cast<std::int8_t>(type);
  shape.x = x;
  shape.y = x + 0.5F;
  for (int i = 0; i < 9; ++i) shape.values[i] = x + static_cast<float>(i);
  return shape;
}

struct PartForm {
  const char* name;
  const char* dosName;
  const char* number;
};
const std::vector<PartForm>& someParts() {
  static const std::vector<PartForm> all = {{"one", "C:\\PARTS\\BRACKET.TPT", "WO-A"},
                                            {"two", "D:/jobs/BRACKET.tpt", "WO-B"},
                                            {"three", "C:\\PARTS\\bracket.TPT", "WO-A"},
                                            {"BRACKET", "C:\\PARTS\\PLATE.TPT", "WO-A"},
                                            {"five", "BRACKET", ""},
                                            {"six", "C:\\BRACKET\\LID.TPT", "WO-A"}};
  return all;
}
char byteAfterNumber(std::size_t i) { return static_cast<char>('a' + static_cast<int>(i)); }

TorvPart somePart(const PartForm& form, std::size_t i) {
  TorvPart part;
  setText(part.partName, form.name, 0);
  setText(part.partFullDosName, form.dosName, 0);
  setText(part.woNumber, form.number, byteAfterNumber(i));
  part.shapes.shapes = {someShape(1, static_cast<float>(i) + 10.0F)};
  part.patterns.resize(i % 3);
  return part;
}

Sheet someSheet() {
  auto sheet = std::make_unique<OldSheet>();
  lay(sheet->sheetLabel, "LABEL");
  sheet->width = 101.5F;
  sheet->headerWord = 77;
  for (std::size_t i = 0; i < someParts().size(); ++i) sheet->partList.parts.push_back(somePart(someParts()[i], i));
  sheet->shapes.shapes = {someShape(3, 1.0F)};
  sheet->workList.resize(3);
  sheet->clampInfo.clampWord1 = 0x80000001U;
  sheet->clampInfo.clampWord2 = std::bit_cast<std::uint32_t>(2.25F);
  sheet->clampInfo.clampWord3 = std::bit_cast<std::uint32_t>(-3.5F);
  sheet->clampInfo.clampWord4 = 0x7FC01234U;  // not a number, and still to be copied out bit by bit
  sheet->clampInfo.clampCount = 4;
  sheet->clampInfo.clampSpacing = 6.25F;
  for (int i = 0; i < 4; ++i) sheet->clampInfo.clampPositions[i] = 1000.0F + static_cast<float>(i);
  sheet->paramTable.version = 150;
  for (int n : storedNumbers()) sheet->paramTable.intParams[n] = flagValue(n);
  sheet->paramTable.nameLength = 6;
  lay(sheet->paramTable.name, "STEEL");
  OldMachine& machine = sheet->machine;
  machine.textWidth = 256;
  lay(machine.machineText1, "MACHINE");
  machine.clampInfo.clampWord1 = 5;
  machine.clampInfo.clampCount = 3;
  machine.clampInfo.clampSpacing = 9.0F;
  for (int i = 0; i < 3; ++i) machine.clampInfo.clampPositions[i] = 70.0F + static_cast<float>(i);
  setText(machine.ncPath, kNcPath);
  machine.machineWord124 = 0x5EED1234;
  sheet->textEntries.resize(1);
  sheet->skeletonShapes.shapes = {someShape(17, 40.0F), someShape(2, 41.0F)};
  sheet->skeletonShapes.listKind = 3;
  sheet->skeletonShapes.listTag = 4;
  setText(sheet->skeletonDosName, "C:\\SKELETON.TPT");
  sheet->utilization = 0.8125F;
  for (int i = 0; i < 5; ++i) lay(sheet->partTexts[i], "PART TEXT " + std::to_string(i));
  lay(sheet->materialGroup, "GROUP");
  sheet->lateValue = 12.5;
  lay(sheet->lateText, "LATE");
  return sheet;
}

// What a save stores at this version and a load expects: below 152 without the machine's late words.
std::string soundFile(OldSheet& sheet, int version) {
  const Bytes file = readableSheetFile(sheet, version);
  return {reinterpret_cast<const char*>(file.span().data()), file.size()};
}

// What a load and a save make of a file.
std::string resaved(const TempFolder& folder, const std::string& file, int version, Sheet* loaded = nullptr) {
  const auto path = put(folder, "resaved", file);
  auto sheet = std::make_unique<OldSheet>();
  EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 0) << version;
  EXPECT_EQ(SaveOldSheet(path.c_str(), sheet.get(), static_cast<std::uint16_t>(version)), 0) << version;
  if (loaded != nullptr) *loaded = std::move(sheet);
  return contentOf(path);
}
Sheet loadedFrom(const std::string& path) {
  auto sheet = std::make_unique<OldSheet>();
  EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 0);
  return sheet;
}

TorvPart skeletonPart() {
  TorvPart part;
  part.shapes.shapes = {someShape(1, 500.0F), someShape(17, 501.0F), someShape(6, 502.0F)};
  part.shapes.listKind = 11;
  part.shapes.listTag = 12;
  for (auto& shape : part.shapes.shapes) shape.trailerValue = 0x77777777;
  part.patterns.resize(1);
  part.patterns[0].items.resize(3);
  return part;
}
std::string partFile(const TempFolder& folder, const TorvPart& part, int version = 180) {
  const auto path = folder.path("skeleton_" + std::to_string(version) + ".part");
  EXPECT_EQ(SavePart(path.c_str(), part, version), 0);
  return path;
}

struct Edit {
  const char* name;
  std::function<std::int64_t(const std::string& path)> run;  // one that changes someSheet()
};
std::vector<Edit> everyEdit(const std::string& part) {
  return {
      {"NC path", [](const std::string& path) { return ReplaceSheetMachineNcPath(path.c_str(), "E:\\NEW"); }},
      {"skeleton",
       [part](const std::string& path) { return ReplaceSheetSknPatListWithPartPatList(path.c_str(), part.c_str()); }},
      {"work order",
       [](const std::string& path) { return UpdateSheetPartWONumber(path.c_str(), "BRACKET", nullptr, "WO-NEW"); }}};
}

// ---- edits: the first look -------------------------------------------------------------------------

TEST(SheetEdits, VersionsOutsideTheListAreRefused) {
  const TempFolder folder;
  const auto edits = everyEdit(partFile(folder, skeletonPart()));
  for (int version = 0; version <= 0xFFFF; ++version) {
    const Bytes small = Bytes().u16(static_cast<std::uint16_t>(version)).i32(0);
    const auto path = folder.overwrite("small", small);
    for (const Edit& edit : edits) {
      ASSERT_EQ(edit.run(path), isKnown(version) ? 0 : -1) << edit.name << " " << version;
      if (!isKnown(version)) continue;
      ASSERT_EQ(TempFolder::read(path), small) << edit.name << " " << version;
    }
  }
}

TEST(SheetEdits, FilesThatCannotBeOpenedReturnMinusTwoAndShortOnesOne) {
  const TempFolder folder;
  EXPECT_EQ(ReplaceSheetMachineNcPath(nullptr, "E:\\NEW"), -2);
  EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(nullptr, folder.path("part").c_str()), -2);
  EXPECT_EQ(UpdateSheetPartWONumber(nullptr, "BRACKET", nullptr, "WO-NEW"), -2);
  for (const Edit& edit : everyEdit(partFile(folder, skeletonPart()))) {
    EXPECT_EQ(edit.run(folder.path("missing")), -2) << edit.name;
    EXPECT_EQ(edit.run(""), -2) << edit.name;
    EXPECT_FALSE(std::filesystem::exists(folder.path("missing"))) << edit.name;
    for (const std::string& shortFile : {std::string(), std::string(1, '\x34')}) {
      const auto path = put(folder, "short", shortFile);
      EXPECT_EQ(edit.run(path), 1) << edit.name;
      EXPECT_EQ(contentOf(path), shortFile) << edit.name;
    }
  }
}

TEST(SheetEdits, SheetsOfTheOldestKnownVersionsAreNotChanged) {
  const TempFolder folder;
  std::string file = soundFile(*someSheet(), 52);
  for (const Edit& edit : everyEdit(partFile(folder, skeletonPart())))
    for (char version : {'\x01', '\x06'}) {
      file[0] = version;
      const auto path = put(folder, "old", file);
      EXPECT_EQ(edit.run(path), 0) << edit.name;
      EXPECT_TRUE(sameBytes(contentOf(path), file)) << edit.name;
    }
}

TEST(SheetEdits, FileIsChangedOnlyIfAllOfItLoads) {
  const TempFolder folder;
  const auto edits = everyEdit(partFile(folder, skeletonPart()));
  for (int version : {54, 112, 162}) {
    const auto file = soundFile(*someSheet(), version);
    int whole = 0;
    for (std::size_t cut = 2; cut < file.size(); cut += 1 + file.size() / 40) {
      const auto piece = file.substr(0, cut);
      const auto path = put(folder, "piece", piece);
      auto sheet = std::make_unique<OldSheet>();
      if (LoadOldSheet(path.c_str(), sheet.get()) == 0) {
        ++whole;  // some items at the end may be missing
        continue;
      }
      for (const Edit& edit : edits) {
        EXPECT_EQ(edit.run(path), 0) << edit.name << " cut at " << cut;
        EXPECT_TRUE(sameBytes(contentOf(path), piece)) << edit.name << " cut at " << cut;
      }
    }
    EXPECT_LT(whole, 20);
  }
}

// Below 152 a save stores the machine's late words, which a load of that version does not take. One below
// 151 makes some of them other than 0, and after the machine these are then read as counts.
TEST(SheetEdits, SheetOfVersion60To150CannotBeLoadedAfterAnEdit) {
  const TempFolder folder;
  const auto edits = everyEdit(partFile(folder, skeletonPart()));
  for (int version : savedVersions()) {
    auto bare = someSheet();
    bare->textEntries.clear();
    bare->namedWorkLists.clear();
    bare->optionWord = 0;
    const auto file = soundFile(*bare, version);
    for (const Edit& edit : edits) {
      const auto path = put(folder, "sheet", file);
      auto sheet = std::make_unique<OldSheet>();
      ASSERT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 0) << version;
      EXPECT_EQ(edit.run(path), 0) << edit.name;
      const bool rewritten = !sameBytes(contentOf(path), file);
      const int result = rewritten && version >= 60 && version <= 150 ? 1 : 0;
      EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), result) << edit.name << " at " << version;
      EXPECT_TRUE(rewritten || version < 162) << edit.name << " at " << version;
    }
  }
}

TEST(SheetEdits, BelowVersion60AndAt151TheFieldsAfterTheMachineAreLost) {
  const TempFolder folder;
  const auto edits = everyEdit(partFile(folder, skeletonPart()));
  for (int version : {52, 54, 151}) {
    auto bare = someSheet();
    bare->textEntries.clear();
    bare->namedWorkLists.clear();
    for (const std::uint32_t option : {0x11223344U, 0U}) {
      bare->optionWord = option;
      const auto file = soundFile(*bare, version);
      for (const Edit& edit : edits) {
        const auto path = put(folder, "sheet", file);
        auto sheet = loadedFrom(path);
        EXPECT_EQ(sheet->optionWord, option) << version;
        EXPECT_EQ(edit.run(path), 0) << edit.name;
        if (sameBytes(contentOf(path), file)) continue;  // the work order below 162
        const int result = version == 151 && option != 0 ? 1 : 0;
        EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), result) << edit.name << " at " << version;
        if (version < 60) {
          EXPECT_EQ(sheet->optionWord, 0U) << edit.name << " at " << version;
        } else if (option == 0) {
          EXPECT_NE(sheet->utilization, bare->utilization) << edit.name;
        }
      }
    }
  }
}

// The old layouts store no length of a name, and without one no table can be stored.
TEST(SheetEdits, SheetWithATableOfAnOldLayoutEndsInItsTable) {
  const TempFolder folder;
  constexpr std::size_t kMainLayoutWithoutName = 19792;
  const auto sound = soundFile(*someSheet(), 180);
  const std::size_t table = placeOf(sound, word(6) + std::string("STEEL\0", 6)) + 4 - kMainLayoutWithoutName;
  ASSERT_EQ(sound.substr(table, 2), stringOf(Bytes().u16(150)));
  const std::string after = sound.substr(table + kMainLayoutWithoutName + 6);
  // Layout 500 is 69 bytes, of 501 and 502 the largest part is ignored here.
  const auto file = sound.substr(0, table) + stringOf(Bytes().u16(500)) + std::string(46, '\1') + std::string("OLD") +
                    std::string(18, '\0') + after;
  for (const Edit& edit : everyEdit(partFile(folder, skeletonPart()))) {
    const auto path = put(folder, "sheet", file);
    auto sheet = loadedFrom(path);
    EXPECT_EQ(sheet->paramTable.version, 500);
    EXPECT_STREQ(sheet->paramTable.name, "OLD");
    EXPECT_EQ(sheet->paramTable.nameLength, 0);
    EXPECT_STREQ(sheet->lateText, "LATE");
    std::int32_t flags[601];
    EXPECT_EQ(GetSheetDriverFlags(path.c_str(), flags), 0);
    EXPECT_EQ(SaveOldSheet(folder.path("saved").c_str(), sheet.get(), 180), -2);
    EXPECT_EQ(edit.run(path), 0) << edit.name;
    const auto left = contentOf(path);
    const bool keepsParts = std::string(edit.name) != "skeleton";
    EXPECT_EQ(left.size() == table + kMainLayoutWithoutName, keepsParts) << edit.name;
    EXPECT_EQ(left.substr(left.size() - kMainLayoutWithoutName, 2), stringOf(Bytes().u16(500))) << edit.name;
    EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 1) << edit.name;
  }
}

// The 256 bytes of a text become the first 100 of them, and with a length in front that becomes 100.
std::string narrowed(std::string file, const std::string& text, bool hasLength) {
  const std::size_t at = placeOf(file, hasLength ? word(256) + text : text);
  if (hasLength) file.replace(at, 4, word(100));
  return file.erase(at + (hasLength ? 4 : 0) + 100, 156);
}

TEST(SheetEdits, SheetWhoseMachineHasAnotherTextWidthCannotBeLoadedAfterAnEdit) {
  const TempFolder folder;
  const std::string text = "MACHINE";
  const auto made = someSheet();
  lay(made->machine.machineText2, "SECOND OF THREE");
  lay(made->machine.machineText3, "THIRD OF THREE");
  for (int version : {152, 162, 180}) {
    auto file = narrowed(soundFile(*made, version), text, true);
    file = narrowed(narrowed(file, "SECOND OF THREE", false), "THIRD OF THREE", false);
    for (const Edit& edit : everyEdit(partFile(folder, skeletonPart()))) {
      const auto path = put(folder, "sheet", file);
      auto sheet = loadedFrom(path);
      EXPECT_EQ(edit.run(path), 0) << edit.name;
      EXPECT_EQ(contentOf(path).find(word(256) + text), contentOf(path).find(text) - 4) << edit.name;
      EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 1) << edit.name << " at " << version;
    }
  }
}

// Fill bytes after the second text keep what follows in step, but not what is among them.
TEST(SheetEdits, SheetWhoseMachineHasAnotherSecondTextWidthLosesItsSmallValue) {
  const TempFolder folder;
  const auto made = someSheet();
  made->machine.secondTextPresent = 1;
  made->machine.secondTextWidth = 256;
  made->machine.smallValue = 77;
  lay(made->machine.secondText, "ANOTHER");
  lay(made->machine.machineText2, "SECOND OF THREE");
  lay(made->machine.machineText3, "THIRD OF THREE");
  auto file = narrowed(soundFile(*made, 180), "ANOTHER", true);
  file.insert(placeOf(file, "ANOTHER") + 108, std::string(156, '\0'));  // after smallValue and shapesPresent
  file = narrowed(narrowed(file, "SECOND OF THREE", false), "THIRD OF THREE", false);
  for (const Edit& edit : everyEdit(partFile(folder, skeletonPart()))) {
    const auto path = put(folder, "sheet", file);
    EXPECT_EQ(loadedFrom(path)->machine.smallValue, 77);
    EXPECT_EQ(edit.run(path), 0) << edit.name;
    const auto sheet = loadedFrom(path);
    EXPECT_EQ(sheet->machine.secondTextWidth, 256) << edit.name;
    EXPECT_EQ(sheet->machine.smallValue, 0) << edit.name;
    EXPECT_STREQ(sheet->lateText, "LATE") << edit.name;
  }
}

TEST(SheetEdits, EditDropsBlocksAndBytesAfterTheSheet) {
  const TempFolder folder;
  const int version = 160;  // the last version whose sheets end with their blocks
  const auto sound = soundFile(*someSheet(), version);
  ASSERT_EQ(sound.substr(sound.size() - 4), word(0));
  const Bytes shapes = written([&](OutStream& to) { return WriteShapeList(to, version, ShapeList()); });
  Bytes block = Bytes().i32(1);
  for (std::uint32_t i = 1; i <= 5; ++i) block.u32(i);
  block.fill(32, 9).add(shapes).i32(0);
  const auto file = sound.substr(0, sound.size() - 4) + stringOf(block);
  for (const Edit& edit : everyEdit(partFile(folder, skeletonPart()))) {
    const auto path = put(folder, "blocks", file + kAfterSheet);
    const auto plain = put(folder, "plain", sound);
    EXPECT_EQ(edit.run(path), 0);
    EXPECT_EQ(edit.run(plain), 0);
    EXPECT_TRUE(sameBytes(contentOf(path), contentOf(plain))) << edit.name;
    EXPECT_EQ(contentOf(path).substr(contentOf(path).size() - 4), word(0)) << edit.name;
  }
}

// ---- edits: the NC path ------------------------------------------------------------------------------

// A load keeps a block that is incomplete in the file, and no save can store a single one.
TEST(SheetEditsDeathTest, SheetThatEndsInItsOnlyBlockEndsTheProcess) {
  const TempFolder folder;
  for (int version : {152, 160}) {
    const auto sound = soundFile(*someSheet(), version);
    const auto cut = sound.substr(0, sound.size() - 4) + word(1);
    for (const Edit& edit : everyEdit(partFile(folder, skeletonPart()))) {
      const auto path = put(folder, "sheet", cut);
      EXPECT_EQ(loadedFrom(path)->blocks.size(), 1U);
      EXPECT_DEATH((void)edit.run(path), "") << edit.name << " at " << version;
#if !defined(_WIN32)                                  // where the process that ends has files of its own
      EXPECT_LT(contentOf(path).size(), cut.size());  // the save had begun
#endif
    }
  }
}

TEST(SheetEdits, NewNcPathChangesOnlyItsTextAndItsNul) {
  const TempFolder folder;
  for (int version : savedVersions()) {
    const auto file = soundFile(*someSheet(), version);
    const auto untouched = resaved(folder, file, version);
    for (const std::string& fresh : {std::string("E:\\NEW"), std::string("C:\\NC\\Out\\Plant\\Two"), std::string("C:"),
                                     std::string("C:\\NC\\Out\\Planu"), std::string(255, 'x'), std::string()}) {
      // Below 62 the path that was loaded is empty: another empty one changes nothing.
      auto expected = version < 62 && fresh.empty() ? file + kAfterSheet : untouched;
      if (version >= 62) {
        const auto at = placeOf(untouched, storedText(kNcPath));
        expected.replace(at, fresh.size() + 1, fresh + std::string(1, '\0'));
      }
      const auto path = put(folder, "sheet", file + kAfterSheet);
      EXPECT_EQ(ReplaceSheetMachineNcPath(path.c_str(), fresh.c_str()), 0) << version;
      EXPECT_TRUE(sameBytes(contentOf(path), expected)) << version << " " << fresh;
    }
  }
}

TEST(SheetEdits, NcPathThatDiffersOnlyInTheCaseOfAToZLeavesTheFileAsItWas) {
  struct Row {
    std::string now, fresh;
    bool same;
  };
  const std::vector<Row> rows = {{kNcPath, kNcPath, true},
                                 {kNcPath, "c:\\nc\\oUT\\PLANT", true},
                                 {"AZaz", "azAZ", true},
                                 {"", "", true},
                                 {"A[", "A{", false},
                                 {"A@", "A`", false},
                                 {"\xC9", "\xE9", false},
                                 {"A/B", "A\\B", false},
                                 {"A", "A ", false},
                                 {"A", "", false},
                                 {"AB", "A", false},
                                 {std::string(256, 'n'), std::string(256, 'N'), true},
                                 {std::string(256, 'n'), std::string(255, 'n'), false}};
  const TempFolder folder;
  for (int version : {80, 152, 180})
    for (const Row& row : rows) {
      auto sheet = someSheet();
      setText(sheet->machine.ncPath, row.now);
      const auto file = soundFile(*sheet, version) + kAfterSheet;
      const auto path = put(folder, "sheet", file);
      EXPECT_EQ(ReplaceSheetMachineNcPath(path.c_str(), row.fresh.c_str()), 0);
      EXPECT_EQ(contentOf(path) == file, row.same) << version << " " << row.now << " " << row.fresh;
      if (row.same || version < 152) continue;
      EXPECT_STREQ(loadedFrom(path)->machine.ncPath, row.fresh.c_str());
    }
}

TEST(SheetEdits, NcPathThatDoesNotFitEndsTheProcessBeforeTheFileIsOpened) {
  const TempFolder folder;
  const auto file = soundFile(*someSheet(), 180);
  const auto path = put(folder, "sheet", file);
  for (std::size_t length : {256U, 257U, 1000U})
    EXPECT_DEATH(ReplaceSheetMachineNcPath(path.c_str(), std::string(length, 'x').c_str()), "") << length;
  EXPECT_TRUE(sameBytes(contentOf(path), file));
}

// ---- edits: the skeleton -----------------------------------------------------------------------------

std::string storedShapes(const ShapeList& list, int version) {
  return stringOf(written([&](OutStream& to) { return WriteShapeList(to, version, list); }));
}
std::string storedParts(const SheetPartList& list, int version) {
  Bytes all = Bytes().i32(static_cast<std::int64_t>(list.parts.size()));
  if (!list.parts.empty()) all.i32(256);
  for (const TorvPart& part : list.parts) {
    all.add(Bytes::of(std::as_bytes(std::span(part.partName, 256))));
    all.add(Bytes::of(std::as_bytes(std::span(part.partFullDosName, 256))));
    all.add(written([&](OutStream& to) { return WritePartBody(to, version, true, part); }));
  }
  return stringOf(all);
}

TEST(SheetEdits, PartAsSkeletonChangesOnlyTheSkeletonShapesAndTheListOfParts) {
  const TempFolder folder;
  for (bool withParts : {true, false})
    for (int version : savedVersions()) {
      auto sheet = someSheet();
      if (!withParts) sheet->partList.parts.clear();
      const auto file = soundFile(*sheet, version);
      Sheet loaded;
      const auto untouched = resaved(folder, file, version, &loaded);
      for (int partVersion : {52, 110, 161, 180}) {
        TorvPart source = skeletonPart();
        if (partVersion == 110) source.shapes.shapes.clear(), source.patterns[0].items.clear();
        const auto part = partFile(folder, source, partVersion);
        TorvPart asLoaded;
        ASSERT_EQ(LoadOldPart(part.c_str(), &asLoaded), 0);
        // Width word, label, plate, header word; since 100 the length and the name of the skeleton.
        std::size_t at = 2 + 4 + 256 + 12 + 4;
        std::string before, after;
        if (version >= 100) {
          at += 4 + 260;
          before = storedShapes(loaded->skeletonShapes, version);
          after = storedShapes(asLoaded.shapes, version);
        }
        before += storedParts(loaded->partList, version);
        after += word(0);
        ASSERT_TRUE(sameBytes(untouched.substr(at, before.size()), before)) << version;

        const auto path = put(folder, "sheet", file + kAfterSheet);
        EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(path.c_str(), part.c_str()), 0);
        EXPECT_TRUE(sameBytes(contentOf(path), std::string(untouched).replace(at, before.size(), after)))
            << version << " part of " << partVersion;
      }
    }
}

TEST(SheetEdits, PartAsSkeletonRemovesAllPartsAndCopiesTheShapesOfThePart) {
  const TempFolder folder;
  const auto part = partFile(folder, skeletonPart());
  for (int version = 152; version <= kLastVersion; ++version) {
    if (!isKnown(version)) continue;
    const auto path = put(folder, "sheet", soundFile(*someSheet(), version));
    ASSERT_EQ(ReplaceSheetSknPatListWithPartPatList(path.c_str(), part.c_str()), 0);
    const auto sheet = loadedFrom(path);
    EXPECT_EQ(sheet->version, version);
    EXPECT_TRUE(sheet->partList.parts.empty());
    EXPECT_EQ(sheet->skeletonShapes.listKind, 11);
    EXPECT_EQ(sheet->skeletonShapes.listTag, 12);
    ASSERT_EQ(sheet->skeletonShapes.shapes.size(), 3U);
    EXPECT_EQ(sheet->skeletonShapes.shapes[1].type, 17);
    EXPECT_EQ(sheet->skeletonShapes.shapes[1].values[8], 509.0F);
    EXPECT_STREQ(sheet->skeletonDosName, "C:\\SKELETON.TPT");
    EXPECT_EQ(sheet->utilization, 0.8125F);

    OldSheet* handle = nullptr;
    ASSERT_EQ(GetOldSheetHandle(path.c_str(), &handle), 0);
    char value[64] = "";
    EXPECT_EQ(GetOldSheetInfoByName(handle, "part_count", value), 0);
    EXPECT_STREQ(value, "0");
    FreeSheetHandle(handle);
  }
}

TEST(SheetEdits, PartThatCannotBeLoadedLeavesTheSheetAsItWas) {
  const TempFolder folder;
  const auto good = partFile(folder, skeletonPart());
  std::string refused = contentOf(good), oldest = refused;
  refused[0] = 53;
  oldest[0] = 2;
  const std::vector<std::string> bad = {folder.path("missing"),
                                        "",
                                        put(folder, "empty", ""),
                                        put(folder, "byte", "4"),
                                        put(folder, "cut", contentOf(good).substr(0, 60)),
                                        put(folder, "v53", refused),
                                        put(folder, "v2", oldest)};
  for (int version : {1, 6, 52, 152, 180}) {
    std::string file = soundFile(*someSheet(), std::max(version, 52)) + kAfterSheet;
    file[0] = static_cast<char>(version);
    for (const auto& whole : {file, file.substr(0, 300)})  // a sheet's own faults come later
      for (const auto& part : bad) {
        const auto path = put(folder, "sheet", whole);
        EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(path.c_str(), part.c_str()), -2) << version << part;
        EXPECT_TRUE(sameBytes(contentOf(path), whole)) << version << part;
      }
  }
  // The first look at the sheet comes before the part.
  EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(put(folder, "v53", refused).c_str(), bad[0].c_str()), -1);
  EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(bad[3].c_str(), bad[0].c_str()), 1);
  EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(bad[0].c_str(), good.c_str()), -2);
}

// ---- edits: work order numbers -------------------------------------------------------------------------

TEST(SheetEdits, NewWorkOrderNumberReplacesTheOldOneInEachPartOfThatBaseName) {
  struct Row {
    const char* name;
    const char* old;
    std::vector<std::size_t> hit;
  };
  const std::vector<Row> rows = {
      {"BRACKET", nullptr, {0, 1, 4}},
      {"BRACKET", "WO-A", {0}},
      {"BRACKET", "WO-B", {1}},
      {"BRACKET", "", {4}},
      {"BRACKET", "wo-a", {}},
      {"BRACKET", "WO-", {}},
      {"BRACKET", "WO-AB", {}},
      {"BRACKET.TPT", nullptr, {}},
      {"bracket", nullptr, {2}},
      {"Bracket", nullptr, {}},
      {"PLATE", "WO-A", {3}},
      {"PLATE", "WO-B", {}},
      {"LID", nullptr, {5}},
      {"BRACKE", nullptr, {}},
      {"C:\\PARTS\\BRACKET", nullptr, {}},
      {"one", nullptr, {}},
      {"", nullptr, {}},
  };
  const TempFolder folder;
  for (int version : savedVersions()) {
    const auto file = soundFile(*someSheet(), version);
    const auto untouched = resaved(folder, file, version);
    for (const Row& row : rows)
      for (std::size_t turn = 0; turn < 4; ++turn) {
        if (version < 162 && turn != static_cast<std::size_t>(version) % 4) continue;
        const std::string fresh = std::vector<const char*>{"WO-NEW-9", "W", "", "WO-A"}[turn];
        bool rewritten = !row.hit.empty();
        auto expected = untouched;
        if (version >= 162) {
          for (std::size_t i : row.hit)
            expected.replace(placeOf(untouched, storedText(someParts()[i].number, byteAfterNumber(i))),
                             fresh.size() + 1, fresh + std::string(1, '\0'));
        } else {  // every number that was loaded is empty
          const std::string name = row.name;
          rewritten = (row.old == nullptr || *row.old == '\0') &&
                      (name == "BRACKET" || name == "bracket" || name == "PLATE" || name == "LID");
        }
        const auto path = put(folder, "sheet", file + kAfterSheet);
        EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), row.name, row.old, fresh.c_str()), 0);
        EXPECT_TRUE(sameBytes(contentOf(path), rewritten ? expected : file + kAfterSheet))
            << version << " " << row.name << " " << (row.old == nullptr ? "any" : row.old) << " to " << fresh;
      }
  }
}

// A sheet of one part at version 162.
std::string onePart(const TempFolder& folder, const std::string& dosName, const std::string& number) {
  auto sheet = someSheet();
  sheet->partList.parts.resize(1);
  setText(sheet->partList.parts[0].partFullDosName, dosName, 0);
  setText(sheet->partList.parts[0].woNumber, number, 'b');
  return put(folder, "one_part", soundFile(*sheet, 162) + kAfterSheet);
}

TEST(SheetEdits, BaseNameOfAPartHasNoDriveFolderOrExtension) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"C:\\PARTS\\A.TPT", "A"},
      {"/parts/A.TPT", "A"},
      {"C:A.TPT", "A"},
      {"c:A", "A"},
      {"A", "A"},
      {"A.B.TPT", "A.B"},
      {"C:\\D.X\\A", "A"},
      {"A.", "A"},
      {"A..", "A."},
      {"C:/P\\A.T", "A"},
      {"C:\\P/A.T", "A"},
      {"\\\\HOST\\P\\A B.TPT", "A B"},
      {"7:A.TPT", "7:A"},
      {"AB:C.TPT", "AB:C"},
      {"C:\\D:A.TPT", "D:A"},
      {" A .TPT", " A "},
      {"C:\\P\\", ""},
      {".TPT", ""},
      {"", ""},
      {"C:", ""},
      {"C:\\" + std::string(249, 'L') + ".TPT", std::string(249, 'L')}};
  const TempFolder folder;
  for (const auto& [dosName, base] : rows) {
    auto path = onePart(folder, dosName, "OLD");
    EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), base.c_str(), "OLD", "NEW"), 0);
    EXPECT_STREQ(loadedFrom(path)->partList.parts[0].woNumber, "NEW") << dosName;
    if (dosName == base) continue;
    path = onePart(folder, dosName, "OLD");
    const auto file = contentOf(path);
    EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), dosName.c_str(), "OLD", "NEW"), 0);
    EXPECT_TRUE(sameBytes(contentOf(path), file)) << dosName;
  }
  // No name that a file holds ends the process, not even one that fills its field.
  const auto path = onePart(folder, std::string(256, 'A'), "OLD");
  EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), "A", nullptr, "NEW"), 0);
  EXPECT_STREQ(loadedFrom(path)->partList.parts[0].partFullDosName, std::string(256, 'A').c_str());
}

TEST(SheetEdits, WorkOrderNumberThatFillsItsFieldIsComparedCompletely) {
  const TempFolder folder;
  const std::string full(256, 'W');
  for (std::size_t length : {1U, 255U, 256U, 257U}) {
    const auto path = onePart(folder, "A.TPT", full);
    const auto file = contentOf(path);
    EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), "A", std::string(length, 'W').c_str(), "N"), 0);
    if (length != 256) {
      EXPECT_TRUE(sameBytes(contentOf(path), file)) << length;
      continue;
    }
    auto expected = resaved(folder, file, 162);
    expected.replace(placeOf(expected, full), 2, std::string("N\0", 2));
    EXPECT_TRUE(sameBytes(contentOf(path), expected));
  }
}

TEST(SheetEdits, WorkOrderNumberThatDoesNotFitEndsTheProcessBeforeTheFileIsOpened) {
  const TempFolder folder;
  const auto path = onePart(folder, "A.TPT", "OLD");
  const auto file = contentOf(path);
  for (std::size_t length : {256U, 1000U}) {
    const std::string number(length, 'N');
    EXPECT_DEATH(UpdateSheetPartWONumber(path.c_str(), "A", nullptr, number.c_str()), "") << length;
    // Where no part takes it, its length is never checked.
    EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), "B", nullptr, number.c_str()), 0);
    EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), "A", "OTHER", number.c_str()), 0);
    EXPECT_TRUE(sameBytes(contentOf(path), file));
  }
  EXPECT_EQ(UpdateSheetPartWONumber(path.c_str(), "A", nullptr, std::string(255, 'N').c_str()), 0);
  EXPECT_STREQ(loadedFrom(path)->partList.parts[0].woNumber, std::string(255, 'N').c_str());
}

TEST(SheetEdits, OnlyTheOldWorkOrderNumberMayBeNull) {
  const TempFolder folder;
  const auto path = onePart(folder, "A.TPT", "OLD");
  const auto file = contentOf(path);
  EXPECT_EQ(UpdateSheetPartWONumber(nullptr, "A", nullptr, "NEW"), -2);
  for (const auto& any :
       {path, folder.path("missing"), put(folder, "byte", "4"), put(folder, "v53", std::string("5\0", 2))}) {
    EXPECT_EQ(UpdateSheetPartWONumber(any.c_str(), nullptr, nullptr, "NEW"), -2);
    EXPECT_EQ(UpdateSheetPartWONumber(any.c_str(), "A", nullptr, nullptr), -2);
    EXPECT_EQ(UpdateSheetPartWONumber(any.c_str(), "A", "OLD", nullptr), -2);
  }
  EXPECT_TRUE(sameBytes(contentOf(path), file));
}

// ---- queries -------------------------------------------------------------------------------------------

// All outputs of the five, each with a value that no sheet of these tests holds.
struct Answers {
  std::uint32_t clampWord = 0xDDDDDDDD, clampCount = 0xDDDDDDDD, sequence = 0xDDDDDDDD;
  float values[3] = {-1, -2, -3}, spacing = -4, utilization = -5;
  std::array<float, 10> positions;  // two more than are copied out
  std::array<char, 300> text3, text5;
  std::array<std::int32_t, 603> flags;  // the same
  Answers() {
    positions.fill(-6);
    text3.fill('?');
    text5.fill('?');
    flags.fill(-7);
  }
  bool operator==(const Answers&) const = default;

  std::int64_t clamps(const std::string& path) {
    return GetOldClampInfo(path.c_str(), &clampWord, &values[0], &values[1], &values[2], positions.data(), &clampCount,
                           &spacing);
  }
  std::int64_t texts(const std::string& path) {
    return GetOldVLMQMaterialName(path.c_str(), text3.data(), text5.data());
  }
  std::int64_t util(const std::string& path) { return GetOldSkeletonUtil(path.c_str(), &utilization); }
  std::int64_t driverFlags(const std::string& path) { return GetSheetDriverFlags(path.c_str(), flags.data()); }
  std::int64_t sequenceSize(const std::string& path) { return GetSheetSequenceListSize(path.c_str(), &sequence); }
};
using Ask = std::int64_t (Answers::*)(const std::string&);
const std::vector<Ask> kFirstThree = {&Answers::clamps, &Answers::texts, &Answers::util};
const std::vector<Ask> kAll = {&Answers::clamps, &Answers::texts, &Answers::util, &Answers::driverFlags,
                               &Answers::sequenceSize};

std::array<std::int32_t, 603> flagsOf(const std::int32_t* params) {
  std::array<std::int32_t, 603> all;
  all.fill(-7);
  std::copy(params, params + 601, all.begin());
  return all;
}
// What is left of a text and its NUL put over the earlier content of the outputs.
std::array<char, 300> textOf(const std::string& text) {
  std::array<char, 300> all;
  all.fill('?');
  std::memcpy(all.data(), text.c_str(), text.size() + 1);
  return all;
}

TEST(SmallSheetQueries, EachQueryAcceptsTheVersionsOfItsListOrRange) {
  const TempFolder folder;
  const Answers fresh;
  const std::int32_t zeros[601] = {};
  const auto noFlags = flagsOf(zeros);
  Answers answers;
  for (int version = 0; version <= 0xFFFF; ++version) {
    const auto path = folder.overwrite("small", Bytes().u16(static_cast<std::uint16_t>(version)).i32(0));
    const bool listed = isKnown(version) && version >= 54 && version <= kLastVersion;
    for (Ask ask : kFirstThree) ASSERT_EQ((answers.*ask)(path), listed ? 0 : -1) << version;
    const bool wide = (version >= 52 && version <= kLastVersion) || (version >= 500 && version <= 32767);
    ASSERT_EQ(answers.sequenceSize(path), wide ? 1 : -1) << version;
    ASSERT_TRUE(answers == fresh) << version;
    ASSERT_EQ(answers.driverFlags(path), wide ? 1 : -1) << version;
    ASSERT_TRUE(answers.flags == (wide ? noFlags : fresh.flags)) << version;
    answers.flags = fresh.flags;
  }
}

TEST(SmallSheetQueries, FilesWithoutAVersionWordReturnOneAndFlagsOfZero) {
  const TempFolder folder;
  const Answers fresh;
  const std::int32_t zeros[601] = {};
  std::uint32_t left = 9, count = 9;
  float figure[4] = {9, 9, 9, 9}, positions[8] = {9};
  char text[2][300] = {"x", "x"};
  std::int32_t flags[601] = {9};
  EXPECT_EQ(GetOldClampInfo(nullptr, &left, &figure[0], &figure[1], &figure[2], positions, &count, &figure[3]), -2);
  EXPECT_EQ(GetOldVLMQMaterialName(nullptr, text[0], text[1]), -2);
  EXPECT_EQ(GetOldSkeletonUtil(nullptr, &figure[0]), -2);
  EXPECT_EQ(GetSheetDriverFlags(nullptr, flags), -2);
  EXPECT_EQ(GetSheetSequenceListSize(nullptr, &count), -2);
  EXPECT_TRUE(left == 9 && count == 9 && figure[0] == 9 && figure[3] == 9 && positions[0] == 9 && flags[0] == 9);
  EXPECT_STREQ(text[1], "x");
  for (const auto& missing : {folder.path("missing"), std::string()})
    for (Ask ask : kAll) {
      Answers answers;
      EXPECT_EQ((answers.*ask)(missing), -2);
      EXPECT_TRUE(answers == fresh);
    }
  for (const auto& path : {put(folder, "empty", ""), put(folder, "byte", "4")})
    for (Ask ask : kAll) {
      Answers answers;
      EXPECT_EQ((answers.*ask)(path), 1);
      if (ask == &Answers::driverFlags) {
        EXPECT_TRUE(answers.flags == flagsOf(zeros));
        answers.flags = fresh.flags;
      }
      EXPECT_TRUE(answers == fresh);
    }
}

// What the five return for someSheet(), `known` being whether the first three accept the version.
void checkAnswers(const std::string& path, int version, bool known, const OldSheet& sheet) {
  const auto file = contentOf(path);
  Answers expected, answers;
  if (known) {
    expected.clampWord = 0x80000001U;
    expected.clampCount = 4;
    expected.spacing = 6.25F;
    expected.positions = {70.0F, 71.0F, 72.0F, 22.0F, 27.5F, 33.0F, 38.5F, 44.0F, -6, -6};
    expected.text3 = textOf(version >= 111 ? "PART TEXT 2" : "");
    expected.text5 = textOf(version >= 111 ? "PART TEXT 4" : "");
    expected.utilization = version >= 102 ? 0.8125F : 0.0F;
  }
  expected.flags = flagsOf(sheet.paramTable.intParams);
  expected.sequence = 3;
  for (Ask ask : kFirstThree) EXPECT_EQ((answers.*ask)(path), known ? 0 : -1) << version;
  EXPECT_EQ(answers.driverFlags(path), 0) << version;
  EXPECT_EQ(answers.sequenceSize(path), 0) << version;
  if (known) {
    EXPECT_EQ(answers.values[0], 2.25F);
    EXPECT_EQ(answers.values[1], -3.5F);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(answers.values[2]), 0x7FC01234U);
    std::copy(answers.values, answers.values + 3, expected.values);
    expected.values[2] = answers.values[2] = 0;  // it equals nothing
  }
  EXPECT_EQ(answers.clampWord, expected.clampWord) << version;
  EXPECT_EQ(answers.clampCount, expected.clampCount) << version;
  EXPECT_EQ(answers.positions, expected.positions) << version;
  EXPECT_EQ(answers.utilization, expected.utilization) << version;
  EXPECT_STREQ(answers.text3.data(), expected.text3.data()) << version;
  EXPECT_EQ(answers.sequence, expected.sequence) << version;
  EXPECT_TRUE(answers.flags == expected.flags) << version;
  EXPECT_TRUE(answers == expected) << version;
  EXPECT_TRUE(sameBytes(contentOf(path), file)) << "a question changed the file";
}

TEST(SmallSheetQueries, EveryAcceptedVersionReturnsItsValues) {
  const TempFolder folder;
  const auto sheet = someSheet();
  for (int version = 52; version <= kLastVersion; ++version) {
    auto path = put(folder, "sheet", soundFile(*sheet, version));
    checkAnswers(path, version, version >= 54 && isKnown(version), *sheet);
  }
  auto newest = soundFile(*sheet, 180);
  for (int version : {500, 501, 502, 1000, 32767}) {
    newest.replace(0, 2, word(static_cast<std::uint32_t>(version)), 0, 2);
    checkAnswers(put(folder, "sheet", newest), version, false, *sheet);
  }
}

TEST(SmallSheetQueries, ClampsAreThoseOfTheSheetButTheirPositionsThoseOfTheMachine) {
  const TempFolder folder;
  for (int own = 0; own <= 8; ++own)
    for (int machines : {-1, 0, 1, 8}) {
      auto sheet = someSheet();
      sheet->clampInfo.clampCount = own == 0 ? -5 : own;
      sheet->machine.clampInfo.clampCount = machines;
      for (int i = 0; i < 8; ++i) sheet->machine.clampInfo.clampPositions[i] = 70.0F + static_cast<float>(i);
      const auto path = put(folder, "sheet", soundFile(*sheet, 180));
      Answers answers;
      EXPECT_EQ(answers.clamps(path), 0);
      EXPECT_EQ(answers.clampCount, static_cast<std::uint32_t>(sheet->clampInfo.clampCount));
      for (int i = 0; i < 10; ++i)
        EXPECT_EQ(answers.positions[static_cast<std::size_t>(i)], i >= 8         ? -6.0F
                                                                  : i < machines ? 70.0F + static_cast<float>(i)
                                                                                 : 5.5F * static_cast<float>(i + 1))
            << own << " " << machines << " " << i;
    }
}

TEST(SmallSheetQueries, TextsAreCopiedUpToTheirNulOrTheirWidth) {
  const TempFolder folder;
  for (std::int32_t width : {1, 20, 255, 256}) {
    const auto stored = static_cast<std::size_t>(width);
    for (std::size_t length : {0U, 1U, 19U, 20U, 255U, 256U}) {
      auto sheet = someSheet();
      sheet->textWidth = width;
      setText(sheet->partTexts[2], std::string(length, 'm'));
      setText(sheet->partTexts[4], std::string(length, 'n'));
      const auto path = put(folder, "sheet", soundFile(*sheet, 180));
      Answers answers;
      EXPECT_EQ(answers.texts(path), 0);
      EXPECT_TRUE(answers.text3 == textOf(std::string(std::min(length, stored), 'm'))) << width << " " << length;
      EXPECT_TRUE(answers.text5 == textOf(std::string(std::min(length, stored), 'n'))) << width << " " << length;
    }
  }
}

TEST(SmallSheetQueries, SequenceIsTheLengthOfTheWorkList) {
  const TempFolder folder;
  for (std::size_t count : {0U, 1U, 2U, 300U}) {
    auto sheet = someSheet();
    sheet->workList.resize(count);
    Answers answers;
    EXPECT_EQ(answers.sequenceSize(put(folder, "sheet", soundFile(*sheet, 180))), 0);
    EXPECT_EQ(answers.sequence, count);
  }
}

TEST(SmallSheetQueries, FlagsOfACutTableAreCopiedOutUpToTheCut) {
  const TempFolder folder;
  const auto numbers = storedNumbers();
  const auto path = put(folder, "sheet", soundFile(*someSheet(), 162));
  const auto first = placeOf(contentOf(path), word(static_cast<std::uint32_t>(flagValue(55))));
  for (std::size_t whole = numbers.size() + 1; whole-- > 0;)
    for (std::size_t part : {3U, 0U}) {
      if (whole == numbers.size() && part != 0) continue;
      std::filesystem::resize_file(path, first + 4 * whole + part);
      std::int32_t params[601] = {};
      for (std::size_t i = 0; i < whole; ++i) params[numbers[i]] = flagValue(numbers[i]);
      Answers answers;
      EXPECT_EQ(answers.driverFlags(path), 1);
      EXPECT_TRUE(answers.flags == flagsOf(params)) << whole << " numbers";
    }
}

TEST(SmallSheetQueries, OnlyTheLastTwoReportABodyThatCannotBeRead) {
  const TempFolder folder;
  const Answers fresh;
  for (int version : {54, 112, 140, 162}) {
    const auto path = put(folder, "sheet", soundFile(*someSheet(), version));
    auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
    int failed = 0;
    while (size > 2) {
      auto sheet = std::make_unique<OldSheet>();
      const auto status = LoadOldSheet(path.c_str(), sheet.get());
      failed += status == 0 ? 0 : 1;
      Answers answers;
      for (Ask ask : kFirstThree) ASSERT_EQ((answers.*ask)(path), 0) << version << " " << size;
      ASSERT_EQ(answers.sequenceSize(path), status) << version << " " << size;
      if (status == 0) {
        ASSERT_EQ(answers.sequence, 3U) << size;
        ASSERT_EQ(answers.clampCount, 4U) << size;
        ASSERT_STREQ(answers.text3.data(), sheet->partTexts[2]) << size;
        ASSERT_EQ(answers.utilization, sheet->utilization) << size;
      } else {
        ASSERT_TRUE(answers == fresh) << version << " " << size;
      }
      ASSERT_EQ(answers.driverFlags(path), status) << version << " " << size;
      ASSERT_TRUE(answers.flags == flagsOf(sheet->paramTable.intParams)) << version << " " << size;
      size -= std::min<std::size_t>(size, 331);
      std::filesystem::resize_file(path, size);
    }
    EXPECT_GT(failed, 20) << version;
  }
}

TEST(SmallSheetQueries, TableWithoutALayoutIsABodyThatCannotBeRead) {
  const TempFolder folder;
  const Answers fresh;
  const std::int32_t zeros[601] = {};
  auto file = soundFile(*someSheet(), 180);
  const auto table = placeOf(file, word(static_cast<std::uint32_t>(flagValue(55)))) - 256 - 2;
  for (std::uint32_t tableVersion : {0U, 53U, 59U, 503U, 0x8034U}) {
    file.replace(table, 2, word(tableVersion), 0, 2);
    const auto path = put(folder, "sheet", file);
    Answers answers;
    for (Ask ask : kFirstThree) EXPECT_EQ((answers.*ask)(path), 0);
    EXPECT_EQ(answers.sequenceSize(path), 1);
    EXPECT_TRUE(answers == fresh);
    EXPECT_EQ(answers.driverFlags(path), 1);
    EXPECT_TRUE(answers.flags == flagsOf(zeros));
  }
}

}  // namespace
