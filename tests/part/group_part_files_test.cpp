// Group part files through the exported load, and their save.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "OldTorvIO.h"
#include "src/part/part_io.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

struct List {
  SheetPartList* list = CreateOldPartlistInfo();
  ~List() { DeleteOldPartlistInfo(list); }
};

TEST(PartList, IsCreatedEmptyWithANameWidthOf256) {
  const List one;
  ASSERT_NE(one.list, nullptr);
  EXPECT_TRUE(one.list->parts.empty());
  EXPECT_EQ(one.list->nameWidth, 256);
  DeleteOldPartlistInfo(nullptr);
}

TEST(LoadGroupPart, AppendsEachPartInStoredOrder) {
  const TempFolder folder;
  for (const int version : {152, 155, 160, 161, 162, 170, 180, 181, 500, 32767})
    for (const std::int32_t nameSize : {7, 255, 256}) {
      const List one;
      const std::string path = folder.write("g", storedGroupFile(version, 2, nameSize, 3));
      for (const std::size_t loads : {1U, 2U}) {
        ASSERT_EQ(LoadGroupPart(path.c_str(), one.list), 0) << version;
        ASSERT_EQ(one.list->parts.size(), 3 * loads);
      }
      for (std::size_t i = 0; i < 3; ++i) {
        TorvPart& part = one.list->parts[i];
        EXPECT_EQ(std::string(part.partName), "PART " + std::to_string(i));
        EXPECT_EQ(part.version, 0);
        EXPECT_EQ(part.partFullDosName[0], '\0');
        Checker checker;
        storedPart(checker, version, {}, part);
      }
      one.list->parts.resize(3);
      const std::string copy = folder.path("copy");
      ASSERT_EQ(SaveGroupPart(copy.c_str(), *one.list, version, nameSize), 0);
      EXPECT_EQ(TempFolder::read(copy), TempFolder::read(path));
    }
}

TEST(LoadGroupPart, NameIsReadOverTheDefault) {
  const TempFolder folder;
  struct Row {
    std::size_t size;
    const char *stored, *name;
  };
  for (const Row& row : {Row{3, "PAR", "PAR PART"}, Row{4, "ABCD", "ABCDPART"}, Row{1, "x", "xEW PART"},
                         Row{9, "ABCD", "ABCD"}, Row{10, "ABCDEFGHIJ", "ABCDEFGHIJ"}, Row{256, "", ""}}) {
    const List one;
    const Bytes file = patched(storedGroupFile(152, 0, static_cast<std::int32_t>(row.size), 1), 10,
                               Bytes().text(row.size, row.stored));
    ASSERT_EQ(LoadGroupPart(folder.write("g", file).c_str(), one.list), 0);
    EXPECT_STREQ(one.list->parts[0].partName, row.name);
  }
}

TEST(LoadGroupPart, AllVersionWordsBelow152ReturnOneAndNoneMinusOne) {
  const TempFolder folder;
  const List one;
  const Bytes rest = Bytes().i32(0).i32(256);
  for (int word = 0; word < 65536; ++word) {
    const std::string path = folder.overwrite("v", Bytes().u16(static_cast<std::uint16_t>(word)).add(rest));
    ASSERT_EQ(LoadGroupPart(path.c_str(), one.list), 1) << word;
  }
  const Bytes whole = storedGroupFile(180, 0, 256, 1);
  for (const int version : {151, 0, -1, 52}) {
    const Bytes file = Bytes().i16(version).add(Bytes::of(whole.span().subspan(2)));
    EXPECT_EQ(LoadGroupPart(folder.write("v", file).c_str(), one.list), 1);
  }
  EXPECT_TRUE(one.list->parts.empty());
}

TEST(LoadGroupPart, MissingShortAndNull) {
  const TempFolder folder;
  const List one;
  EXPECT_EQ(LoadGroupPart(folder.path("none").c_str(), one.list), -2);
  EXPECT_EQ(LoadGroupPart("", one.list), -2);
  EXPECT_EQ(LoadGroupPart(nullptr, one.list), -2);
  EXPECT_EQ(LoadGroupPart(folder.write("g", storedGroupFile(180, 0, 256, 1)).c_str(), nullptr), -2);
  const Bytes whole = storedGroupFile(180, 0, 256, 1);
  for (std::size_t cut = 0; cut < 300; ++cut)
    EXPECT_EQ(LoadGroupPart(folder.write("g", whole.cut(cut)).c_str(), one.list), 1);
}

TEST(LoadGroupPart, NameBlockSizesOutside1To256AreRefused) {
  const TempFolder folder;
  for (const std::int32_t size : {-2147483647 - 1, -1, 0, 257, 2147483647}) {
    const List one;
    const Bytes file = Bytes().i16(180).i32(0).i32(size).zeros(20000);
    EXPECT_EQ(LoadGroupPart(folder.write("g", file).c_str(), one.list), 1);
    EXPECT_TRUE(one.list->parts.empty());
    one.list->parts.emplace_back().patterns.emplace_back();
    EXPECT_EQ(SaveGroupPart(folder.path("h").c_str(), *one.list, 180, size), -2);
  }
}

TEST(LoadGroupPart, CountOfFurtherPartsIsSigned) {
  const TempFolder folder;
  struct Row {
    std::int32_t extra;
    std::int64_t status;
    std::size_t parts;
  };
  for (const Row& row :
       {Row{-2147483647 - 1, 0, 1}, Row{-1, 0, 1}, Row{0, 0, 1}, Row{1, 0, 2}, Row{2, 1, 2}, Row{2000000000, 1, 2}}) {
    const List one;
    const std::string path = folder.write("g", storedGroupFile(180, row.extra, 256, 2));
    EXPECT_EQ(LoadGroupPart(path.c_str(), one.list), row.status) << row.extra;
    EXPECT_EQ(one.list->parts.size(), row.parts) << row.extra;
  }
}

TEST(SaveGroupPart, RefusesAnEmptyListAndVersionsBelow152) {
  const TempFolder folder;
  SheetPartList list;
  EXPECT_EQ(SaveGroupPart(folder.path("g").c_str(), list, 180), -2);
  list.parts.emplace_back().patterns.emplace_back();
  EXPECT_EQ(SaveGroupPart(folder.path("g").c_str(), list, 151), -1);
  EXPECT_EQ(SaveGroupPart(folder.path("g").c_str(), list, 152), 0);
}

}  // namespace
