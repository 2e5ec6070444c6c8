// Failing allocations, where that is more than each export by itself: see every_export_test.cpp.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "src/part/part_io.h"
#include "src/tooling/inventory_io.h"
#include "tests/support/allocation_meter.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/special_tool_files.h"

namespace {

using namespace testing_support;

// Calls fn with its 1st, 2nd, ... allocation failing, until a call needs no more: each call with a failed allocation
// must return `expected`.
template <class Result, class Fn>
void expectOnFailure(Result expected, Fn&& fn) {
  for (const bool forGood : {false, true}) {
    bool happened = true;
    std::size_t failures = 0;
    for (std::size_t n = 0; happened; ++n) {
      Result result{};
      {
        const FailingAllocation failing(n, forGood);
        result = fn();
        happened = failing.happened();
      }
      if (!happened) break;
      ++failures;
      ASSERT_EQ(result, expected) << "allocation " << n;
      ASSERT_LT(n, 100000U);
    }
    EXPECT_GT(failures, 0U);
  }
}

// As expectOnFailure, but each time with a new record, created while memory is available, which must load the file
// when memory is available again.
template <class Record>
void expectOneOnFailure(const std::string& path, std::int64_t (*load)(const char*, Record*)) {
  std::size_t failures = 0;
  for (const bool forGood : {false, true})
    for (std::size_t n = 0;; ++n) {
      const auto record = std::make_unique<Record>();
      std::int64_t status = 0;
      bool happened = false;
      {
        const FailingAllocation failing(n, forGood);
        status = load(path.c_str(), record.get());
        happened = failing.happened();
      }
      ASSERT_EQ(status, happened ? 1 : 0) << "allocation " << n;
      if (!happened) break;
      ++failures;
      ASSERT_EQ(load(path.c_str(), record.get()), 0) << "allocation " << n;
      ASSERT_LT(n, 100000U);
    }
  EXPECT_GT(failures, 2U);
}

TEST(OutOfMemory, LoadsOfTheOtherKindsReturnOneAndTheRecordLoadsAgain) {
  const TempFolder folder;
  for (const int version : {54, 161, 180}) {
    expectOneOnFailure<OldMachine>(folder.write("machine", machineFile(version)), LoadOldMachine);
    expectOneOnFailure<OldToolInventory>(folder.write("inventory", inventoryFile(version)), LoadOldToolInventory);
    expectOneOnFailure<OldMacro>(folder.write("macro", macroFile(version)), LoadOldMacro);
  }
  for (const int version : {61, 161, 180})
    expectOneOnFailure<OldMaterial>(folder.write("material", materialFile(version)), LoadOldMaterial);
  for (const int version : {52, 60}) {
    // A table has no lists. It allocates the window over the file, which is opened twice, and the name.
    const std::string path = folder.write("table", materialFile(version));
    const auto record = std::make_unique<OldMaterial>();
    expectOnFailure<std::int64_t>(1, [&] { return LoadOldMaterial(path.c_str(), record.get()); });
    EXPECT_EQ(LoadOldMaterial(path.c_str(), record.get()), 0);
  }
}

// Loads into a record of the process return 0 if memory runs out after the version word.
// files: another file for each attempt, since a record keeps the memory of earlier loads.
void expectZeroAfterTheVersionWordOnFailure(const std::function<Bytes(std::size_t attempt)>& files,
                                            const std::function<std::int32_t(const char*)>& load,
                                            const std::function<bool()>& setItsOutputs) {
  const TempFolder folder;
  std::size_t before = 0;
  {
    const std::string refused = folder.write("refused", Bytes().i16(53).zeros(100));
    const AllocationMeter meter;
    ASSERT_EQ(load(refused.c_str()), -1);
    before = meter.count();
  }
  ASSERT_GT(before, 0U);
  std::size_t attempt = 0;
  for (const bool forGood : {false, true}) {
    bool happened = true;
    for (std::size_t n = 0; happened; ++n, ++attempt) {
      const std::string path = folder.write(std::to_string(attempt), files(attempt));
      std::int32_t status = 0;
      {
        const FailingAllocation failing(n, forGood);
        status = load(path.c_str());
        happened = failing.happened();
      }
      ASSERT_EQ(status, happened && n < before ? 1 : 0) << "allocation " << n;
      ASSERT_EQ(setItsOutputs(), !happened) << "allocation " << n;
      ASSERT_TRUE(happened || n > before) << "nothing was allocated after the version word";
      ASSERT_LT(n, 100000U);
      std::filesystem::remove(path);
    }
  }
}

// It is stored with a temporary table.
TEST(OutOfMemory, SaveOfASheetThatWasNeverLoadedReturnsMinusTwo) {
  const TempFolder folder;
  const std::string path = folder.path("s");
  const auto fresh = std::make_unique<OldSheet>();
  expectOnFailure<std::int64_t>(-2, [&] { return SaveOldSheet(path.c_str(), fresh.get(), 180); });
}

TEST(OutOfMemory, QueriesByKeyReturnOneAndLeaveTheValue) {
  const auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, 180);
  std::string value;
  for (const char* key : {"part_details_01", "partfulldosname_and_count_and_wonumber", "preSkeletonDosName"}) {
    std::strcpy(sheet->skeletonDosName, "a name that is too long for a text without memory of its own");
    value.assign(4096, '#');
    expectOnFailure<std::int64_t>(1, [&] {
      const std::int64_t status = GetOldSheetInfoByName(sheet.get(), key, value.data());
      EXPECT_EQ(value[0] == '#', status != 0) << key;
      value.assign(value.size(), '#');
      return status;
    });
  }
}

