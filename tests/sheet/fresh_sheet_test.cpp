// A sheet whose parameter table was never loaded: how a save stores the table and the machine.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

// The stored table of a file of that version, from the record's own values.
Bytes tableBytes(int fileVersion, const ParamTable& table, std::int32_t nameLength) {
  return heldParamBytes({tableVersionOf(fileVersion), nameLength, true}, table);
}

// A saved sheet that holds nothing but that table and a machine of that text width.
Bytes sheetBytes(int version, const Bytes& table, std::int32_t machineWidth = 256) {
  return Bytes().u16(static_cast<std::uint16_t>(version)).add(freshSheetBody(version, table, machineWidth));
}

// Every field of the table with a value of its own, also the numbers that no file stores, and with bytes after each
// NUL. The version stays 0.
void fillTable(ParamTable& table) {
  std::memset(table.title, 'r', sizeof table.title);
  std::strcpy(table.title, "title");
  for (int n = 0; n < ParamTable::kNumbers; ++n) {
    table.intParams[n] = n % 2 == 0 ? 100000 + n : -100000 - n;
    table.realParams[n] = 0.1 * n - 7;
    std::memset(table.textParams[n], 'A' + n % 26, sizeof table.textParams[n]);
    std::strcpy(table.textParams[n], ("text " + std::to_string(n)).c_str());
  }
  std::memset(table.name, 'z', sizeof table.name);
  std::strcpy(table.name, "STEEL 2.0");
}

std::unique_ptr<OldSheet> filledSheet() {
  auto sheet = std::make_unique<OldSheet>();
  fillTable(sheet->paramTable);
  return sheet;
}

const std::vector<int>& allSheetVersions() { return testing_support::allVersions(); }

std::int64_t save(const std::string& path, OldSheet& sheet, int version) {
  return SaveOldSheet(path.c_str(), &sheet, static_cast<std::uint16_t>(version));
}

// Raw content of the sheet's table.
Bytes contentOf(const ParamTable& table) { return Bytes::of(std::as_bytes(std::span(&table, 1))); }

TEST(TableOfAFreshSheet, HasTheValuesOfTheRecordInTheLayoutOfTheFile) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  const auto sheet = filledSheet();
  for (const int version : allSheetVersions()) {
    ASSERT_EQ(save(path, *sheet, version), 0) << version;
    const Bytes want = sheetBytes(version, tableBytes(version, sheet->paramTable, 10));
    const Bytes file = TempFolder::read(path);
    EXPECT_EQ(file.size(), want.size()) << version;
    EXPECT_TRUE(file == want) << version;
  }
}

TEST(TableOfAFreshSheet, IsZeroWithANameOfOneNulWhereNothingWasSet) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : allSheetVersions()) {
    const std::unique_ptr<OldSheet, void (*)(OldSheet*)> sheet(CreateSheetInfo(), DeleteSheetInfo);
    ASSERT_NE(sheet, nullptr);
    ASSERT_EQ(save(path, *sheet, version), 0) << version;
    EXPECT_TRUE(TempFolder::read(path) == sheetBytes(version, zeroParamBytes(tableVersionOf(version)))) << version;
  }
}

