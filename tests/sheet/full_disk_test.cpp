// A sheet that is stored where there is no room for all of it: which failures the writer ignores, and what a save
// returns.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/files.h"
#include "tests/support/full_file.h"
#include "tests/support/io_faults.h"
#include "tests/support/stored_forms/param_tables.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

std::unique_ptr<OldSheet> someSheet(int version) {
  auto sheet = std::make_unique<OldSheet>();
  sheet->paramTable.version = static_cast<std::uint16_t>(tableVersionOf(version));
  sheet->paramTable.nameLength = 1;
  sheet->machine.textWidth = 256;
  sheet->workList.resize(1);
  sheet->textEntries.resize(1);
  sheet->namedWorkLists.resize(2);
  std::strcpy(sheet->namedWorkLists[0].listName, "first");
  sheet->namedWorkLists[0].entries.resize(2);
  return sheet;
}

Bytes stored(OldSheet& sheet, int version) {
  bool ok = false;
  Bytes body = written([&](auto& to) { return WriteOldSheet(to, version, sheet); }, &ok);
  EXPECT_TRUE(ok) << version;
  return body;
}

// The place from which a failure is ignored: the last item of the file is one of the two lists whose result is.
std::size_t ignoredFrom(OldSheet& sheet, int version) {
  const std::size_t size = stored(sheet, version).size();
  if (version >= 60 && version < 90)
    return size - written([&](auto& to) { return WriteNamedWorkLists(to, version, sheet.namedWorkLists); }).size();
  if (version >= 152 && version < 161) return size - 4;  // the count of the blocks
  return size;
}

// Every step-th place, and each of those around the beginning and the end of what is ignored.
std::vector<std::size_t> places(std::size_t size, std::size_t ignored, std::size_t step) {
  std::vector<std::size_t> all;
  for (std::size_t at = 0; at < size; ++at)
    if (at % step == 0 || at < 3 || (at + 5 > ignored && at < ignored + 5) || at + 5 > size) all.push_back(at);
  return all;
}

void expectResults(int version, std::size_t step) {
  const auto sheet = someSheet(version);
  const std::size_t size = stored(*sheet, version).size(), ignored = ignoredFrom(*sheet, version);
  ASSERT_LT(size, kRoom);
  for (const std::size_t bytes : places(size, ignored, step)) {
    FullFile full(bytes);
    ASSERT_EQ(WriteOldSheet(full.stream(), version, *sheet), bytes >= ignored)
        << "no room after " << bytes << " of " << size << " bytes, version " << version;
    ASSERT_TRUE(full.stream().failed());
  }
}

TEST(SheetOnAFullDisk, AtVersion80OnlyAFailureInTheNamedWorkListsIsIgnored) {
  if (!hasFullDevice()) GTEST_SKIP() << "no device that is always full";
  expectResults(80, 1);
}

TEST(SheetOnAFullDisk, AFailureIsIgnoredOnlyWhereNothingIsStoredAfterTheList) {
  if (!hasFullDevice()) GTEST_SKIP() << "no device that is always full";
  for (const int version :
       {52, 54, 59, 60, 61, 71, 79, 80, 89, 90, 100, 111, 130, 140, 151, 152, 154, 160, 161, 170, 180}) {
    expectResults(version, 331);
    if (HasFatalFailure()) return;
  }
}

TEST(SheetOnAFullDisk, ASheetWithoutNamedWorkListsIgnoresAFailureOfTheirCount) {
  if (!hasFullDevice()) GTEST_SKIP() << "no device that is always full";
  for (const int version : {60, 80, 89, 90}) {
    const auto sheet = someSheet(version);
    sheet->namedWorkLists.clear();
    const std::size_t size = stored(*sheet, version).size();
    const std::size_t listAt = size - 4 - (version >= 90 ? 12 : 0);
    for (std::size_t bytes = listAt - 5; bytes < size; ++bytes) {
      FullFile full(bytes);
      EXPECT_EQ(WriteOldSheet(full.stream(), version, *sheet), version < 90 && bytes >= listAt)
          << bytes - listAt << " at " << version;
    }
  }
}

// What the writer ignores, a save does not: the file lacks what it should hold.
TEST(SheetOnAFullDisk, SaveReturnsMinus2WhereverTheDiskIsFull) {
  const TempFolder folder;
  const std::string path = folder.path("sheet");
  for (const int version : {52, 60, 80, 89, 90, 152, 160, 161, 180}) {
    const auto sheet = someSheet(version);
    const auto save = [&] { return SaveOldSheet(path.c_str(), sheet.get(), static_cast<std::uint16_t>(version)); };
    ASSERT_EQ(save(), 0) << version;
    const Bytes all = TempFolder::read(path);
    const std::size_t ignored = 2 + ignoredFrom(*sheet, version);
    for (const std::size_t bytes : places(all.size(), ignored, version == 80 ? 397 : 3001)) {
      std::int64_t status = 0;
      {
        const IoWatch watch({IoCall::write, 0, true, ENOSPC, bytes});
        status = save();
        EXPECT_TRUE(watch.happened());
      }
      ASSERT_EQ(status, -2) << "no room after " << bytes << " of " << all.size() << " bytes, version " << version;
      ASSERT_TRUE(TempFolder::read(path) == all.cut(bytes)) << bytes;
    }
    EXPECT_EQ(save(), 0) << version;
  }
}

}  // namespace
