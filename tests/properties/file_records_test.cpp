// Every kind of file: what a load reads, a save stores so that the next load reads the same.
#include "src/file_records.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "torvio/values/all_members.h"
#include "torvio/values/equal.h"

namespace {

using namespace testing_support;

TEST(FileRecords, EachKindLoadsWhatItHasSaved) {
  const TempFolder folder;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const std::string first = folder.write("first", kind.file(version)), second = folder.path("second");
      oldtorvio::withFileRecord(kind.kind, [&](auto file) {
        using Record = typename decltype(file)::Record;
        const auto loaded = std::make_unique<Record>(), again = std::make_unique<Record>();
        ASSERT_EQ(file.load(first.c_str(), *loaded), 0) << kind.name << ' ' << version;
        ASSERT_EQ(file.save(second.c_str(), *loaded, version), 0) << kind.name << ' ' << version;
        // A record keeps the path that it was loaded from.
        std::filesystem::rename(second, first);
        ASSERT_EQ(file.load(first.c_str(), *again), 0) << kind.name << ' ' << version;
        EXPECT_EQ(oldtorvio::values::firstDifference(*loaded, *again), std::nullopt) << kind.name << ' ' << version;
      });
    }
}

}  // namespace
