// Which members a load read: those of the fields that the map reports.
#include "torvio/explain/read_members.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "tests/support/bytes.h"
#include "tests/support/kind_files.h"
#include "torvio/explain/file_map.h"
#include "torvio/explain/map_fields.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using explain::FileKind;
using explain::ReadMembers;

struct Members {
  std::set<std::string> names;
  std::set<std::string> lists;  // and arrays
  std::string broken;           // where the file ends
};

std::string ownerOf(const std::string& path) { return path.substr(0, std::min(path.find_last_of('.'), path.size())); }

// "machine.stationsA.stations[3].tool" is read with "machine", "machine.stationsA" and "machine.stationsA.stations".
Members membersOf(const Bytes& file, FileKind kind) {
  Members members;
  const explain::FileReport report = explain::mapFile(file.span(), kind, [&](const explain::MapLine& line) {
    if (line.size == 0 || line.path.ends_with("reserved")) return;
    explain::eachField(line, [&](const explain::MapField& field) {
      const std::size_t listEnd = field.path.find('[');
      std::string path(field.path.substr(0, listEnd));
      // The two fields of a text that is stored with its length.
      for (const std::string_view part : {".length", ".text"})
        if (path.ends_with(part)) path.resize(path.size() - part.size());
      if (listEnd != std::string::npos) members.lists.insert(path);
      for (std::size_t end = path.find('.');; end = path.find('.', end + 1)) {
        members.names.insert(path.substr(0, end));
        if (end == std::string::npos) return;
      }
    });
  });
  for (const auto& fault : {report.fault, report.tolerated})
    if (fault) members.broken = fault->path.substr(0, fault->path.find('['));
  return members;
}

// What is read of the cut are the members of the fields before the cut. Lists and arrays in which it is may be read or
// not, and so may lists beside them, with which they share rows.
void expectMembersBefore(const Bytes& cut, FileKind kind, const Members& all) {
  const ReadMembers read(cut.span(), kind);
  const Members before = membersOf(cut, kind);
  for (const std::string& member : all.names) {
    const bool isCut = before.broken == member || before.broken.starts_with(member + ".");
    const bool isBeside = all.lists.count(member) > 0 && ownerOf(member) == ownerOf(before.broken);
    if (isCut || isBeside) continue;
    ASSERT_EQ(read.has(member), before.names.count(member) > 0) << cut.size() << " bytes: " << member;
  }
}

TEST(ReadMembers, AreThoseOfTheFieldsBeforeAnyCut) {
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes file = kind.file(version);
      const Members all = membersOf(file, kind.kind);
      SCOPED_TRACE(testing::Message() << kind.name << " of version " << version);
      // Of the first bytes every field is another one.
      for (std::size_t size = 2; size <= file.size(); size += size < 64 ? 1 : 1 + file.size() / 97)
        expectMembersBefore(file.cut(size), kind.kind, all);
    }
}

TEST(ReadMembers, NothingInsideOfAnElementIsOne) {
  std::size_t count = 0;
  for (const Kind& kind : kinds()) {
    const Bytes file = kind.file(kind.versions.back());
    const Members all = membersOf(file, kind.kind);
    const ReadMembers read(file.span(), kind.kind);
    (void)explain::mapFile(file.span(), kind.kind, [&](const explain::MapLine& line) {
      explain::eachField(line, [&](const explain::MapField& field) {
        // "shapes[3].x" without the position.
        std::string path(field.path);
        for (std::size_t open = 0; (open = path.find('[')) != std::string::npos;)
          path.erase(open, path.find(']', open) + 1 - open);
        if (path == field.path || all.names.count(path) > 0) return;
        ++count;
        EXPECT_FALSE(read.has(path)) << kind.name << ' ' << field.path;
      });
    });
  }
  EXPECT_GT(count, 0U);
}

TEST(ReadMembers, OfARefusedVersionAreOnlyTheVersion) {
  const ReadMembers read(Bytes().i16(499).zeros(1000).span(), FileKind::sheet);
  EXPECT_TRUE(read.has("version"));
  EXPECT_FALSE(read.has("machine"));
}

TEST(ReadMembers, WithoutAVersionAreNone) {
  const ReadMembers read(Bytes().u8(180).span(), FileKind::part);
  EXPECT_FALSE(read.has("version"));
  EXPECT_FALSE(read.has("width"));
}

TEST(ReadMembers, OfARecordWithoutAFileAreAll) { EXPECT_TRUE(ReadMembers().has("width")); }

// The name is read byte by byte: a table that ends after its first byte has it.
TEST(ReadMembers, OfATableThatEndsInItsNameAreItsName) {
  const Bytes file = Bytes().i16(500).zeros(20000);
  const Members all = membersOf(file, FileKind::material);
  std::size_t name = 0;
  (void)explain::mapFile(file.span(), FileKind::material, [&](const explain::MapLine& line) {
    if (line.path == "params.name") name = static_cast<std::size_t>(line.offset);
  });
  ASSERT_GT(name, 0U);
  for (std::size_t size = name - 1; size < name + 30; ++size) {
    expectMembersBefore(file.cut(size), FileKind::material, all);
    EXPECT_EQ(ReadMembers(file.cut(size).span(), FileKind::material).has("params.name"), size > name) << size;
  }
}

}  // namespace