TEST(TableOfAFreshSheet, RoundTrips) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : allSheetVersions()) {
    const ParamForm form{tableVersionOf(version), 10, true, false};
    const auto sheet = filledSheet();
    Maker maker;
    storedParamTable(maker, form, sheet->paramTable);
    sheet->paramTable.version = 0;
    sheet->paramTable.nameLength = 0;
    ASSERT_EQ(save(path, *sheet, version), 0) << version;
    const auto loaded = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), loaded.get()), 0) << version;
    const ParamTable& table = loaded->paramTable;
    Checker checker;
    storedParamTable(checker, form, loaded->paramTable);
    EXPECT_STREQ(table.name, "STEEL 2.0") << version;
    ASSERT_FALSE(HasFailure()) << version;
    EXPECT_EQ(loaded->machine.textWidth, 256) << version;
    // What was loaded is complete: it can be saved, with the same table.
    ASSERT_EQ(save(folder.path("again"), *loaded, version), 0) << version;
    if (version >= 152) {
      const auto again = std::make_unique<OldSheet>();
      ASSERT_EQ(LoadOldSheet(folder.path("again").c_str(), again.get()), 0) << version;
      const ParamTable& second = again->paramTable;
      EXPECT_EQ(second.version, table.version);
      EXPECT_EQ(second.nameLength, table.nameLength) << version;
      EXPECT_EQ(std::memcmp(second.title, table.title, sizeof table.title), 0) << version;
      EXPECT_EQ(std::memcmp(second.intParams, table.intParams, sizeof table.intParams), 0) << version;
      EXPECT_EQ(std::memcmp(second.realParams, table.realParams, sizeof table.realParams), 0) << version;
      EXPECT_EQ(std::memcmp(second.textParams, table.textParams, sizeof table.textParams), 0) << version;
      EXPECT_EQ(std::memcmp(second.name, table.name, sizeof table.name), 0) << version;
    }
  }
}

TEST(TableOfAFreshSheet, KeepsItsLayoutWhenALoadedSheetIsSavedAtAnotherVersion) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int first : {52, 60, 79, 80, 180}) {
    const auto sheet = filledSheet();
    ASSERT_EQ(save(path, *sheet, first), 0);
    const auto loaded = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), loaded.get()), 0);
    ASSERT_EQ(save(path, *loaded, 180), 0);
    const Bytes file = TempFolder::read(path);
    const std::size_t at = 2 + 4 + 256 + 16 + 4 + 260 + 12 + 4 + 12 + 8 + 32 + 4 + 4;
    const Bytes table = tableBytes(first, sheet->paramTable, 10);
    EXPECT_TRUE(Bytes::of(file.span().subspan(at, table.size())) == table) << first;
  }
}

TEST(TableOfAFreshSheet, StoresTheTwoIntegersThatALoadKeepsWhereTheyAre0) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {60, 79, 80, 152, 180})
    for (const int number : {490, 492})
      for (const std::int32_t value : {0, 9, -1, kMin}) {
        const auto sheet = filledSheet();
        sheet->paramTable.intParams[number] = value;
        sheet->paramTable.realParams[number] = 0;
        ASSERT_EQ(save(path, *sheet, version), 0);
        EXPECT_TRUE(TempFolder::read(path) == sheetBytes(version, tableBytes(version, sheet->paramTable, 10)));
        // A record that already holds a value keeps it where the file has 0.
        const auto used = std::make_unique<OldSheet>();
        used->paramTable.intParams[490] = used->paramTable.intParams[492] = 7;
        used->paramTable.realParams[number] = 7.5;
        ASSERT_EQ(LoadOldSheet(path.c_str(), used.get()), 0) << version;
        EXPECT_EQ(used->paramTable.intParams[number], value == 0 ? 7 : value) << number << " at " << version;
        EXPECT_EQ(used->paramTable.realParams[number], 0.0);
      }
}

struct NameCase {
  std::string name;  // what the record's field begins with
  bool hasNul;       // whether a NUL follows
  std::int32_t nameLength;
  std::int32_t stored;
};

