// The stored width of the names in a part list: when it is bound, and what a list with a negative count does.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
const std::vector<std::int32_t> kAnyWidth = {256, 1, 0, -1, -256, 255, 257, 260, 261, 65536, kMin, kMin + 1, kMax};
const std::vector<std::int32_t> kNegativeCounts = {-1, -2, -1000, kMin, kMin + 1};

SheetPartList usedList() {
  SheetPartList list;
  list.parts.resize(3);
  std::strcpy(list.parts[1].partName, "KEPT");
  list.nameWidth = 17;
  return list;
}

int readList(const Bytes& bytes, int version, SheetPartList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](auto& from) { return ReadSheetPartList(from, version, list); }, consumed);
}

// One part with names of the given width.
Bytes onePart(int version, std::size_t width, const std::string& name) {
  Maker maker;
  TorvPart part;
  storedPart(maker, version, StoredPartForm{true, true, 0}, part);
  return Bytes().text(width, name).text(width, "C:\\" + name).add(maker.bytes);
}

// ---- the list ------------------------------------------------------------------------------------

TEST(PartListWidth, NegativeCountKeepsAnyWidthAndEmptiesTheList) {
  for (const int version : {52, 60, 111, 162, 180})
    for (const std::int32_t count : kNegativeCounts)
      for (const std::int32_t width : kAnyWidth)
        for (const bool used : {false, true}) {
          SCOPED_TRACE(testing::Message() << "count " << count << " width " << width << " version " << version);
          SheetPartList list = used ? usedList() : SheetPartList();
          std::size_t consumed = 0;
          EXPECT_EQ(readList(Bytes().i32(count).i32(width).fill(2000, 0x41), version, list, &consumed), 0);
          EXPECT_EQ(consumed, 8U);
          EXPECT_EQ(list.nameWidth, width);
          EXPECT_TRUE(list.parts.empty());
          // A save stores a count of 0, which has no width.
          EXPECT_EQ(written([&](auto& to) { return WriteSheetPartList(to, version, list); }), Bytes().i32(0));
        }
}

TEST(PartListWidth, FileThatEndsBeforeTheWidthFailsAndLeavesTheList) {
  std::vector<std::int32_t> counts = kNegativeCounts;
  counts.insert(counts.end(), {1, 2});
  for (const std::int32_t count : counts)
    for (std::size_t cut = 0; cut < 8; ++cut) {
      SheetPartList list = usedList();
      EXPECT_EQ(readList(Bytes().i32(count).i32(9).cut(cut), 180, list), 1) << cut;
      EXPECT_EQ(list.nameWidth, 17) << cut;
      EXPECT_EQ(list.parts.size(), 3U) << cut;
    }
}

TEST(PartListWidth, ACountOfZeroStoresNoWidth) {
  for (const std::int32_t next : kAnyWidth) {
    SheetPartList list = usedList();
    std::size_t consumed = 0;
    EXPECT_EQ(readList(Bytes().i32(0).i32(next), 180, list, &consumed), 0) << next;
    EXPECT_EQ(consumed, 4U) << next;
    EXPECT_EQ(list.nameWidth, 17) << next;
    ASSERT_EQ(list.parts.size(), 3U) << next;
    EXPECT_STREQ(list.parts[1].partName, "KEPT");
  }
}

TEST(PartListWidth, APositiveCountRefusesAWidthAbove256BeforeTheListIsEmptied) {
  for (const std::int32_t count : {1, 2, kMax})
    for (const std::int32_t width : {257, 258, 260, 1000, 65536, kMax}) {
      SheetPartList list = usedList();
      EXPECT_EQ(readList(Bytes().i32(count).i32(width).fill(300000, 0), 180, list), 1) << width;
      EXPECT_EQ(list.nameWidth, width);
      ASSERT_EQ(list.parts.size(), 3U) << width;
      EXPECT_STREQ(list.parts[1].partName, "KEPT");
    }
}

TEST(PartListWidth, APositiveCountFailsForAWidthBelow1AfterTheListIsEmptied) {
  for (const std::int32_t count : {1, 2, kMax})
    for (const std::int32_t width : {0, -1, -256, kMin}) {
      SheetPartList list = usedList();
      EXPECT_EQ(readList(Bytes().i32(count).i32(width).fill(300000, 0), 180, list), 1) << width;
      EXPECT_EQ(list.nameWidth, width);
      EXPECT_TRUE(list.parts.empty()) << width;
    }
}

TEST(PartListWidth, PositiveCountAcceptsEachWidthFrom1To256) {
  for (std::int32_t width = 1; width <= 256; ++width) {
    const auto n = static_cast<std::size_t>(width);
    const std::string name = "PLATE";
    const Bytes bytes = Bytes().i32(1).i32(width).add(onePart(162, n, name));
    SheetPartList list = usedList();
    std::size_t consumed = 0;
    ASSERT_EQ(readList(Bytes(bytes).fill(5, 0xEE), 162, list, &consumed), 0) << width;
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(list.nameWidth, width);
    ASSERT_EQ(list.parts.size(), 1U);
    EXPECT_EQ(std::string(list.parts[0].partName), name.substr(0, n));
    EXPECT_EQ(std::string(list.parts[0].partFullDosName), ("C:\\" + name).substr(0, n));
  }
}

// ---- inside a sheet file -------------------------------------------------------------------------

// Stored bytes before the part list: the version word, the label, four numbers and the skeleton.
std::size_t partListAt(int version) { return 2 + 4 + 256 + 16 + (version >= 100 ? 4 + 260 + 12 : 0); }