TEST(OutOfMemory, GroupIdsReturnOneAndLeaveTheValue) {
  const auto sheet = std::make_unique<OldSheet>();
  sheet->partList.parts.resize(1);
  sheet->partList.parts[0].patterns.resize(20);
  for (Pattern& pattern : sheet->partList.parts[0].patterns) pattern.patternWord = 123456789;
  std::string value(4096, '#');
  expectOnFailure<std::int64_t>(1, [&] {
    const std::int64_t status = GetOldSheetInfoPartGroupIDs(sheet.get(), value.data());
    EXPECT_EQ(value[0] == '#', status != 0);
    value.assign(value.size(), '#');
    return status;
  });
}

// Once the version is read these return 0, even if memory runs out, and their outputs are unchanged.
TEST(OutOfMemory, QueriesOfASheetFileReturnZeroAfterTheVersionWordAndLeaveTheirOutputs) {
  const Bytes sheet = sheetFile(180);
  const auto sameFile = [&](std::size_t) { return sheet; };
  const auto expectQuiet = [&](const std::function<std::int64_t(const char*)>& query, const auto& setItsOutputs) {
    expectZeroAfterTheVersionWordOnFailure(
        sameFile, [&](const char* path) { return static_cast<std::int32_t>(query(path)); }, setItsOutputs);
  };
  float n[12] = {};
  std::uint32_t count = 0;
  expectQuiet([&](const char* path) { return GetOldClampInfo(path, &count, n, n, n, n, &count, n); },
              [&] { return std::exchange(count, 0U) != 0; });
  float utilization = -1;
  expectQuiet([&](const char* path) { return GetOldSkeletonUtil(path, &utilization); },
              [&] { return std::bit_cast<std::uint32_t>(std::exchange(utilization, -1.0F)) != 0xBF800000U; });
  std::string text3, text5;
  const auto clear = [&] {
    const bool isSet = text3[0] != '#' && text5[0] != '#';
    text3.assign(300, '#');
    text5.assign(300, '#');
    return isSet;
  };
  (void)(text3.assign(300, '#'), text5.assign(300, '#'));
  expectQuiet([&](const char* path) { return GetOldVLMQMaterialName(path, text3.data(), text5.data()); }, clear);
  std::string texts[9];
  for (std::string& one : texts) one.assign(600, '#');
  char parts[64] = "", tools[64] = "";
  std::int32_t partsLength = 0, toolsLength = 0;
  double late = 0;
  expectQuiet(
      [&](const char* path) {
        return GetOldSheetInfo(path, texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(),
                               texts[4].data(), texts[5].data(), texts[6].data(), texts[7].data(), texts[8].data(),
                               &n[0], &n[1], &n[2], &late, parts, 64, &partsLength, tools, 64, &toolsLength);
      },
      [&] {
        const bool isSet = std::exchange(partsLength, 0) == 7;
        for (std::string& one : texts) {
          EXPECT_EQ(one[0] != '#', isSet);
          one.assign(600, '#');
        }
        return isSet;
      });
}

