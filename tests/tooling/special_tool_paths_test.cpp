// Paths with "\" where "/" is the separator: the folder of special tools and its files are looked for as they are
// written first, and with each "\" as "/" second.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "tests/support/files.h"
#include "tests/support/special_tool_files.h"

#if !defined(_WIN32)

namespace {

using namespace testing_support;
namespace fs = std::filesystem;

std::int32_t addNamed(const std::string& name) {
  const std::uint32_t values[9] = {};
  return AddPatternToTorvPart(1, 2, 3, 0, values, 0, 0, 0, 0, 0, 0, name.c_str(), 0, 0, 0, 0);
}
std::int32_t addGroup(const std::string& name) { return AddGroupPatIntoTorvPart(0, 0, 0, name.c_str()); }

// The number of first values, and that of shapes, shows which file was loaded.
Bytes toolWith(int n) { return specialToolFile(162, std::vector<int>(static_cast<std::size_t>(n), 3), 0, 0, n); }

class SpecialToolPaths : public testing::Test {
 protected:
  void SetUp() override { startPart(); }
  static void startPart() { InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }

  // Writes toolWith(n) into a file below the folder of the test. "/" separates, "\" is a character of a name.
  void tool(const std::string& name, int n) {
    fs::create_directories(fs::path(path(name)).parent_path());
    folder_.write(name, toolWith(n));
  }
  void makeFolder(const std::string& name) { fs::create_directories(path(name)); }
  std::string path(const std::string& name) const { return folder_.path() + "/" + name; }

  std::unique_ptr<TorvPart> content() {
    auto part = std::make_unique<TorvPart>();
    EXPECT_EQ(SaveTorvPart(path("built.part").c_str(), 180), 0);
    EXPECT_EQ(LoadOldPart(path("built.part").c_str(), part.get()), 0);
    return part;
  }
  // Which file a call with that name takes from the folder of special tools, as the n of toolWith(); -1 for none.
  int foundByWalk(const std::string& setting, const std::string& name) {
    const WinIni ini(WinIni::folderSetting(setting));
    startPart();
    if (addNamed(name) == -1) return -1;
    const auto part = content();
    return part->toolStations.stations.size() == 1 ? part->toolStations.stations[0].valueCount : -2;
  }
  int foundByGroup(const std::string& setting, const std::string& name) {
    const WinIni ini(WinIni::folderSetting(setting));
    startPart();
    const std::int32_t count = addGroup(name);
    if (count == -1) return -1;
    const auto part = content();
    EXPECT_EQ(std::string(part->shapes.shapes.at(0).text), setting + name + ".spt") << "kept as it is written";
    return count - 1;
  }

