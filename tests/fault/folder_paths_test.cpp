// A folder where a function expects a file cannot be opened.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "tests/support/files.h"

namespace {

using namespace testing_support;

using Call = std::function<std::int64_t(const char* path)>;

struct Row {
  const char* name;
  Call call;
};

template <class Record, auto load>
std::int64_t loadsInto(const char* path) {
  const auto record = std::make_unique<Record>();
  return load(path, record.get());
}

struct Outputs {
  char texts[12][300] = {};
  float reals[24] = {};
  std::int32_t ints[8] = {};
  std::uint32_t words[4] = {};
  double wide = 0;
  std::uint8_t byte = 0;
};

// Every function that reads or writes a file by its path.
std::vector<Row> rows() {
  return {
      {"LoadOldPart", loadsInto<TorvPart, LoadOldPart>},
      {"LoadGroupPart", loadsInto<SheetPartList, LoadGroupPart>},
      {"LoadOldSpecialTool", loadsInto<OldSpecialTool, LoadOldSpecialTool>},
      {"LoadOldToolInventory", loadsInto<OldToolInventory, LoadOldToolInventory>},
      {"LoadOldMacro", loadsInto<OldMacro, LoadOldMacro>},
      {"LoadOldMaterial", loadsInto<OldMaterial, LoadOldMaterial>},
      {"LoadOldMachine", loadsInto<OldMachine, LoadOldMachine>},
      {"LoadOldSheet", loadsInto<OldSheet, LoadOldSheet>},
      {"SaveTorvPart", [](const char* path) { return SaveTorvPart(path, 180); }},
      {"SaveTorvPart, a refused version", [](const char* path) { return SaveTorvPart(path, 63); }},
      {"SaveOldSheet",
       [](const char* path) {
         const auto sheet = std::make_unique<OldSheet>();
         return SaveOldSheet(path, sheet.get(), 180);
       }},
      {"SaveOldSheet, a refused version",
       [](const char* path) {
         const auto sheet = std::make_unique<OldSheet>();
         return SaveOldSheet(path, sheet.get(), 181);
       }},
      {"GetOldPartInfo",
       [](const char* path) {
         Outputs o;
         return GetOldPartInfo(path, o.texts[0], &o.reals[0], &o.reals[1], &o.reals[2]);
       }},
      {"GetOldPartInfo_v1",
       [](const char* path) {
         Outputs o;
         return GetOldPartInfo_v1(path, "Thickness", o.texts[0]);
       }},
      {"GetOldPartTool",
       [](const char* path) {
         Outputs o;
         return GetOldPartTool(path, o.texts[0], 300, &o.words[0]);
       }},
      {"GetOldSptFromPart",
       [](const char* path) {
         Outputs o;
         return GetOldSptFromPart(path, o.texts[0]);
       }},
      {"GetOldSptFromGroupPart",
       [](const char* path) {
         Outputs o;
         return GetOldSptFromGroupPart(path, o.texts[0], 300, &o.words[0]);
       }},
      {"OpenSpecialToolFile",
       [](const char* path) {
         Outputs o;
         float* r = o.reals;
         o.words[0] = 7;
         const std::int64_t status = OpenSpecialToolFile(
             path, &o.words[0], &r[0], &r[1], &r[2], &r[3], &r[4], &o.ints[0], &r[5], &r[6], &r[7], &r[8], &r[9],
             &r[10], &o.ints[1], &r[11], &r[12], &r[13], &r[14], &r[15], &r[16], &r[17], &r[18], &o.byte);
         EXPECT_EQ(o.words[0], 0U);
         return status;
       }},
      {"LoadOldToolInventoryForCount",
       [](const char* path) {
         std::uint32_t count = 7;
         const std::int64_t status = LoadOldToolInventoryForCount(path, &count);
         EXPECT_EQ(count, 0U);
         return status;
       }},
      {"LoadOldMachineInformation",
       [](const char* path) {
         const auto information = std::make_unique<MachineInformation>();
         return std::int64_t{LoadOldMachineInformation(path, information.get())};
       }},
      {"GetOldVLMQMachineName",
       [](const char* path) {
         Outputs o;
         return GetOldVLMQMachineName(path, o.texts[0], &o.words[0], o.texts[1], o.texts[2], o.texts[3]);
       }},
      {"GetMachineDatasForQD",
       [](const char* path) {
         Outputs o;
         float* r = o.reals;
         return GetMachineDatasForQD(path, &r[0], &r[1], &r[2], &r[3], &r[4], &r[5], &r[6], &r[7], &r[8], &r[9], &r[10],
                                     &r[11]);
       }},
      {"LoadOldSheetInformation", [](const char* path) { return std::int64_t{LoadOldSheetInformation(path)}; }},
      {"GetOldSheetHandle",
       [](const char* path) {
         OldSheet* sheet = nullptr;
         const std::int64_t status = GetOldSheetHandle(path, &sheet);
         EXPECT_EQ(sheet, nullptr);
         return status;
       }},
      {"GetOldSheetHandle, without a place for it", [](const char* path) { return GetOldSheetHandle(path, nullptr); }},
      {"GetOldSheetInfo",
       [](const char* path) {
         Outputs o;
         return GetOldSheetInfo(path, o.texts[0], o.texts[1], o.texts[2], o.texts[3], o.texts[4], o.texts[5],
                                o.texts[6], o.texts[7], o.texts[8], &o.reals[0], &o.reals[1], &o.reals[2], &o.wide,
                                o.texts[9], 300, &o.ints[0], o.texts[10], 300, &o.ints[1]);
       }},
      {"GetOldClampInfo",
       [](const char* path) {
         Outputs o;
         return GetOldClampInfo(path, &o.words[0], &o.reals[0], &o.reals[1], &o.reals[2], &o.reals[4], &o.words[1],
                                &o.reals[3]);
       }},
      {"GetOldVLMQMaterialName",
       [](const char* path) {
         Outputs o;
         return GetOldVLMQMaterialName(path, o.texts[0], o.texts[1]);
       }},
      {"GetOldSkeletonUtil",
       [](const char* path) {
         Outputs o;
         return GetOldSkeletonUtil(path, &o.reals[0]);
       }},
      {"GetSheetDriverFlags",
       [](const char* path) {
         std::vector<std::int32_t> flags(601, 5);
         const std::int64_t status = GetSheetDriverFlags(path, flags.data());
         EXPECT_EQ(flags, std::vector<std::int32_t>(601, 5));
         return status;
       }},
      {"GetSheetSequenceListSize",
       [](const char* path) {
         std::uint32_t count = 7;
         const std::int64_t status = GetSheetSequenceListSize(path, &count);
         EXPECT_EQ(count, 7U);
         return status;
       }},
      {"ReplaceSheetMachineNcPath", [](const char* path) { return ReplaceSheetMachineNcPath(path, "C:\\NC"); }},
      {"ReplaceSheetSknPatListWithPartPatList, both",
       [](const char* path) { return ReplaceSheetSknPatListWithPartPatList(path, path); }},
      {"UpdateSheetPartWONumber",
       [](const char* path) { return UpdateSheetPartWONumber(path, "PART", nullptr, "WO-1"); }},
  };
}

// The same folder in every spelling that the host understands.
std::vector<std::string> spellings(const std::string& folder) {
  return {folder, folder + "/", folder + kSeparator + ".",
          folder + "/../" + folder.substr(folder.find_last_of("/\\") + 1)};
}

TEST(FolderPaths, AFolderCannotBeOpenedByAnyFunction) {
  const TempFolder folder;
  for (const bool empty : {true, false}) {
    const std::string path = folder.path(empty ? "empty.part" : "full.sheet");
    std::filesystem::create_directory(path);
    if (!empty) writeFile(path + "/180", Bytes().i16(180));
    InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    const std::uint32_t values[9] = {};
    ASSERT_EQ(AddPatternToTorvPart(1, 2, 3, 0, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0), 1);
    for (const std::string& spelling : spellings(path))
      for (const Row& row : rows()) EXPECT_EQ(row.call(spelling.c_str()), -2) << row.name << " of " << spelling;
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_EQ(std::filesystem::is_empty(path), empty);
  }
}

#if !defined(_WIN32)
TEST(FolderPaths, ALinkToAFolderCannotBeOpenedEither) {
  const TempFolder folder;
  std::filesystem::create_directory(folder.path("folder"));
  std::filesystem::create_directory_symlink(folder.path("folder"), folder.path("link"));
  for (const Row& row : rows()) EXPECT_EQ(row.call(folder.path("link").c_str()), -2) << row.name;
}
#endif

TEST(FolderPaths, AFolderLeavesTheRecordUnchanged) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->version = 77;
  EXPECT_EQ(LoadOldPart(folder.path().c_str(), part.get()), -2);
  EXPECT_EQ(part->version, 77);
  const auto sheet = std::make_unique<OldSheet>();
  sheet->version = 77;
  EXPECT_EQ(LoadOldSheet(folder.path().c_str(), sheet.get()), -2);
  EXPECT_EQ(sheet->version, 77);
  OldToolInventory inventory;
  inventory.version = 77;
  EXPECT_EQ(LoadOldToolInventory(folder.path().c_str(), &inventory), -2);
  EXPECT_EQ(inventory.version, 77);
  EXPECT_STREQ(inventory.path, "");
}

