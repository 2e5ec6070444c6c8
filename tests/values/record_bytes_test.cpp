// Records loaded from memory: the same as those that the load of a path fills.
#include "torvio/values/record_bytes.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "torvio/values/equal.h"

namespace {

using namespace testing_support;
using namespace oldtorvio;

TEST(RecordBytes, LoadFromMemoryFillsTheRecordLikeALoadFromAPath) {
  const TempFolder folder;
  int compared = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes whole = kind.file(version);
      for (const std::size_t size :
           {whole.size(), whole.size() - 1, whole.size() / 2, std::size_t{2}, std::size_t{1}}) {
        const Bytes bytes = whole.cut(size);
        const std::string path = folder.write("file", bytes);
        withFileRecord(kind.kind, [&](auto file) {
          const auto loaded = std::make_unique<typename decltype(file)::Record>();
          const auto status = file.load(path.c_str(), *loaded);
          const auto ofBytes = values::loadRecord<decltype(file)::kKind>(bytes.span(), path);
          SCOPED_TRACE(testing::Message() << kind.name << ' ' << version << ", " << size << " bytes");
          EXPECT_EQ(ofBytes.status, status);
          EXPECT_EQ(values::firstDifference(*loaded, *ofBytes.record), std::nullopt);
          ++compared;
        });
      }
    }
  EXPECT_GT(compared, 200);
}

// Which members a load sets before it refuses a version is not the same for all kinds.
TEST(RecordBytes, RefusedVersionsLeaveTheSameRecordFromMemoryAsFromAPath) {
  const TempFolder folder;
  int refused = 0;
  for (const Kind& kind : kinds())
    for (const int version : {-1, 0, 1, 4, 53, 63, 163, 181, 32767}) {
      const Bytes bytes = Bytes().i16(version).zeros(100);
      const std::string path = folder.write("file", bytes);
      withFileRecord(kind.kind, [&](auto file) {
        const auto loaded = std::make_unique<typename decltype(file)::Record>();
        const auto status = file.load(path.c_str(), *loaded);
        const auto ofBytes = values::loadRecord<decltype(file)::kKind>(bytes.span(), path);
        SCOPED_TRACE(testing::Message() << kind.name << ' ' << version);
        EXPECT_EQ(ofBytes.status, status);
        EXPECT_EQ(ofBytes.version, version);
        EXPECT_EQ(values::firstDifference(*loaded, *ofBytes.record), std::nullopt);
        if (!frame::infoOf(kind.kind).accepts(version)) {
          EXPECT_EQ(ofBytes.walked, 0U);
          ++refused;
        }
      });
    }
  EXPECT_GT(refused, 40);
}

}  // namespace
