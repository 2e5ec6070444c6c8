// The name of a special tool of an inventory whose index is outside the inventory's file names.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/stored_forms/tooling.h"

namespace {

using namespace testing_support;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

OldTool toolOf(std::int32_t shapeCode, std::int32_t specialToolIndex) {
  OldTool tool;
  tool.shapeCode = shapeCode;
  tool.specialToolIndex = specialToolIndex;
  return tool;
}

// What the query returns as the name of a tool; "kept" where it sets none.
std::string nameOf(std::int32_t index) {
  char name[257] = "kept";
  float real[16] = {};
  std::int32_t counts[2] = {};
  GetOldToolInventoryInformation(index, name, &real[0], &real[1], &real[2], &real[3], &counts[0], &real[4], &real[5],
                                 &real[6], &real[7], &real[8], &real[9], &counts[1], &real[10], &real[11], &real[12],
                                 &real[13], &real[14], &real[15]);
  return name;
}

std::uint32_t load(const Bytes& file) {
  const TempFolder folder;
  std::uint32_t count = 0;
  EXPECT_EQ(LoadOldToolInventoryForCount(folder.write("inventory", file).c_str(), &count), 0);
  return count;
}

const char* const kText = "invalid vector<T> subscript";

TEST(InventoryNames, AnIndexOutsideTheFilesEndsTheProcessWithTheTextOfTheError) {
  const std::vector<std::vector<std::string>> lists = {{}, {"a.spt"}, {"a.spt", "b.spt"}};
  for (const int version : {54, 150})
    for (const auto& files : lists) {
      const auto size = static_cast<std::int32_t>(files.size());
      std::vector<OldTool> tools;
      for (const std::int32_t index : {0, -1, kMin, size + 1, kMax}) tools.push_back(toolOf(108, index));
      ASSERT_EQ(load(storedInventoryFile(version, tools, files)), tools.size());
      for (std::size_t i = 0; i < tools.size(); ++i)
        EXPECT_DEATH((void)nameOf(static_cast<std::int32_t>(i)), kText)
            << "index " << tools[i].specialToolIndex << " of " << size << " files, version " << version;
    }
}

TEST(InventoryNames, TheProcessEndsAsTheLibraryEndsIt) {
  ASSERT_EQ(load(storedInventoryFile(150, {toolOf(108, 2)}, {"a.spt"})), 1U);
  EXPECT_EXIT((void)nameOf(0), endedByTheLibrary(), kText);
}

TEST(InventoryNames, EachIndexOfTheFilesSelectsItsName) {
  for (const int version : {54, 90, 110, 150, 180}) {
    const std::vector<OldTool> tools = {toolOf(108, 1), toolOf(108, 2), toolOf(108, 3)};
    ASSERT_EQ(load(storedInventoryFile(version, tools, {"C:\\x\\BIG.spt", "a.b.spt", "third"})), 3U);
    EXPECT_EQ(nameOf(0), "BIG");
    EXPECT_EQ(nameOf(1), "a.b");
    EXPECT_EQ(nameOf(2), "third");
  }
}

TEST(InventoryNames, AToolOfAnyOtherCodeMayHaveAnyIndex) {
  for (const std::int32_t index : {0, -1, 2, 99, kMin, kMax}) {
    std::vector<OldTool> tools;
    for (const std::int32_t code : {1, 2, 107, 109, 0, -108}) tools.push_back(toolOf(code, index));
    ASSERT_EQ(load(storedInventoryFile(150, tools, {"a.spt"})), tools.size());
    EXPECT_EQ(nameOf(0), "ROUND");
    EXPECT_EQ(nameOf(1), "kept");
    for (std::int32_t i = 2; i < 6; ++i) EXPECT_NE(nameOf(i), "a") << index;
  }
}

TEST(InventoryNames, TheFilesOfTheInventoryBeforeAreGone) {
  ASSERT_EQ(load(storedInventoryFile(150, {toolOf(108, 2)}, {"a.spt", "b.spt"})), 1U);
  EXPECT_EQ(nameOf(0), "b");
  ASSERT_EQ(load(storedInventoryFile(150, {toolOf(108, 2)}, {})), 1U);
  EXPECT_DEATH((void)nameOf(0), kText);
}

}  // namespace