TEST(FolderPaths, AFolderInPlaceOfThePartLeavesTheSheetUnchanged) {
  const TempFolder folder;
  const auto sheet = std::make_unique<OldSheet>();
  ASSERT_EQ(SaveOldSheet(folder.path("sheet").c_str(), sheet.get(), 180), 0);
  const Bytes before = TempFolder::read(folder.path("sheet"));
  std::filesystem::create_directory(folder.path("part"));
  EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(folder.path("sheet").c_str(), folder.path("part").c_str()), -2);
  EXPECT_TRUE(TempFolder::read(folder.path("sheet")) == before);
  EXPECT_EQ(ReplaceSheetSknPatListWithPartPatList(folder.path("part").c_str(), folder.path("sheet").c_str()), -2);
}

TEST(FolderPaths, AFolderInPlaceOfASpecialToolIsNotAdded) {
  const TempFolder folder;
  const WinIni ini(WinIni::folderSetting(folder.path() + kSeparator));
  std::filesystem::create_directory(folder.path("tool.spt"));
  InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  const std::uint32_t values[9] = {};
  const auto add = [&](const char* name) {
    return AddPatternToTorvPart(1, 2, 3, 0, values, 0, 0, 0, 0, 0, 0, name, 0, 0, 0, 0);
  };
  EXPECT_EQ(add("tool"), -1);
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "tool"), -1);
  EXPECT_EQ(add(nullptr), 1);
}

}  // namespace