// A sheet without parts that has something to recognise after the part list.
Bytes sheetWithoutParts(int version) {
  const auto sheet = std::make_unique<OldSheet>();
  sheet->paramTable.version = static_cast<std::uint16_t>(tableVersionOf(version));
  sheet->paramTable.nameLength = 1;
  sheet->paramTable.intParams[60] = 606;
  sheet->machine.textWidth = 256;
  sheet->leadWords[3] = 333;
  sheet->workList.resize(2);
  sheet->workList[1].workWord1 = 1111;
  sheet->optionWord = 77;
  return readableSheetFile(*sheet, version);
}

Bytes withPartList(int version, const Bytes& list) {
  const Bytes file = sheetWithoutParts(version);
  const std::size_t at = partListAt(version);
  return file.cut(at).add(list).add(Bytes::of(file.span().subspan(at + 4)));
}

std::unique_ptr<OldSheet> usedSheet() {
  auto sheet = std::make_unique<OldSheet>();
  sheet->partList = usedList();
  return sheet;
}

const std::vector<int> kSheetVersions = {52, 54, 59, 60, 61, 80, 99, 100, 111, 152, 154, 161, 162, 180};

TEST(PartListWidthInSheets, TheOtherItemsFollowANegativeCountAndItsWidth) {
  const TempFolder folder;
  for (const int version : kSheetVersions)
    for (const std::int32_t count : kNegativeCounts)
      for (const std::int32_t width : kAnyWidth) {
        SCOPED_TRACE(testing::Message() << "count " << count << " width " << width << " version " << version);
        const std::string path =
            folder.overwrite(std::to_string(version), withPartList(version, Bytes().i32(count).i32(width)));
        const auto sheet = usedSheet();
        ASSERT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 0);
        EXPECT_TRUE(sheet->partList.parts.empty());
        EXPECT_EQ(sheet->partList.nameWidth, width);
        ASSERT_EQ(sheet->workList.size(), 2U);
        EXPECT_EQ(sheet->workList[1].workWord1, 1111U);
        EXPECT_EQ(sheet->paramTable.intParams[60], 606);
        EXPECT_EQ(sheet->leadWords[3], 333U);
        EXPECT_EQ(sheet->optionWord, 77U);
      }
}

TEST(PartListWidthInSheets, AQueryReadsPastANegativeCount) {
  const TempFolder folder;
  for (const int version : {54, 60, 100, 180})
    for (const std::int32_t width : kAnyWidth) {
      const std::string path = folder.write("sheet", withPartList(version, Bytes().i32(-1).i32(width)));
      std::uint32_t count = 0;
      EXPECT_EQ(GetSheetSequenceListSize(path.c_str(), &count), 0) << width << " version " << version;
      EXPECT_EQ(count, 2U);
      OldSheet* handle = nullptr;
      ASSERT_EQ(GetOldSheetHandle(path.c_str(), &handle), 0) << width << " version " << version;
      char value[64] = "";
      EXPECT_EQ(GetOldSheetInfoByName(handle, "part_count", value), 0);
      EXPECT_STREQ(value, "0");
      FreeSheetHandle(handle);
    }
}

TEST(PartListWidthInSheets, ACountOfZeroStoresNoWidth) {
  const TempFolder folder;
  for (const int version : kSheetVersions) {
    const auto sheet = usedSheet();
    ASSERT_EQ(LoadOldSheet(folder.write("sheet", sheetWithoutParts(version)).c_str(), sheet.get()), 0) << version;
    EXPECT_EQ(sheet->partList.parts.size(), 3U);
    EXPECT_EQ(sheet->partList.nameWidth, 17);
    EXPECT_EQ(sheet->workList.size(), 2U);
    EXPECT_EQ(sheet->optionWord, 77U);
  }
}

TEST(PartListWidthInSheets, AWidthOutsideItsRangeEndsALoadWithParts) {
  const TempFolder folder;
  for (const int version : kSheetVersions)
    for (const std::int32_t width : {257, 300, kMax, 0, -1, kMin}) {
      SCOPED_TRACE(testing::Message() << "width " << width << " version " << version);
      const Bytes list = Bytes().i32(1).i32(width).add(onePart(version, 256, "PART"));
      const std::string path = folder.write("sheet", withPartList(version, list));
      const auto sheet = usedSheet();
      EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 1);
      EXPECT_EQ(sheet->partList.nameWidth, width);
      EXPECT_EQ(sheet->partList.parts.size(), width > 256 ? 3U : 0U);
      EXPECT_TRUE(sheet->workList.empty());
      EXPECT_EQ(sheet->paramTable.version, 0);
    }
}

TEST(PartListWidthInSheets, WidthOutsideItsRangeDoesNotPreventASaveWithoutParts) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const std::int32_t width : kAnyWidth) {
    folder.write("sheet", withPartList(180, Bytes().i32(-1).i32(width)));
    const auto sheet = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 0) << width;
    ASSERT_EQ(SaveOldSheet(path.c_str(), sheet.get(), 180), 0) << width;
    // A load changes some values of the machine; what is before the table is as it was made.
    const std::size_t table = 2 + 4 + 256 + 16 + 4 + 260 + 12 + 4 + 12 + 8 + 32 + 4 + 4;
    const Bytes saved = TempFolder::read(path), expected = sheetWithoutParts(180);
    ASSERT_EQ(saved.size(), expected.size()) << width;
    EXPECT_TRUE(Bytes::of(saved.span().first(table)) == Bytes::of(expected.span().first(table))) << width;
  }
}

}  // namespace
