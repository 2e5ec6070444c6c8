// Records saved to memory: the same bytes as the save of a file.
#include <gtest/gtest.h>

#include <memory>

#include "src/file_records.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/torvio/random_files.h"
#include "torvio/values/compiled_records.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

template <frame::FileKind kKind>
void expectSameAsAFile(const TempFolder& folder, typename FileRecord<kKind>::Record& record, int version) {
  // A save may change the record.
  const auto copy = std::make_unique<typename FileRecord<kKind>::Record>(record);
  const std::string path = folder.path("saved");
  const std::int64_t status = FileRecord<kKind>::save(path.c_str(), *copy, version);
  const values::SavedRecord saved = values::saveRecord<kKind>(record, version);
  EXPECT_EQ(saved.status, status) << version;
  EXPECT_TRUE(Bytes::of(saved.bytes) == TempFolder::read(path)) << version;
  EXPECT_EQ(differenceOf(kKind, &record, copy.get()), std::nullopt) << version;
}

template <class Use>
void withEachKind(Use&& use) {
  for (const frame::FileKindInfo& info : frame::kFileKinds) withFileRecord(info.kind, use);
}

TEST(SaveRecord, BytesInMemoryAreThoseOfAFileForEveryKindAndVersion) {
  const TempFolder folder;
  int compared = 0;
  withEachKind([&](auto file) {
    constexpr frame::FileKind kKind = decltype(file)::kKind;
    SCOPED_TRACE(frame::infoOf(kKind).name);
    for (const int version : versionsOf(kKind)) {
      const auto loaded = values::loadRecord<kKind>(randomFile(kKind, version, 5).span());
      ASSERT_EQ(loaded.status, 0) << version;
      expectSameAsAFile<kKind>(folder, *loaded.record, version);
      ++compared;
    }
  });
  EXPECT_GT(compared, 500);
}

TEST(SaveRecord, RefusedVersionsAndRecordsAreThoseOfAFile) {
  const TempFolder folder;
  withEachKind([&](auto file) {
    constexpr frame::FileKind kKind = decltype(file)::kKind;
    SCOPED_TRACE(frame::infoOf(kKind).name);
    for (const int version : {-1, 0, 1, 2, 51, 52, 53, 163, 181, 502, 600, 32767}) {
      const auto fresh = std::make_unique<typename decltype(file)::Record>();
      expectSameAsAFile<kKind>(folder, *fresh, version);
    }
  });
  // A count beyond its array ends each of these in the middle.
  const auto sheet = std::make_unique<OldSheet>();
  sheet->rowTable.count = 26;
  expectSameAsAFile<frame::FileKind::sheet>(folder, *sheet, 180);
  const auto part = std::make_unique<TorvPart>();
  part->patterns.resize(1);
  part->processSlotCount = 251;
  expectSameAsAFile<frame::FileKind::part>(folder, *part, 180);
  const auto material = std::make_unique<OldMaterial>();
  material->params.version = 80;
  material->params.nameLength = 257;
  expectSameAsAFile<frame::FileKind::material>(folder, *material, 180);
}

TEST(SaveRecord, SheetWithBlocksIsRefusedWhereASaveMightEndTheProcess) {
  const auto sheet = std::make_unique<OldSheet>();
  fullSheet(*sheet, 180);
  sheet->blocks.resize(1);
  EXPECT_EQ(values::saveRecord<frame::FileKind::sheet>(*sheet, 151).status, 0);
  for (const int version : {152, 180}) {
    const values::SavedRecord saved = values::saveRecord<frame::FileKind::sheet>(*sheet, version);
    EXPECT_EQ(saved.status, -2);
    EXPECT_TRUE(saved.bytes.empty());
  }
  EXPECT_EQ(values::saveRecord<frame::FileKind::sheet>(*sheet, 181).status, -1);
}

}  // namespace