TEST(TableOfAFreshSheet, StoresAtLeastTheNameAndItsNul) {
  const std::string text255(255, 'n'), text256(256, 'm');
  const std::vector<NameCase> cases = {{"", true, 0, 1},           {"", true, 1, 1},
                                       {"", true, 40, 40},         {"", true, 256, 256},
                                       {"", true, -1, 1},          {"", true, kMin, 1},
                                       {"abc", true, 0, 4},        {"abc", true, 3, 4},
                                       {"abc", true, 4, 4},        {"abc", true, 5, 5},
                                       {"abc", true, 255, 255},    {"abc", true, 256, 256},
                                       {"abc", true, -7, 4},       {text255.substr(1), true, 0, 255},
                                       {text255, true, 0, 256},    {text255, true, 256, 256},
                                       {text256, false, 0, 256},   {text256, false, 21, 256},
                                       {text256, false, 256, 256}, {text256, false, -1, 256}};
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {52, 57, 60, 79, 80, 180})
    for (const NameCase& one : cases) {
      SCOPED_TRACE(testing::Message() << one.name.size() << " characters, nameLength " << one.nameLength << ", version "
                                      << version);
      const auto sheet = filledSheet();
      ParamTable& table = sheet->paramTable;
      std::memcpy(table.name, one.name.data(), one.name.size());
      if (one.hasNul) table.name[one.name.size()] = '\0';
      table.nameLength = one.nameLength;
      ASSERT_EQ(save(path, *sheet, version), 0);
      EXPECT_TRUE(TempFolder::read(path) == sheetBytes(version, tableBytes(version, table, one.stored)));
      EXPECT_EQ(table.nameLength, one.nameLength);
      const auto loaded = std::make_unique<OldSheet>();
      ASSERT_EQ(LoadOldSheet(path.c_str(), loaded.get()), 0);
      EXPECT_EQ(loaded->paramTable.nameLength, one.stored);
      EXPECT_EQ(std::memcmp(loaded->paramTable.name, table.name, static_cast<std::size_t>(one.stored)), 0);
    }
}

TEST(TableOfAFreshSheet, IsNotSavedWithANameLengthAbove256) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {52, 59, 60, 79, 80, 152, 180})
    for (const std::int32_t nameLength : {257, 258, 600, 65536, kMax}) {
      const auto sheet = filledSheet();
      sheet->paramTable.nameLength = nameLength;
      EXPECT_EQ(save(path, *sheet, version), -2) << nameLength << " at " << version;
      EXPECT_EQ(sheet->paramTable.nameLength, nameLength);
      EXPECT_EQ(sheet->paramTable.version, 0);
      // Nothing that the length counts has been stored.
      const Bytes file = TempFolder::read(path), all = sheetBytes(version, tableBytes(version, sheet->paramTable, 256));
      EXPECT_LT(file.size(), all.size()) << nameLength << " at " << version;
    }
}

TEST(FreshSheet, TheRecordIsUnchangedByASave) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : allSheetVersions())
    for (const bool filled : {false, true}) {
      const auto sheet = filled ? filledSheet() : std::make_unique<OldSheet>();
      const Bytes before = contentOf(sheet->paramTable);
      ASSERT_EQ(save(path, *sheet, version), 0) << version;
      EXPECT_TRUE(contentOf(sheet->paramTable) == before) << version;
      EXPECT_EQ(sheet->paramTable.version, 0);
      EXPECT_EQ(sheet->machine.textWidth, 0);
      EXPECT_EQ(sheet->version, 0);
      EXPECT_EQ(sheet->textWidth, 256);
    }
}

TEST(FreshSheet, TheRecordIsUnchangedByASaveThatFails) {
  const TempFolder folder;
  const auto sheet = filledSheet();
  sheet->rowTable.count = 26;
  const Bytes before = contentOf(sheet->paramTable);
  EXPECT_EQ(save(folder.path("sheet"), *sheet, 180), -2);
  sheet->rowTable.count = 0;
  EXPECT_EQ(save(folder.path("missing/sheet"), *sheet, 180), -2);
  EXPECT_EQ(save(folder.path("sheet"), *sheet, 181), -1);
  EXPECT_TRUE(contentOf(sheet->paramTable) == before);
  EXPECT_EQ(sheet->machine.textWidth, 0);
}

