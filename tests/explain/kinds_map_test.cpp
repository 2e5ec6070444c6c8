// The map of machines, materials, tool inventories and the oldest parts: every byte reported, every fault
// where the load has it.
#include <gtest/gtest.h>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "tests/support/files.h"
#include "tests/support/random_records.h"
#include "torvio/explain/file_map.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using explain::FileKind;
using explain::FileReport;
using explain::MapLine;

struct Mapped {
  FileReport report;
  std::uint64_t bytes = 0;  // of all lines together
  std::string last;         // value of the last line
};

Mapped mapped(const std::string& path, FileKind kind) {
  Mapped all;
  all.report = explain::mapFile(path.c_str(), kind, [&](const MapLine& line) {
    all.bytes += line.size;
    all.last = line.value;
  });
  return all;
}

// Every file cut anywhere: the map and the load agree on the status, and the map reports every byte that
// it walked once. A step above 1 leaves out cuts of a long file; `unread` bytes are not read at all.
template <class Load>
void expectMapFollowsLoad(const Bytes& file, FileKind kind, const Load& load, std::size_t step = 1,
                          std::size_t unread = 0) {
  const TempFolder folder;
  for (std::size_t cut = 2; cut <= file.size();
       cut += cut + step > file.size() && cut < file.size() ? file.size() - cut : step) {
    const std::string path = folder.write("f", file.cut(cut));
    const Mapped map = mapped(path, kind);
    const FileReport check = explain::checkFile(path.c_str(), kind);
    EXPECT_EQ(map.report.status, load(path)) << cut;
    EXPECT_EQ(check.status, map.report.status) << cut;
    EXPECT_EQ(check.walked, map.report.walked) << cut;
    EXPECT_LE(map.bytes, cut) << cut;
    EXPECT_EQ(map.report.fault.has_value(), map.report.status != 0) << cut;
  }
  const Mapped complete = mapped(folder.write("f", file), kind);
  EXPECT_EQ(complete.bytes, complete.report.walked);
  EXPECT_EQ(complete.report.walked, file.size() - unread);
}

// A parameter table in the layout of that version, only numbers and a short name.
Bytes shortTable(int version) {
  Bytes file;
  file.i16(version);
  file.zeros((version == 502 ? 35 + 25 : 35) * (sizeof(std::int16_t) + sizeof(double)));
  return file.text(21, "STEEL");
}

TEST(KindsMap, ShortParameterTablesAreMappedAsTheyAreLoaded) {
  for (const int version : {501, 502}) {
    const Bytes file = shortTable(version);
    const auto material = std::make_unique<OldMaterial>();
    expectMapFollowsLoad(file, FileKind::material,
                         [&](const std::string& path) { return LoadOldMaterial(path.c_str(), material.get()); });
  }
}

TEST(KindsMap, NameOfOneByteIsReportedAsTolerated) {
  const TempFolder folder;
  const Bytes file = shortTable(501);
  const Mapped one = mapped(folder.write("one", file.cut(file.size() - 20)), FileKind::material);
  EXPECT_EQ(one.report.status, 0);
  EXPECT_NE(one.last.find("which is tolerated there"), std::string::npos) << one.last;
  ASSERT_TRUE(one.report.tolerated);
  EXPECT_EQ(one.report.tolerated->offset, file.size() - 20);
  EXPECT_EQ(explain::checkFile(folder.path("one").c_str(), FileKind::material).tolerated->reason,
            one.report.tolerated->reason);
  const Mapped two = mapped(folder.write("two", file.cut(file.size() - 19)), FileKind::material);
  EXPECT_EQ(two.report.status, 1);
  EXPECT_EQ(two.report.fault->path.find("params.name"), 0U) << two.report.fault->path;
}

// Stored at every version, read from 152 on.
constexpr std::size_t kWordsOfEveryMachine = 9 * 4 + 1;

TEST(KindsMap, MaterialsAndMachinesAreMappedAsTheyAreLoaded) {
  for (const int version : {61, 112, 152, 180}) {
    RandomRecords random(static_cast<std::uint32_t>(version), 1);
    const TempFolder folder;
    const auto material = random.newRecord<OldMaterial>(version, [=] { return version; });
    if (version != 152) {
      ASSERT_EQ(SaveMaterial(folder.path("m").c_str(), *material, version), 0) << version;
      expectMapFollowsLoad(
          TempFolder::read(folder.path("m")), FileKind::material,
          [&](const std::string& path) { return LoadOldMaterial(path.c_str(), material.get()); }, 997);
    }
    const auto machine = random.newRecord<OldMachine>(version);
    ASSERT_EQ(SaveMachine(folder.path("n").c_str(), *machine, version), 0) << version;
    expectMapFollowsLoad(
        TempFolder::read(folder.path("n")), FileKind::machine,
        [&](const std::string& path) { return LoadOldMachine(path.c_str(), machine.get()); }, 499,
        version < 152 ? kWordsOfEveryMachine : 0);
  }
}

TEST(KindsMap, PartsWithBindingsAreMappedAsTheyAreLoaded) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  for (const int version : {110, 160, 180}) {
    RandomRecords random(static_cast<std::uint32_t>(version), 1);
    random.record(*part, version);
    Pattern& group = part->patterns[0];
    group.groupKind = 32001;
    group.bindFirst.assign(2, {1, 2});
    group.bindSecond.assign(2, {3, 4});
    group.bindThird.assign(2, 5);
    group.bindFourth.assign(2, 6);
    group.bindFifth.assign(2, 7);
    ASSERT_EQ(SavePart(folder.path("p").c_str(), *part, version), 0) << version;
    int rows = 0;
    (void)explain::mapFile(folder.path("p").c_str(), FileKind::part, [&](const MapLine& line) {
      if (line.path.find("bind") != std::string::npos && line.path.find("[1]") != std::string::npos) ++rows;
    });
    EXPECT_GT(rows, 0) << version;
    expectMapFollowsLoad(
        TempFolder::read(folder.path("p")), FileKind::part,
        [&](const std::string& path) { return LoadOldPart(path.c_str(), part.get()); }, 97);
  }
}

TEST(KindsMap, UnreadRestOfTheOldestPartsIsTheFault) {
  const TempFolder folder;
  const std::string path = folder.write("old", Bytes().i16(3).zeros(4000));
  const Mapped map = mapped(path, FileKind::part);
  EXPECT_EQ(map.report.status, 1);
  ASSERT_TRUE(map.report.fault);
  EXPECT_EQ(map.report.fault->path, "rest");
  EXPECT_EQ(map.report.fault->reason, "is not read in a file of this version");
  EXPECT_EQ(map.report.fault->offset, map.report.walked);
}

}  // namespace
