// Results on their way between processes, and the portions of an archive that processes examine.
#include "torvio/archive/result_bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/files.h"
#include "torvio/archive/batches.h"

namespace {

using namespace oldtorvio;
using namespace oldtorvio::archive;
using testing_support::Bytes;
using testing_support::TempFolder;

FileResult fullResult() {
  FileResult result;
  result.path = "/a\xff\n";
  result.isNamed = false;
  result.verdict = Verdict::soundWithLosses;
  result.kind = explain::FileKind::sheet;
  result.report.status = -2;
  result.report.version = -7;
  result.report.walked = std::numeric_limits<std::uint64_t>::max();
  result.report.size = 12;
  result.report.fault = explain::Fault{3, "x", "y"};
  result.report.tolerated = explain::Fault{4, "", "z"};
  result.warnings = {{"code", "field", "text"}, {}};
  result.facts.emplace();
  result.facts->name = "NAME";
  result.facts->width = -std::numeric_limits<double>::infinity();
  result.facts->toolCount = -1;
  result.facts->parts.resize(2);
  result.facts->parts[1].workOrder = std::string("a\0b", 3);
  result.facts->parts[1].height = 0.1;
  result.facts->parts[1].quantity = 5'000'000'000;
  result.facts->tools.resize(1);
  result.facts->tools[0].specialTool = "C:\\STAR.SPT";
  result.facts->tools[0].orientation = -0.0;
  result.modified = -1;
  result.size = 13;
  return result;
}

TEST(PackedResults, KeepEverything) {
  FileResult error;
  error.path = "b";
  error.isFolder = true;
  error.error = "cannot be opened";
  const std::vector<FileResult> all{fullResult(), error};
  const std::string packed = packedResults(all);
  const auto back = unpackedResults(packed);
  ASSERT_TRUE(back);
  ASSERT_EQ(back->size(), 2U);
  const FileResult& one = back->front();
  EXPECT_EQ(one.path, "/a\xff\n");
  EXPECT_FALSE(one.isNamed);
  EXPECT_EQ(one.verdict, Verdict::soundWithLosses);
  EXPECT_EQ(one.kind, explain::FileKind::sheet);
  EXPECT_EQ(one.report.status, -2);
  EXPECT_EQ(one.report.version, -7);
  EXPECT_EQ(one.report.walked, std::numeric_limits<std::uint64_t>::max());
  ASSERT_TRUE(one.report.tolerated);
  EXPECT_EQ(one.report.tolerated->reason, "z");
  EXPECT_EQ(one.warnings, fullResult().warnings);
  ASSERT_TRUE(one.facts);
  EXPECT_EQ(one.facts->name, "NAME");
  EXPECT_FALSE(one.facts->material);
  EXPECT_EQ(one.facts->parts.at(1).quantity, 5'000'000'000);
  EXPECT_EQ(one.facts->parts.at(1).workOrder.size(), 3U);
  EXPECT_TRUE(std::signbit(one.facts->tools.at(0).orientation));
  EXPECT_EQ(one.modified, -1);
  EXPECT_TRUE(back->back().isFolder);
  // The bytes have all members, so that the same bytes mean the same results.
  EXPECT_EQ(packedResults(*back), packed);
  EXPECT_EQ(unpackedResults(packedResults({}))->size(), 0U);
}

TEST(PackedResults, AreRefusedUnlessTheyAreComplete) {
  const FileResult result = fullResult();
  const std::string packed = packedResults({&result, 1});
  const std::size_t empty = packedResults({}).size();
  for (std::size_t size = 0; size < packed.size(); ++size)
    EXPECT_EQ(unpackedResults(packed.substr(0, size)).has_value(), size == empty) << size;
  EXPECT_FALSE(unpackedResults(packed + '\0'));
  EXPECT_FALSE(unpackedResults('T' + packed.substr(1)));
}

TEST(PackedResults, OfAnyBytesEndSoon) {
  const FileResult result = fullResult();
  const std::string packed = packedResults({&result, 1});
  std::size_t accepted = 0;
  for (std::size_t at = 0; at < packed.size(); ++at)
    for (const char byte : {'\0', '\1', '\x7f', '\xff'}) {
      std::string changed = packed;
      changed[at] = byte;
      if (const auto back = unpackedResults(changed)) {
        ++accepted;
        EXPECT_EQ(packedResults(*back).size(), changed.size());
      }
    }
  EXPECT_GT(accepted, 0U);
}

TEST(Batches, HaveTheFilesInOrderUntilTheyAreLargeEnough) {
  const TempFolder folder;
  for (const char* name : {"a", "b", "c", "d", "e"}) folder.write(name, Bytes().zeros(20'000));
  folder.write("f", Bytes().zeros(100'000));
  folder.write("g", Bytes());
  ScanOptions options;
  options.isExcluded = [](const std::string& path) { return path.ends_with("/b"); };
  options.known = [](const FileResult& measured) -> std::optional<FileResult> {
    if (!measured.path.ends_with("/d")) return std::nullopt;
    return FileResult{};
  };
  Batches batches(std::make_shared<FileNames>(std::vector<std::string>{folder.path(), "/no/file"}), options, 40'000);
  std::vector<std::string> found;
  while (const auto batch = batches.next()) {
    std::string names;
    for (const FoundFile& file : batch->files) names += file.path.back();
    for (const FileResult& ready : batch->ready) {
      EXPECT_TRUE(ready.isKnown);
      names.append("+").append(1, ready.path.back());
    }
    found.push_back(names);
  }
  // A file of 20,000 bytes is more than half of a batch, an empty one weighs as much as opening it takes.
  EXPECT_EQ(found, (std::vector<std::string>{"ac", "ef+d", "ge"}));
  EXPECT_FALSE(batches.next());
}

}  // namespace
