// Which files of the folder of special tools a name finds.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "tests/support/files.h"
#include "tests/support/special_tool_files.h"

namespace {

using namespace testing_support;

void startPart() { InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }

std::int32_t addPlain() {
  const std::uint32_t values[9] = {};
  return AddPatternToTorvPart(1, 2, 3, 0, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0);
}
std::int32_t addNamed(const std::string& name) {
  const std::uint32_t values[9] = {};
  return AddPatternToTorvPart(1, 2, 3, 0, values, 0, 0, 0, 0, 0, 0, name.c_str(), 0, 0, 0, 0);
}

// The number of first values of a station shows which file it came from.
Bytes toolWith(std::int32_t firstValueCount) { return specialToolFile(162, {3}, 0, 0, firstValueCount); }

// The number of first values of each station of the part, which must have a shape.
std::vector<std::int32_t> stationsOfPart() {
  const TempFolder folder;
  const std::string path = folder.path("built.part");
  const auto part = std::make_unique<TorvPart>();
  EXPECT_EQ(SaveTorvPart(path.c_str(), 180), 0);
  EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
  std::vector<std::int32_t> counts;
  for (const auto& station : part->toolStations.stations) counts.push_back(station.valueCount);
  return counts;
}

struct NameRow {
  const char* file;
  const char* name;
  bool found;
};

TEST(ToolNames, OnlyAFileWithTheExtensionIsFound) {
  const NameRow rows[] = {
      {"punch1.spt", "punch1", true},
      {"punch1.spt", "PUNCH1", true},
      {"PUNCH1.SPT", "punch1", true},
      {"Punch1.sPt", "pUNCH1", true},
      {"PUNCH1.SPt", "Punch1", true},
      {"a.b.spt", "A.B", true},
      {"x.spt", "X", true},
      // no extension, another one, a part of it
      {"punch1", "punch1", false},
      {"PUNCH1", "punch1", false},
      {"p", "p", false},
      {"abc", "ABC", false},
      {"abcd", "ABCD", false},
      {"punch1.sp", "punch1", false},
      {"punch1.sp", "punch1.sp", false},
      {"punch1.spt2", "punch1", false},
      {"punch1.spt2", "punch1.spt2", false},
      {"punch1.part", "punch1", false},
      {"punch1.part", "punch1.part", false},
      {"punch1spt", "punch1", false},
      {"punch1spt", "punch1spt", false},
      {"punch1_spt", "punch1", false},
      {"punch1_spt", "punch1_spt", false},
      {"spt", "spt", false},
      {"spt", "", false},
      // the last extension decides
      {"abc.spt.bak", "abc", false},
      {"abc.spt.bak", "abc.spt", false},
      {"abc.spt.bak", "abc.spt.bak", false},
      {"abc.bak.spt", "abc.bak", true},
      {"abc.bak.spt", "abc", false},
      // a name that holds the extension
      {"abc.spt", "abc.spt", false},
      {"abc.spt.spt", "abc.spt", true},
      {"abc.spt.SPT", "ABC.SPT", true},
      {"abc.spt.spt", "abc", false},
      {"abc.spt.spt", "abc.spt.spt", false},
      {"spt.spt", "spt", true},
      // only the extension
      {".spt", "", true},
      {".SPT", "", true},
      {".spt", ".spt", false},
      {".spt.spt", ".spt", true},
      {".spt.spt", "", false},
      {"abc.spt", "", false},
      // a part of the name
      {"abc.spt", "ab", false},
      {"abc.spt", "abcd", false},
      {"abc.spt", "bc", false},
      {"abc.spt", "abc.", false},
      {"abc.spt", "abc ", false},
  };
  for (const NameRow& row : rows) {
    SCOPED_TRACE(std::string(row.file) + " as \"" + row.name + "\"");
    const TempFolder tools;
    const WinIni ini(WinIni::folderSetting(tools.path()));
    tools.write(row.file, toolWith(3));
    startPart();
    EXPECT_EQ(addNamed(row.name), row.found ? 1 : -1);
    // A name that is not found has added nothing.
    EXPECT_EQ(addPlain(), row.found ? 2 : 1);
    EXPECT_EQ(stationsOfPart(), row.found ? std::vector<std::int32_t>{3} : std::vector<std::int32_t>{});
  }
}

TEST(ToolNames, AFileWithoutTheExtensionHidesNoneThatHasIt) {
  const TempFolder tools;
  const WinIni ini(WinIni::folderSetting(tools.path()));
  tools.write("punch1.spt", toolWith(3));
  for (const char* other : {"punch1", "punch1.bak", "punch1.spt.bak", "punch1.spt.spt", "punch", "punch1.sp", ".spt"})
    tools.write(other, toolWith(5));
  startPart();
  EXPECT_EQ(addNamed("punch1"), 1);
  EXPECT_EQ(addNamed("PUNCH1"), 2);
  EXPECT_EQ(stationsOfPart(), (std::vector<std::int32_t>{3, 3}));
}

TEST(ToolNames, ADamagedFileWithoutTheExtensionIsIgnored) {
  const TempFolder tools;
  const WinIni ini(WinIni::folderSetting(tools.path()));
  tools.write("punch1", Bytes().i16(53));
  tools.write("punch1.spt", toolWith(4));
  startPart();
  EXPECT_EQ(addNamed("punch1"), 1);
  EXPECT_EQ(stationsOfPart(), std::vector<std::int32_t>{4});
}

TEST(ToolNames, AnEmptyNameFindsTheFileNamedByItsExtensionOnlyWithoutAStation) {
  const TempFolder tools;
  const WinIni ini(WinIni::folderSetting(tools.path()));
  tools.write(".spt", toolWith(2));
  tools.write("abc.spt", toolWith(6));
  startPart();
  EXPECT_EQ(addNamed(""), 1);
  EXPECT_EQ(stationsOfPart(), std::vector<std::int32_t>{2});
  // From now on the empty name of the first tool matches.
  EXPECT_EQ(addNamed(""), 2);
  EXPECT_EQ(stationsOfPart(), std::vector<std::int32_t>{2});
}

TEST(ToolNames, AFolderWithTheExtensionIsSkipped) {
  const TempFolder tools;
  const WinIni ini(WinIni::folderSetting(tools.path()));
  std::filesystem::create_directory(tools.path("abc.spt"));
  tools.write("abc.spt/abc.spt", toolWith(1));
  tools.write("abc.spt.bak", toolWith(1));
  startPart();
  EXPECT_EQ(addNamed("abc"), -1);
  EXPECT_EQ(addNamed("abc.spt"), -1);
  EXPECT_EQ(addPlain(), 1);
}

TEST(ToolNames, NamesThatDifferOnlyInCaseAreTakenInTheOrderOfTheFolder) {
  if (!kNamesDifferByCase) GTEST_SKIP() << "this system has one file for both names";
  const TempFolder tools;
  const WinIni ini(WinIni::folderSetting(tools.path()));
  tools.write("abc.spt", toolWith(1));
  tools.write("ABC.SPT", toolWith(2));
  std::int32_t first = 0;
  for (const auto& entry : std::filesystem::directory_iterator(tools.path())) {
    if (first == 0) first = entry.path().filename() == "abc.spt" ? 1 : 2;
  }
  startPart();
  EXPECT_EQ(addNamed("Abc"), 1);
  EXPECT_EQ(stationsOfPart(), std::vector<std::int32_t>{first});
}

}  // namespace
