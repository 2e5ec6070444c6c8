// Calls from several threads at once.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "OldTorvIO.h"
#include "tests/support/export_calls.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/kind_files.h"
#include "tests/support/linked_exports.h"

namespace {

using namespace testing_support;

void onEightThreads(const std::function<void(std::size_t thread)>& work) {
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < 8; ++t) threads.emplace_back(work, t);
  for (std::thread& thread : threads) thread.join();
}

TEST(EightThreads, QueryOneSheet) {
  if (isCounted()) GTEST_SKIP() << "threads that count at once lose counts";
  const TempFolder folder;
  OldSheet* sheet = nullptr;
  ASSERT_EQ(GetOldSheetHandle(folder.write("sheet", sheetFile(180)).c_str(), &sheet), 0);
  const auto query = [&] {
    std::string all;
    std::vector<char> value(1U << 16U);
    for (const char* key : {"part_details_01", "preSkeletonDosName", "sheet_utilization", "width"}) {
      EXPECT_EQ(GetOldSheetInfoByName(sheet, key, value.data()), 0);
      all += value.data();
    }
    EXPECT_EQ(GetOldSheetInfoPartGroupIDs(sheet, value.data()), 0);
    return all + value.data();
  };
  const std::string expected = query();
  onEightThreads([&](std::size_t) {
    for (int i = 0; i < 50; ++i) EXPECT_EQ(query(), expected);
  });
  FreeSheetHandle(sheet);
}

// All exports but those that use what exists once in the process.
TEST(EightThreads, CallTheExportsOnTheirOwnRecordsAndFiles) {
  if (isCounted()) GTEST_SKIP() << "threads that count at once lose counts";
  const Samples samples[8];
  const auto outputs = [&](std::size_t thread) {
    const Exports exports = linkedExports();
    std::map<std::string, std::string> all;
    for (const ExportCall& call : exportCalls()) {
      if (call.keepsRoom) continue;
      const PreparedCall p = call.prepare(exports, samples[thread]);
      EXPECT_EQ(p.call(), call.whenDone) << call.title();
      all[call.title()] = p.answer();
    }
    return all;
  };
  const auto expected = outputs(0);
  EXPECT_GT(expected.size(), 30U);
  onEightThreads([&](std::size_t thread) {
    for (int i = 0; i < 10; ++i) EXPECT_EQ(outputs(thread), expected);
  });
}

}  // namespace