TEST(FreshSheet, MachineWithoutATextWidthIsStoredWithOneOf256) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {52, 60, 80, 152, 180})
    for (const std::int32_t width : {1, 8, 255, 256}) {
      const auto sheet = filledSheet();
      const Bytes table = tableBytes(version, sheet->paramTable, 10);
      ASSERT_EQ(save(path, *sheet, version), 0);
      EXPECT_TRUE(TempFolder::read(path) == sheetBytes(version, table, 256)) << version;
      sheet->machine.textWidth = width;
      ASSERT_EQ(save(path, *sheet, version), 0);
      EXPECT_TRUE(TempFolder::read(path) == sheetBytes(version, table, width)) << width << " at " << version;
      EXPECT_EQ(sheet->machine.textWidth, width);
    }
}

TEST(FreshSheet, AMachineWithAWidthOutsideItsRangeIsNotSaved) {
  const TempFolder folder;
  for (const std::int32_t width : {257, kMax, -1, kMin}) {
    const auto sheet = filledSheet();
    sheet->machine.textWidth = width;
    EXPECT_EQ(save(folder.path("sheet"), *sheet, 180), -2) << width;
  }
}

TEST(SheetWithATable, IsSavedAsItIsWithoutAnythingAdded) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {52, 60, 80, 180})
    for (const int own : {52, 60, 79, 80, 180, 499}) {
      const auto sheet = filledSheet();
      ParamTable& table = sheet->paramTable;
      table.version = static_cast<std::uint16_t>(own);
      table.nameLength = 3;
      EXPECT_EQ(save(path, *sheet, version), -2) << "the machine has no text width";
      EXPECT_EQ(sheet->machine.textWidth, 0);
      sheet->machine.textWidth = 256;
      ASSERT_EQ(save(path, *sheet, version), 0) << own << " in " << version;
      // Three bytes of a longer name, in the layout of the table's own version.
      EXPECT_TRUE(TempFolder::read(path) == sheetBytes(version, tableBytes(own, table, 3))) << own << " in " << version;
      table.nameLength = 0;
      EXPECT_EQ(save(path, *sheet, version), -2) << own << " in " << version;
    }
}

TEST(SheetWithATable, OfAVersionWithoutALayoutIsNotSaved) {
  const TempFolder folder;
  for (const int version : {52, 60, 180})
    for (const int own : {1, 51, 53, 59}) {
      const auto sheet = filledSheet();
      sheet->paramTable.version = static_cast<std::uint16_t>(own);
      sheet->paramTable.nameLength = 10;
      sheet->machine.textWidth = 256;
      EXPECT_EQ(save(folder.path("sheet"), *sheet, version), -2) << own << " in " << version;
    }
}

TEST(SheetWithATable, TheWriterOfATableRefusesVersion0) {
  const auto table = std::make_unique<ParamTable>();
  bool ok = true;
  EXPECT_EQ(written([&](auto& to) { return WriteParamTable(to, *table); }, &ok), Bytes().u16(0));
  EXPECT_FALSE(ok);
  fillTable(*table);
  table->nameLength = 10;
  EXPECT_EQ(written([&](auto& to) { return WriteParamTable(to, *table); }, &ok), Bytes().u16(0));
  EXPECT_FALSE(ok);
}

// A load may end in the spare word before the table: the table then still has version 0.
TEST(SheetWithoutATable, IsStoredWithOneByAnEdit) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {154, 162, 180}) {
    const std::size_t spareAt = 2 + 4 + 256 + 16 + 4 + 260 + 12 + 4 + 12 + 8 + 32 + 4;
    folder.write("sheet", sheetBytes(version, Bytes()).cut(spareAt + 3));
    EXPECT_EQ(ReplaceSheetMachineNcPath(path.c_str(), "C:\\NC"), 0);
    const auto loaded = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), loaded.get()), 0) << version;
    EXPECT_EQ(loaded->paramTable.version, version);
    EXPECT_EQ(loaded->paramTable.nameLength, 1);
    EXPECT_EQ(loaded->machine.textWidth, 256);
    EXPECT_STREQ(loaded->machine.ncPath, "C:\\NC");
  }
}

}  // namespace
