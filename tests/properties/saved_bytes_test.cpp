// What is saved is the same bytes on every host and in every build: digests of the files that records of
// known content become, over all versions of a kind. A digest that has changed on only one host is a fault
// of that host's build; one that has changed everywhere says that files are written differently than before.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

#include "OldTorvIO.h"
#include "src/frame/versions.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"
#include "src/tooling/special_tool_io.h"
#include "tests/support/files.h"
#include "tests/support/random_records.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// FNV-1a of all that was saved so far, and how much that was.
struct Digest {
  std::uint64_t hash = 14695981039346656037U;
  std::size_t size = 0;

  void add(const Bytes& content) {
    for (const std::byte one : content.span()) hash = (hash ^ std::to_integer<unsigned>(one)) * 1099511628211U;
    size += content.size();
  }
};

// save(path, random, version) for each version that `accepted` names.
template <class Accepted, class Save>
Digest digestOf(Accepted accepted, Save save) {
  const TempFolder folder;
  const std::string path = folder.path("saved");
  Digest digest;
  for (int version = frame::kFirstMainVersion; version <= frame::VersionSet::kHighest; ++version) {
    if (!accepted(version)) continue;
    RandomRecords random(static_cast<std::uint32_t>(version));
    EXPECT_EQ(save(path.c_str(), random, version), 0) << version;
    digest.add(TempFolder::read(path));
  }
  return digest;
}

void expectDigest(const Digest& digest, std::size_t size, std::uint64_t hash) {
  EXPECT_EQ(digest.size, size);
  EXPECT_EQ(digest.hash, hash) << std::hex << "0x" << digest.hash;
}

bool isPartVersion(int version) { return frame::kPartVersions.has(version); }

TEST(SavedBytes, OfPartsAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    const auto part = std::make_unique<TorvPart>();
    random.part(*part, version);
    return SavePart(path, *part, version);
  };
  expectDigest(digestOf(isPartVersion, save), 228002, 0x3EA0434513A28331);
}

TEST(SavedBytes, OfGroupPartsAreTheSameOnEveryHost) {
  const auto accepted = [](int version) { return version >= frame::kFirstGroupPartVersion && isPartVersion(version); };
  const auto save = [](const char* path, RandomRecords& random, int version) {
    SheetPartList list;
    for (int n = 0; n < 2; ++n) random.part(list.parts.emplace_back(), version);
    return SaveGroupPart(path, list, version, 256);
  };
  expectDigest(digestOf(accepted, save), 245927, 0xEDC0B6EC70E82213);
}

TEST(SavedBytes, OfSpecialToolsAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    return SaveSpecialTool(path, random.specialTool(), version);
  };
  expectDigest(digestOf(frame::isSpecialToolVersion, save), 28531, 0xAB9711DC041257A4);
}

TEST(SavedBytes, OfMachinesAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    const auto machine = std::make_unique<OldMachine>();
    random.machine(*machine, version);
    return SaveMachine(path, *machine, version);
  };
  expectDigest(digestOf(frame::isMachineVersion, save), 1689432, 0xAA8EA7F51D7CCEF9);
}

TEST(SavedBytes, OfMaterialsAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    const auto material = std::make_unique<OldMaterial>();
    random.material(*material);
    random.paramTable(material->params, frame::isParamTableVersion(version) ? version : 52);
    return SaveMaterial(path, *material, version);
  };
  expectDigest(digestOf(frame::isMaterialVersion, save), 227794, 0x8CF4916CC2074096);
}

TEST(SavedBytes, OfToolInventoriesAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    return SaveToolInventory(path, random.toolInventory(), version);
  };
  expectDigest(digestOf(frame::isToolInventoryVersion, save), 59912, 0x94C798F454D21F8B);
}

TEST(SavedBytes, OfMacrosAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    return SaveMacro(path, random.macro(), version);
  };
  expectDigest(digestOf(frame::isMacroVersion, save), 41511, 0x2D984BC955858F49);
}

TEST(SavedBytes, OfSheetsAreTheSameOnEveryHost) {
  const auto save = [](const char* path, RandomRecords& random, int version) {
    const auto sheet = std::make_unique<OldSheet>();
    random.sheet(*sheet, version);
    return static_cast<int>(SaveOldSheet(path, sheet.get(), static_cast<std::uint16_t>(version)));
  };
  expectDigest(digestOf(frame::isSavedSheetVersion, save), 5383538, 0x19DBA32C5C182BC1);
}

}  // namespace
