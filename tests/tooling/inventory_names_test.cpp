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

namespace {

using namespace testing_support;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

struct StoredTool {
  std::int32_t code;
  std::int32_t specialToolIndex;
};

Bytes toolBytes(int version, const StoredTool& tool) {
  Bytes b;
  b.f32(0.5F).i32(tool.code);
  if (tool.code == 108 && version >= 90) b.zeros(24);
  b.i32(tool.specialToolIndex).i32(0).f32(11).f32(12).f32(13);
  const std::size_t row = version >= 110 ? 24 : 16;
  b.i32(0).zeros(row).i32(0).zeros(row).i32(0).i32(0);
  if (version >= 60) b.zeros(8);
  if (version >= 110) b.zeros(16);
  if (version >= 111) b.zeros(264);
  return b;
}

Bytes inventoryBytes(int version, const std::vector<StoredTool>& tools, const std::vector<std::string>& files) {
  Bytes b;
  b.i16(version).i32(static_cast<std::int64_t>(tools.size())).zeros(160);
  for (const StoredTool& tool : tools) b.add(toolBytes(version, tool));
  b.i32(0).i32(static_cast<std::int64_t>(files.size()));
  for (const std::string& file : files) b.text(256, file);
  return b;
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
      std::vector<StoredTool> tools;
      for (const std::int32_t index : {0, -1, kMin, size + 1, kMax}) tools.push_back({108, index});
      ASSERT_EQ(load(inventoryBytes(version, tools, files)), tools.size());
      for (std::size_t i = 0; i < tools.size(); ++i)
        EXPECT_DEATH((void)nameOf(static_cast<std::int32_t>(i)), kText)
            << "index " << tools[i].specialToolIndex << " of " << size << " files, version " << version;
    }
}

TEST(InventoryNames, TheProcessEndsAsTheLibraryEndsIt) {
  ASSERT_EQ(load(inventoryBytes(150, {{108, 2}}, {"a.spt"})), 1U);
  EXPECT_EXIT((void)nameOf(0), endedByTheLibrary(), kText);
}

TEST(InventoryNames, EachIndexOfTheFilesSelectsItsName) {
  for (const int version : {54, 90, 110, 150, 180}) {
    const std::vector<StoredTool> tools = {{108, 1}, {108, 2}, {108, 3}};
    ASSERT_EQ(load(inventoryBytes(version, tools, {"C:\\x\\BIG.spt", "a.b.spt", "third"})), 3U);
    EXPECT_EQ(nameOf(0), "BIG");
    EXPECT_EQ(nameOf(1), "a.b");
    EXPECT_EQ(nameOf(2), "third");
  }
}

TEST(InventoryNames, AToolOfAnyOtherCodeMayHaveAnyIndex) {
  for (const std::int32_t index : {0, -1, 2, 99, kMin, kMax}) {
    const std::vector<StoredTool> tools = {{1, index},   {2, index}, {107, index},
                                           {109, index}, {0, index}, {-108, index}};
    ASSERT_EQ(load(inventoryBytes(150, tools, {"a.spt"})), tools.size());
    EXPECT_EQ(nameOf(0), "ROUND");
    EXPECT_EQ(nameOf(1), "kept");
    for (std::int32_t i = 2; i < 6; ++i) EXPECT_NE(nameOf(i), "a") << index;
  }
}

TEST(InventoryNames, TheFilesOfTheInventoryBeforeAreGone) {
  ASSERT_EQ(load(inventoryBytes(150, {{108, 2}}, {"a.spt", "b.spt"})), 1U);
  EXPECT_EQ(nameOf(0), "b");
  ASSERT_EQ(load(inventoryBytes(150, {{108, 2}}, {})), 1U);
  EXPECT_DEATH((void)nameOf(0), kText);
}

}  // namespace