 private:
  TempFolder folder_;
};

// ---- the folder walk -----------------------------------------------------------------------------

TEST_F(SpecialToolPaths, AFolderWithABackslashInItsNameIsWalked) {
  tool("a\\b/punch.spt", 3);
  for (const char* end : {"", "/", "\\", "//", "/."})
    EXPECT_EQ(foundByWalk(path("a\\b") + end, "punch"), 3) << "\"" << end << "\"";
}

TEST_F(SpecialToolPaths, SeveralBackslashesInTheNameOfAFolderAreKept) {
  tool("\\a\\\\b/c\\/punch.spt", 2);
  EXPECT_EQ(foundByWalk(path("\\a\\\\b/c\\/"), "punch"), 2);
}

TEST_F(SpecialToolPaths, AFolderWhoseNameEndsInABackslashIsWalked) {
  tool("tools\\/punch.spt", 2);
  EXPECT_EQ(foundByWalk(path("tools\\"), "punch"), 2);
}

TEST_F(SpecialToolPaths, AFolderWrittenWithBackslashesIsWalkedWhereNoneHasThatName) {
  tool("a/b/punch.spt", 4);
  for (const char* end : {"", "/", "\\"}) {
    EXPECT_EQ(foundByWalk(path("a\\b") + end, "punch"), 4) << "\"" << end << "\"";
    EXPECT_EQ(foundByWalk(path("a/b") + end, "punch"), 4) << "\"" << end << "\"";
  }
}

TEST_F(SpecialToolPaths, FolderWithTheWrittenNameIsPreferred) {
  tool("a\\b/punch.spt", 5);
  tool("a/b/punch.spt", 6);
  for (const char* end : {"", "/", "\\"}) {
    EXPECT_EQ(foundByWalk(path("a\\b") + end, "punch"), 5) << "\"" << end << "\"";
    EXPECT_EQ(foundByWalk(path("a/b") + end, "punch"), 6) << "\"" << end << "\"";
  }
}

TEST_F(SpecialToolPaths, AFileInPlaceOfTheFolderIsNoFolder) {
  tool("a/b/punch.spt", 4);
  tool("a\\b", 1);
  EXPECT_EQ(foundByWalk(path("a\\b"), "punch"), 4);
}

TEST_F(SpecialToolPaths, FolderOfNeitherNameHasNoTools) {
  tool("a/b\\c/punch.spt", 1);
  EXPECT_EQ(foundByWalk(path("a\\b\\c"), "punch"), -1) << "all backslashes are translated, or none";
  EXPECT_EQ(foundByWalk(path("a\\x"), "punch"), -1);
}

TEST_F(SpecialToolPaths, AFileFoundInTheFolderIsLoadedWithTheBackslashOfItsName) {
  tool("tools/a\\b.spt", 3);
  EXPECT_EQ(foundByWalk(path("tools"), "a\\b"), 3);
  EXPECT_EQ(foundByWalk(path("tools/"), "A\\B"), 3);
  EXPECT_EQ(foundByWalk(path("tools\\"), "a\\b"), 3);
  EXPECT_EQ(foundByWalk(path("tools"), "a/b"), -1);
  EXPECT_EQ(foundByWalk(path("tools"), "b"), -1);
}

TEST_F(SpecialToolPaths, AFileFoundInTheFolderIsTakenBeforeOneOfTheTranslatedName) {
  tool("tools/a\\b.spt", 3);
  tool("tools/a/b.spt", 4);
  EXPECT_EQ(foundByWalk(path("tools"), "a\\b"), 3);
  EXPECT_EQ(foundByWalk(path("tools"), "a/b"), -1) << "folders inside are not walked";
}

TEST_F(SpecialToolPaths, ADamagedFileIsNotReplacedByOneOfTheTranslatedName) {
  tool("tools/a/b.spt", 4);
  tool("tools/a\\b.spt", 3);
  fs::resize_file(path("tools/a\\b.spt"), 100);
  EXPECT_EQ(foundByWalk(path("tools"), "a\\b"), -1);
}

TEST_F(SpecialToolPaths, ATranslatedFolderAndABackslashInTheNameOfAFileGoTogether) {
  tool("a/b/c\\d.spt", 7);
  EXPECT_EQ(foundByWalk(path("a\\b\\"), "c\\d"), 7);
}

// ---- groups --------------------------------------------------------------------------------------

TEST_F(SpecialToolPaths, TheFileOfAGroupMayHaveABackslashInItsName) {
  tool("a\\b.spt", 3);
  EXPECT_EQ(foundByGroup(path(""), "a\\b"), 3);
  EXPECT_EQ(foundByGroup(path("a\\"), "b"), 3);
  EXPECT_EQ(foundByGroup(path("a"), "\\b"), 3);
  EXPECT_EQ(foundByGroup(path(""), "a/b"), -1);
}

TEST_F(SpecialToolPaths, TheFileOfAGroupMayBeInAFolderWithABackslashInItsName) {
  tool("x\\y/A.spt", 2);
  EXPECT_EQ(foundByGroup(path("x\\y/"), "A"), 2);
  EXPECT_EQ(foundByGroup(path("x\\y"), "A"), -1) << "no separator is added";
  EXPECT_EQ(foundByGroup(path("x\\y\\"), "A"), -1) << "all backslashes are translated, or none";
}

TEST_F(SpecialToolPaths, TheFileOfAGroupIsFoundWithItsBackslashesTranslated) {
  tool("a/b.spt", 4);
  EXPECT_EQ(foundByGroup(path(""), "a\\b"), 4);
  EXPECT_EQ(foundByGroup(path("a\\"), "b"), 4);
  EXPECT_EQ(foundByGroup(path("a"), "\\b"), 4);
}

TEST_F(SpecialToolPaths, GroupPrefersTheFileWithTheWrittenName) {
  tool("a\\b.spt", 5);
  tool("a/b.spt", 6);
  EXPECT_EQ(foundByGroup(path(""), "a\\b"), 5);
  EXPECT_EQ(foundByGroup(path("a\\"), "b"), 5);
  EXPECT_EQ(foundByGroup(path("a/"), "b"), 6);
  fs::remove(path("a\\b.spt"));
  EXPECT_EQ(foundByGroup(path("a\\"), "b"), 6);
}

TEST_F(SpecialToolPaths, GroupWhoseFileIsDamagedUsesNoOther) {
  tool("a/b.spt", 6);
  for (const std::size_t size : {0U, 1U, 2U, 100U}) {
    tool("a\\b.spt", 5);
    fs::resize_file(path("a\\b.spt"), size);
    EXPECT_EQ(foundByGroup(path("a\\"), "b"), -1) << size;
  }
  tool("a\\b.spt", 5);
  EXPECT_EQ(foundByGroup(path("a\\"), "b"), 5);
}

TEST_F(SpecialToolPaths, AGroupWithoutAFileOfEitherNameAddsNothing) {
  makeFolder("a");
  tool("other\\b.spt", 1);
  EXPECT_EQ(foundByGroup(path("a\\"), "b"), -1);
  EXPECT_EQ(foundByGroup(path(""), "a\\b"), -1);
  const std::uint32_t values[9] = {};
  EXPECT_EQ(AddPatternToTorvPart(1, 2, 3, 0, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0), 1);
}

}  // namespace

#endif
