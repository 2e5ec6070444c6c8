// What is saved is the same bytes on every host and in every build: digests of the files that records of
// known content become, over all versions of a kind. A digest that has changed on only one host is a fault
// of that host's build; one that has changed everywhere says that files are written differently than before.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "src/file_records.h"
#include "src/frame/versions.h"
#include "tests/support/files.h"
#include "tests/support/random_records.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using frame::FileKind;

// FNV-1a of all that was saved so far, and how much that was.
struct Digest {
  std::uint64_t hash = 14695981039346656037U;
  std::size_t size = 0;

  void add(const Bytes& content) {
    for (const std::byte one : content.span()) hash = (hash ^ std::to_integer<unsigned>(one)) * 1099511628211U;
    size += content.size();
  }
};

template <FileKind kKind, class... Choice>
void expectDigest(std::size_t size, std::uint64_t hash, const Choice&... choice) {
  const TempFolder folder;
  const std::string path = folder.path("saved");
  Digest digest;
  for (int version = frame::kFirstMainVersion; version <= frame::VersionSet::kHighest; ++version) {
    if (!frame::infoOf(kKind).accepts(version)) continue;
    // Loads of group parts accept versions that no part is saved in.
    if (kKind == FileKind::groupPart && !frame::isPartVersion(version)) continue;
    using File = FileRecord<kKind>;
    const auto record =
        RandomRecords(static_cast<std::uint32_t>(version)).newRecord<typename File::Record>(version, choice...);
    EXPECT_EQ(File::save(path.c_str(), *record, version), 0) << version;
    digest.add(TempFolder::read(path));
  }
  EXPECT_EQ(digest.size, size);
  EXPECT_EQ(digest.hash, hash) << std::hex << "0x" << digest.hash;
}

TEST(SavedBytes, OfPartsAreTheSameOnEveryHost) { expectDigest<FileKind::part>(228002, 0x3EA0434513A28331); }

TEST(SavedBytes, OfGroupPartsAreTheSameOnEveryHost) {
  expectDigest<FileKind::groupPart>(245927, 0xEDC0B6EC70E82213, 2);
}

TEST(SavedBytes, OfSpecialToolsAreTheSameOnEveryHost) {
  expectDigest<FileKind::specialTool>(28531, 0xAB9711DC041257A4);
}

TEST(SavedBytes, OfMachinesAreTheSameOnEveryHost) { expectDigest<FileKind::machine>(1689432, 0xAA8EA7F51D7CCEF9); }

TEST(SavedBytes, OfMaterialsAreTheSameOnEveryHost) {
  expectDigest<FileKind::material>(227794, 0x8CF4916CC2074096, [] { return 52; });
}

TEST(SavedBytes, OfToolInventoriesAreTheSameOnEveryHost) {
  expectDigest<FileKind::toolInventory>(59912, 0x94C798F454D21F8B);
}

TEST(SavedBytes, OfMacrosAreTheSameOnEveryHost) { expectDigest<FileKind::macro>(41511, 0x2D984BC955858F49); }

TEST(SavedBytes, OfSheetsAreTheSameOnEveryHost) { expectDigest<FileKind::sheet>(5383538, 0x19DBA32C5C182BC1); }

}  // namespace
