// Warnings about files whose structure is sound.
#include "torvio/archive/warnings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/parts.h"
#include "torvio/values/record_bytes.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using archive::Warning;

const Warning* find(const std::vector<Warning>& warnings, const std::string& code, const std::string& field = "") {
  const auto found = std::find_if(warnings.begin(), warnings.end(), [&](const Warning& warning) {
    return warning.code == code && (field.empty() || warning.field == field);
  });
  return found == warnings.end() ? nullptr : &*found;
}

Bytes bytesOf(OldSheet& sheet, int version) {
  return Bytes().i16(version).add(written([&](auto& to) { return WriteOldSheet(to, version, sheet); }));
}

// Has nothing to warn of.
std::unique_ptr<OldSheet> plainSheet(int stations = 3) {
  auto sheet = std::make_unique<OldSheet>();
  sheet->version = 180;
  sheet->machine.textWidth = 256;
  sheet->paramTable.version = 180;
  sheet->paramTable.nameLength = 6;
  auto& list = sheet->machine.stationsA;
  list.stations.resize(static_cast<std::size_t>(stations));
  list.tools.resize(list.stations.size());
  for (ToolStation& station : list.stations) station.toolCount = 1;
  for (OldTool& tool : list.tools) tool.shapeCode = 1;
  return sheet;
}

void addItem(OldSheet& sheet, int number) {
  TorvPart& part = sheet.partList.parts.emplace_back();
  part.patterns.resize(1);
  part.patterns[0].items.resize(2);
  part.patterns[0].items[1].toolNumber = number;
}
void setSlot(ProcessSlots& slots, std::size_t at, int first, int second, int choice, int use = 1, int active = 1) {
  slots[at].toolUse = static_cast<std::uint16_t>(use);
  slots[at].toolActive = static_cast<std::uint8_t>(active);
  slots[at].toolChoice = static_cast<std::uint8_t>(choice);
  slots[at].firstToolNumber = static_cast<std::uint16_t>(first);
  slots[at].secondToolNumber = static_cast<std::uint16_t>(second);
}
// Slots and items of the sheet are stored with its shapes.
void addShape(OldSheet& sheet) { sheet.shapes.shapes.resize(1); }