TEST(OutOfMemory, LoadsOfTheCurrentMachineReturnZeroAfterTheVersionWordAndLeaveTheirOutputs) {
  const Bytes machine = machineFile(180);
  const auto sameFile = [&](std::size_t) { return machine; };
  MachineInformation information{};
  expectZeroAfterTheVersionWordOnFailure(
      sameFile, [&](const char* path) { return LoadOldMachineInformation(path, &information); },
      [&] { return std::exchange(information.infoVersion, 0) == 180; });
  char text[4][257] = {};
  std::uint32_t kind = 0;
  expectZeroAfterTheVersionWordOnFailure(
      sameFile,
      [&](const char* path) {
        return static_cast<std::int32_t>(GetOldVLMQMachineName(path, text[0], &kind, text[1], text[2], text[3]));
      },
      [&] { return std::exchange(kind, 0U) != 0; });
}

TEST(OutOfMemory, LoadsOfTheCurrentInventoryReturnZeroAfterTheVersionWordWithACountOfZero) {
  std::uint32_t count = 0;
  expectZeroAfterTheVersionWordOnFailure(
      [](std::size_t attempt) {
        OldToolInventory inventory;
        inventory.tools.resize(100 + attempt);
        inventory.entries.resize(100 + attempt);
        inventory.specialToolFiles.resize(100 + attempt);
        return Bytes().i16(180).add(written([&](auto& s) { return WriteToolInventory(s, 180, inventory); }));
      },
      [&](const char* path) { return LoadOldToolInventoryForCount(path, &count); },
      [&] { return std::exchange(count, 0U) >= 100; });
}

TEST(OutOfMemory, SavesReturnMinusTwo) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  part->shapes.shapes.resize(5000);
  const std::string path = folder.path("s");
  expectOnFailure<std::int64_t>(-2, [&] { return SavePart(path.c_str(), *part, 180); });
  InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  const std::uint32_t values[9] = {};
  ASSERT_EQ(AddPatIntoGroupPat(1, 0, 0, 1, 0, values), 1);
  expectOnFailure<std::int64_t>(-2, [&] { return SaveTorvPart(path.c_str(), 180); });
}

TEST(OutOfMemory, AddingCallsAddNothing) {
  const TempFolder folder;
  folder.write("named.spt", specialToolFile(162, {1, 2, 3}));
  const WinIni ini(WinIni::folderSetting(folder.path() + "/"));
  const std::uint32_t values[9] = {};
  const std::string path = folder.path("builder");
  const auto content = [&] {
    const std::int64_t status = SaveTorvPart(path.c_str(), 180);
    return status == 0 ? TempFolder::read(path) : Bytes();
  };
  for (const bool empty : {true, false}) {
    const auto start = [&] {
      InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
      if (!empty) {
        ASSERT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "named"), 4);
      }
    };
    start();
    const Bytes before = content();
    const std::int32_t shapes = empty ? 0 : 4;
    const auto attempt = [&](auto expected, auto call) {
      for (const bool forGood : {false, true})
        for (std::size_t n = 0;; ++n) {
          start();
          bool happened = false;
          decltype(expected) result{};
          {
            const FailingAllocation failing(n, forGood);
            result = call();
            happened = failing.happened();
          }
          if (!happened) {
            EXPECT_GT(static_cast<std::int32_t>(result), shapes);
            break;
          }
          ASSERT_EQ(result, expected) << n;
          ASSERT_EQ(content(), before) << n;
        }
    };
    attempt(std::int32_t{-1},
            [&] { return AddPatternToTorvPart(1, 2, 3, 4, values, 0, 0, 0, 0, 0, 0, "named", 0, 0, 0, 0); });
    attempt(std::int32_t{-1},
            [&] { return AddPatternToTorvPart(1, 2, 3, 4, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0); });
    attempt(std::int32_t{-1}, [&] { return AddGroupPatIntoTorvPart(1, 2, 3, "named"); });
    attempt(std::uint16_t{0}, [&] { return AddPatIntoGroupPat(1, 2, 3, 4, 0, values); });
  }
}

}  // namespace