std::int64_t info(const std::string& path) {
  // Each text is at most as long as its field.
  static std::vector<std::vector<char>> texts(9, std::vector<char>(10'000));
  float sizes[3];
  double value = 0;
  std::vector<char> names(100'000), tools(100'000);
  std::int32_t lengths[2];
  return GetOldSheetInfo(path.c_str(), texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(),
                         texts[4].data(), texts[5].data(), texts[6].data(), texts[7].data(), texts[8].data(), &sizes[0],
                         &sizes[1], &sizes[2], &value, names.data(), 100'000, &lengths[0], tools.data(), 100'000,
                         &lengths[1]);
}

TEST(ToolNumberWarnings, AreGivenExactlyForSheetsThatEndTheProcessOfAQuery) {
  const struct {
    const char* what;
    std::function<void(OldSheet&)> fill;
    const char* field;  // empty if the query returns
  } cases[] = {
      {"nothing", [](OldSheet&) {}, ""},
      {"last station", [](OldSheet& s) { addItem(s, 3); }, ""},
      {"one past", [](OldSheet& s) { addItem(s, 4); }, "partList.parts[0].patterns[0].items[1].toolNumber"},
      {"two past", [](OldSheet& s) { addItem(s, 5); }, ""},
      {"negative", [](OldSheet& s) { addItem(s, -4); }, ""},
      {"second part",
       [](OldSheet& s) {
         addItem(s, 1);
         addItem(s, 4);
       },
       "partList.parts[1].patterns[0].items[1].toolNumber"},
      {"part slot",
       [](OldSheet& s) {
         addItem(s, 1);
         s.partList.parts[0].processSlotCount = 2;
         setSlot(s.partList.parts[0].processSlots, 1, 4, 1, 0);
       },
       "partList.parts[0].processSlots[1].firstToolNumber"},
      {"second number of a part slot",
       [](OldSheet& s) {
         addItem(s, 1);
         s.partList.parts[0].processSlotCount = 1;
         setSlot(s.partList.parts[0].processSlots, 0, 1, 4, 1);
       },
       "partList.parts[0].processSlots[0].secondToolNumber"},
      {"number that is not chosen",
       [](OldSheet& s) {
         addItem(s, 1);
         s.partList.parts[0].processSlotCount = 1;
         setSlot(s.partList.parts[0].processSlots, 0, 4, 1, 1);
       },
       ""},
      {"slot without use",
       [](OldSheet& s) {
         addItem(s, 1);
         s.partList.parts[0].processSlotCount = 1;
         setSlot(s.partList.parts[0].processSlots, 0, 4, 4, 0, 2);
       },
       ""},
      {"inactive slot",
       [](OldSheet& s) {
         addItem(s, 1);
         s.partList.parts[0].processSlotCount = 1;
         setSlot(s.partList.parts[0].processSlots, 0, 4, 4, 0, 1, 0);
       },
       ""},
      {"sheet slot",
       [](OldSheet& s) {
         addShape(s);
         s.processSlotCount = 1;
         setSlot(s.processSlots, 0, 4, 1, 0);
       },
       "processSlots[0].firstToolNumber"},
      {"item 27 of the sheet",
       [](OldSheet& s) {
         addShape(s);
         s.patternItems.resize(28);
         s.patternItems[27].toolNumber = 4;
       },
       ""},
      {"item 28 of the sheet",
       [](OldSheet& s) {
         addShape(s);
         s.patternItems.resize(29);
         s.patternItems[28].toolNumber = 4;
       },
       "patternItems[28].toolNumber"},
      {"no stations",
       [](OldSheet& s) {
         s.machine.stationsA = {};
         addItem(s, 1);
       },
       "partList.parts[0].patterns[0].items[1].toolNumber"},
      {"shorter second list",
       [](OldSheet& s) {
         s.machine.stationWord = 1;
         s.machine.stationsB = s.machine.stationsA;
         s.machine.stationsB.stations.resize(2);
         s.machine.stationsB.tools.resize(2);
         addItem(s, 3);
       },
       "partList.parts[0].patterns[0].items[1].toolNumber"},
      {"second list without its word",
       [](OldSheet& s) {
         s.machine.stationsB = s.machine.stationsA;
         s.machine.stationsB.stations.resize(2);
         s.machine.stationsB.tools.resize(2);
         addItem(s, 3);
       },
       ""},
  };
  for (const auto& one : cases) {
    auto sheet = plainSheet();
    one.fill(*sheet);
    const TempFolder folder;
    const Bytes bytes = bytesOf(*sheet, 180);
    const std::string path = folder.write("nest", bytes);
    const auto loaded = values::loadRecord<frame::FileKind::sheet>(bytes.span());
    ASSERT_EQ(loaded.status, 0) << one.what;
    const auto warnings = archive::warningsOf(*loaded.record);
    const Warning* const warning = find(warnings, "tool-ends-process");
    EXPECT_EQ(warning != nullptr ? warning->field : "", one.field) << one.what;
    if (warning == nullptr) {
      EXPECT_EQ(info(path), 0) << one.what;
    } else if (kStartsProcesses) {
      EXPECT_EXIT((void)info(path), endedByTheLibrary(), "") << one.what;
    }
  }
}

TEST(ToolNumberWarnings, NumbersFurtherPastTheLastStationAreIgnored) {
  auto sheet = plainSheet(1);
  addItem(*sheet, 3);
  addItem(*sheet, 4);
  addItem(*sheet, 5);
  const auto warnings = archive::warningsOf(*sheet);
  const Warning* const warning = find(warnings, "tool-past-stations");
  ASSERT_TRUE(warning);
  EXPECT_EQ(warning->field, "partList.parts[0].patterns[0].items[1].toolNumber");
  EXPECT_EQ(warning->text, "Tool number 3 is past the last of 1 station and is ignored; the same in 2 more places");
  EXPECT_FALSE(find(warnings, "tool-ends-process"));
}

// No query accepts version 53, so that none can end the process.
TEST(ToolNumberWarnings, QueriesRefuseTheVersionsThatTheyDoNotKnow) {
  auto sheet = plainSheet();
  addItem(*sheet, 4);
  sheet->version = 53;
  EXPECT_FALSE(find(archive::warningsOf(*sheet), "tool-ends-process"));
  EXPECT_TRUE(find(archive::warningsOf(*sheet), "tool-past-stations"));
}

TEST(ValueWarnings, APlainSheetHasNone) {
  auto sheet = plainSheet();
  addItem(*sheet, 2);
  EXPECT_EQ(archive::warningsOf(*sheet), std::vector<Warning>{});
  EXPECT_EQ(archive::warningsOf(TorvPart()), std::vector<Warning>{});
  EXPECT_EQ(archive::warningsOf(*std::make_unique<OldMachine>()), std::vector<Warning>{});
  EXPECT_EQ(archive::warningsOf(*std::make_unique<OldMaterial>()), std::vector<Warning>{});
}

TEST(ValueWarnings, InfiniteAndAbsurdSizesAreReported) {
  const float infinity = std::numeric_limits<float>::infinity(), none = std::numeric_limits<float>::quiet_NaN();
  auto sheet = plainSheet();
  sheet->width = infinity;
  sheet->height = -1;
  sheet->thickness = none;
  sheet->lateValue = -std::numeric_limits<double>::infinity();
  addItem(*sheet, 1);
  sheet->partList.parts[0].width = 2e6F;
  sheet->partList.parts[0].shapes.shapes.resize(3);
  sheet->partList.parts[0].shapes.shapes[2].values[4] = none;
  const auto warnings = archive::warningsOf(*sheet);
  const std::vector<Warning> expected = {
      {"not-finite", "width", "The value is infinite"},
      {"not-finite", "thickness", "The value is not a number"},
      {"not-finite", "partList.parts[0].shapes.shapes[2].values[4]", "The value is not a number"},
      {"absurd-size", "partList.parts[0].width", "The size is 2e+06"},
      {"not-finite", "lateValue", "The value is minus infinity"},
      {"absurd-size", "height", "The size is -1"},
  };
  EXPECT_EQ(warnings, expected);
}

TEST(ValueWarnings, SizesUpToAMillionAreAccepted) {
  TorvPart part;
  part.width = 1e6F;
  part.height = 0;
  EXPECT_EQ(archive::warningsOf(part), std::vector<Warning>{});
  part.width = 1.1e6F;
  EXPECT_TRUE(find(archive::warningsOf(part), "absurd-size", "width"));
}

TEST(ValueWarnings, TextsWithoutANulAreReportedOncePerField) {
  SheetPartList list;
  list.parts.resize(3);
  for (TorvPart& part : list.parts) std::memset(part.productName, 'x', sizeof part.productName);
  list.parts[1].partName[255] = 'x';  // after its NUL
  const auto warnings = archive::warningsOf(list);
  const std::vector<Warning> expected = {
      {"text-fills-field", "parts[0].productName",
       "The text fills its field of 21 bytes and has no NUL; the same in 2 more places"}};
  EXPECT_EQ(warnings, expected);
}

TEST(ValueWarnings, MembersThatFilesDoNotStoreAreIgnored) {
  auto sheet = plainSheet();
  std::memset(sheet->sheetName, 'x', sizeof sheet->sheetName);
  sheet->transform[1][1] = std::numeric_limits<float>::infinity();
  EXPECT_EQ(archive::warningsOf(*sheet), std::vector<Warning>{});
}

TEST(ValueWarnings, ElementsOfLazyArraysAreRead) {
  TorvPart part;
  part.processSlots[249].firstLength = std::numeric_limits<float>::infinity();
  EXPECT_TRUE(find(archive::warningsOf(part), "not-finite", "processSlots[249].firstLength"));
}

TEST(ValueWarnings, AreFewHoweverManyValuesAreWrong) {
  auto sheet = plainSheet();
  RandomRecords random(3);
  random.record(*sheet, 180);
  sheet->shapes.shapes.resize(100'000);
  for (Shape& shape : sheet->shapes.shapes) shape.x = std::numeric_limits<float>::infinity();
  const auto warnings = archive::warningsOf(*sheet);
  EXPECT_EQ(warnings.size(), archive::kMostWarnings);
  EXPECT_NE(warnings.back().text.find("that are left out"), std::string::npos);
}

TEST(InventoryWarnings, IndexOutsideTheFilesOfSpecialToolsEndsTheProcess) {
  OldToolInventory inventory;
  inventory.specialToolFiles.resize(1);
  inventory.tools.resize(2);
  inventory.tools[0].shapeCode = inventory.tools[1].shapeCode = 108;
  inventory.tools[0].specialToolIndex = 1;
  for (const int index : {0, 2, -1}) {
    inventory.tools[1].specialToolIndex = index;
    EXPECT_TRUE(find(archive::warningsOf(inventory), "index-ends-process", "tools[1].specialToolIndex")) << index;
  }
  inventory.tools[1].shapeCode = 1;
  EXPECT_EQ(archive::warningsOf(inventory), std::vector<Warning>{});
}

// ---- edits -------------------------------------------------------------------------------------------

// The file without what a save below version 152 stores too much.
Bytes loadable(OldSheet& sheet, int version) {
  sheet.machine.machineWord124 = version < 151 ? 0x5EED1234 : 0;
  sheet.machine.lateByteC = 0xA5;
  sheet.optionWord = 0x5EED1234;
  return readableSheetFile(sheet, version);
}

TEST(SaveTraces, EveryEditBelowVersion152IsFound) {
  const TempFolder folder;
  for (const int version :
       {52, 54, 60, 80, 90, 91, 92, 100, 101, 102, 110, 111, 112, 120, 121, 130, 140, 141, 150, 151}) {
    auto sheet = plainSheet();
    sheet->paramTable.version = static_cast<std::uint16_t>(tableVersionOf(version));
    sheet->utilization = 0.5F;
    sheet->workList.resize(2);
    sheet->textEntries.resize(1);
    addItem(*sheet, 1);
    const Bytes before = loadable(*sheet, version);
    const auto sound = explain::checkFile(before.span(), explain::FileKind::sheet);
    ASSERT_TRUE(sound.endsExactly()) << version;
    EXPECT_FALSE(archive::traceOfSave(before.span(), sound)) << version;

    const std::string path = folder.write("nest", before);
    const TempFolder parts;
    const std::string part = parts.write("part", storedPartFile(180));
    ASSERT_EQ(ReplaceSheetSknPatListWithPartPatList(path.c_str(), part.c_str()), 0) << version;
    const Bytes after = TempFolder::read(path);
    ASSERT_FALSE(after == before) << version;
    const auto report = explain::checkFile(after.span(), explain::FileKind::sheet);
    EXPECT_FALSE(report.endsExactly()) << version;
    const auto trace = archive::traceOfSave(after.span(), report);
    ASSERT_TRUE(trace) << version;
    EXPECT_EQ(trace->code, "saved-below-152");
    EXPECT_EQ(trace->text.find(version == 151 ? "1 surplus byte " : "37 surplus bytes "), 0U) << trace->text;
  }
}

TEST(SaveTraces, OtherDamageLeavesNone) {
  for (const int version : {112, 151}) {
    auto sheet = plainSheet();
    sheet->paramTable.version = static_cast<std::uint16_t>(version);
    const Bytes sound = loadable(*sheet, version);
    for (std::size_t size = 0; size < sound.size(); size += 997) {
      const Bytes cut = sound.cut(size);
      EXPECT_FALSE(archive::traceOfSave(cut.span(), explain::checkFile(cut.span(), explain::FileKind::sheet)))
          << version << ' ' << size;
    }
    const Bytes longer = Bytes(sound).zeros(40);
    EXPECT_FALSE(archive::traceOfSave(longer.span(), explain::checkFile(longer.span(), explain::FileKind::sheet)));
  }
  const Bytes cut = sheetFile(180).cut(9000);
  EXPECT_FALSE(archive::traceOfSave(cut.span(), explain::checkFile(cut.span(), explain::FileKind::sheet)));
}

TEST(EditWarnings, SheetsThatAnEditRuinsAreReported) {
  const struct {
    const char* field;
    std::function<void(OldSheet&)> change;
  } cases[] = {{"paramTable.version", [](OldSheet& s) { s.paramTable.version = 501; }},
               {"shapes.shapes[1].trailerValue",
                [](OldSheet& s) {
                  s.machine.shapesPresent = 1;
                  s.shapes.shapes.resize(3);
                  s.shapes.shapes[1].trailerValue = 7;
                }},
               {"machine.textWidth", [](OldSheet& s) { s.machine.textWidth = 100; }},
               {"machine.secondTextWidth", [](OldSheet& s) {
                  s.machine.secondTextPresent = 1;
                  s.machine.secondTextWidth = 40;
                }}};
  for (const auto& one : cases) {
    auto sheet = plainSheet();
    one.change(*sheet);
    EXPECT_TRUE(find(archive::warningsOf(*sheet), "edit-ruins-sheet", one.field)) << one.field;
  }
}

// A load reads the values, and the save of an edit stores none.
TEST(EditWarnings, TrailerValuesAreLostWhereTheWarningSaysSo) {
  for (const std::uint32_t value : {0U, 7U}) {
    auto sheet = plainSheet();
    sheet->shapes.shapes.resize(1);
    sheet->machine.machineWord82 = std::bit_cast<float>(0x5EED1234U);  // is stored before the values
    const Bytes saved = bytesOf(*sheet, 180), mark = Bytes().u32(0x5EED1234);
    const auto all = saved.span();
    const auto at = static_cast<std::size_t>(
        std::search(all.begin(), all.end(), mark.span().begin(), mark.span().end()) - all.begin());
    std::optional<std::size_t> flag;
    (void)explain::mapFile(all, explain::FileKind::sheet, [&](const explain::MapLine& line) {
      if (line.path == "machine.shapesPresent") flag = static_cast<std::size_t>(line.offset);
    });
    ASSERT_TRUE(flag && at < all.size());
    const Bytes file = Bytes::of(all.first(*flag))
                           .u8(1)
                           .add(Bytes::of(all.subspan(*flag + 1, at + 4 - *flag - 1)))
                           .u32(value)
                           .add(Bytes::of(all.subspan(at + 4)));
    const TempFolder folder;
    const std::string path = folder.write("nest", file);
    auto loaded = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), loaded.get()), 0);
    ASSERT_EQ(loaded->shapes.shapes[0].trailerValue, value);
    EXPECT_EQ(find(archive::warningsOf(*loaded), "edit-ruins-sheet") != nullptr, value != 0);
    ASSERT_EQ(ReplaceSheetMachineNcPath(path.c_str(), "N:\\NEW"), 0);
    loaded = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), loaded.get()), 0);
    EXPECT_STREQ(loaded->machine.ncPath, "N:\\NEW");
    EXPECT_EQ(loaded->shapes.shapes[0].trailerValue, 0U);
  }
}

TEST(EditWarnings, SheetThatEndsInItsOnlyBlockEndsTheProcessOfASave) {
  auto sheet = plainSheet();
  sheet->blocks.resize(1);
  EXPECT_TRUE(find(archive::warningsOf(*sheet), "save-ends-process", "blocks"));
}

}  // namespace
