// Hostile counts, memory, failing allocations, small stacks and threads.
#include <gtest/gtest.h>
#include <pthread.h>

#include <memory>
#include <thread>

#include "OldTorvIO.h"
#include "src/frame/map.h"
#include "src/map/file_map.h"
#include "src/part/part_io.h"
#include "src/tooling/special_tool_io.h"
#include "tests/support/allocation_meter.h"
#include "tests/support/files.h"
#include "tests/support/part_files.h"
#include "tests/support/random_records.h"

namespace {

using namespace testing_support;

constexpr std::size_t kMiB = 1U << 20U;

Bytes partFile(int version, std::int32_t groupKind = 0) {
  Maker maker;
  const auto part = std::make_unique<TorvPart>();
  storedPart(maker, version, {false, true, groupKind}, *part);
  return Bytes().i16(version).add(maker.bytes);
}

Bytes groupFile(int version) {
  const Bytes part = partFile(version);
  return Bytes().i16(version).i32(0).i32(256).text(256, "A").add(Bytes::of(part.span().subspan(2)));
}

struct Kind {
  map::FileKind kind;
  std::string name;
  std::vector<int> versions;
  Bytes (*file)(int version);
  std::int64_t (*load)(const char* path);
};

const std::vector<Kind>& kinds() {
  static const std::vector<Kind> all{
      {map::FileKind::part,
       "part",
       {52, 62, 80, 110, 151, 161, 180},
       [](int v) { return partFile(v, 32001); },
       [](const char* path) {
         const auto part = std::make_unique<TorvPart>();
         return LoadOldPart(path, part.get());
       }},
      {map::FileKind::groupPart,
       "group",
       {152, 161, 180},
       groupFile,
       [](const char* path) {
         SheetPartList list;
         return LoadGroupPart(path, &list);
       }},
      {map::FileKind::specialTool,
       "special tool",
       {52, 110, 160, 180},
       [](int v) {
         return specialToolFile(v, {1, 2});
       },
       [](const char* path) {
         OldSpecialTool tool;
         return LoadOldSpecialTool(path, &tool);
       }},
  };
  return all;
}

bool isCount(const std::string& path) {
  for (const char* end : {".count", ".length", "Count", "nameBlockSize"})
    if (path.ends_with(end)) return true;
  return false;
}

TEST(HostileFiles, EveryCountThatClaimsTwoBillionIsAFaultAndTakesNoMemory) {
  const TempFolder folder;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes whole = kind.file(version);
      std::vector<frame::MapLine> counts;
      (void)map::mapFile(folder.write("whole", whole).c_str(), kind.kind, [&](const frame::MapLine& line) {
        if (line.size == 4 && isCount(line.path)) counts.push_back(line);
      });
      ASSERT_GT(counts.size(), 2U);
      for (const frame::MapLine& count : counts) {
        // These are carried without being counted by, and may claim anything.
        const bool carried = count.path.ends_with("ValueCount") || count.path.ends_with("toolCount") ||
                             count.path.ends_with("optionCount");
        const bool station = count.path.find("stations[") != std::string::npos && count.path.ends_with(".valueCount");
        if (carried || station) continue;
        for (const std::size_t behind : {0U, 60U}) {
          Bytes file = whole.cut(static_cast<std::size_t>(count.offset));
          file.i32(2000000000).fill(behind, 1);
          const std::string path = folder.write("claims", file);
          const AllocationMeter meter;
          EXPECT_EQ(kind.load(path.c_str()), 1) << kind.name << " " << version << " " << count.path;
          EXPECT_LT(meter.peak(), kMiB) << count.path;
        }
      }
    }
}

TEST(HostileFiles, HundredBytesThatClaimTwoBillionShapesStayBelowOneMebibyte) {
  const TempFolder folder;
  const Bytes file = Bytes().i16(52).zeros(8 + 63 + 16).i32(-1).i32(1).i32(2000000000);
  ASSERT_LE(file.size(), 101U);
  const auto part = std::make_unique<TorvPart>();
  const std::string path = folder.write("small", file);
  const AllocationMeter meter;
  EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 1);
  EXPECT_LT(meter.peak(), kMiB);
  EXPECT_LT(meter.largest(), 64U * 1024U);
}

TEST(HostileFiles, PeakMemoryIsBoundedByTheSizeOfTheFile) {
  const TempFolder folder;
  const auto check = [&](const TorvPart& part, int version, const char* what) {
    const std::string path = folder.path("big");
    ASSERT_EQ(SavePart(path.c_str(), part, version), 0);
    const auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
    const auto loaded = std::make_unique<TorvPart>();
    const AllocationMeter meter;
    ASSERT_EQ(LoadOldPart(path.c_str(), loaded.get()), 0);
    EXPECT_LE(meter.peak(), 16 * size + sizeof(TorvPart) + kMiB) << what << " of " << size << " bytes";
  };
  for (const int version : {52, 180}) {
    const auto part = std::make_unique<TorvPart>();
    part->patterns.emplace_back();
    Shape least;
    least.valueCount = least.extraCount = 0;
    part->shapes.shapes.assign(100000, least);
    part->patterns[0].items.resize(100000);
    check(*part, version, "shapes");
    *part = TorvPart();
    part->patterns.emplace_back().profiles.resize(20000);
    part->profiles.resize(20000);
    check(*part, version, "profiles");
    *part = TorvPart();
    part->patterns.emplace_back();
    part->stepTables.resize(50000);
    part->toolStations.stations.resize(20000);
    part->toolStations.tools.resize(20000);
    part->setupList.entries.resize(20000);
    part->marks.resize(50000);
    check(*part, version, "tables");
    *part = TorvPart();
    part->patterns.emplace_back();
    part->nestShapeGroups.resize(50000);
    part->contourGroups.resize(50000);
    part->bindingSets.resize(50000);
    check(*part, version, "groups");
  }
}

TEST(HostileFiles, FlippedBitsNeverHarm) {
  for (const Kind& kind : kinds()) {
    const TempFolder folder;
    for (const int version : {kind.versions.front(), kind.versions.back()}) {
      const Bytes whole = kind.file(version);
      const std::size_t step = whole.size() * 8 / 1500 + 1;
      std::vector<std::byte> bytes(whole.span().begin(), whole.span().end());
      for (std::size_t bit = 0; bit < bytes.size() * 8; bit += step) {
        bytes[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
        const std::string path = folder.write("flip", Bytes::of(bytes));
        const AllocationMeter meter;
        const std::int64_t status = kind.load(path.c_str());
        EXPECT_TRUE(status == 0 || status == 1 || (status == -1 && bit < 16));
        EXPECT_LE(meter.peak(), 16 * bytes.size() + sizeof(TorvPart) + kMiB);
        bytes[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
      }
    }
  }
}

// ---- failing allocations -------------------------------------------------------------------------

// Calls fn with its 1st, 2nd, ... allocation failing, until one call needs no more: each call that
// lost an allocation must give `told`.
template <class Result, class Fn>
void expectOnFailure(Result told, Fn&& fn) {
  for (const bool forGood : {false, true}) {
    bool happened = true;
    std::size_t failures = 0;
    for (std::size_t n = 0; happened; ++n) {
      Result result{};
      {
        const FailingAllocation failing(n, forGood);
        result = fn();
        happened = failing.happened();
      }
      if (!happened) break;
      ++failures;
      ASSERT_EQ(result, told) << "allocation " << n;
      ASSERT_LT(n, 100000U);
    }
    EXPECT_GT(failures, 0U);
  }
}

TEST(OutOfMemory, LoadsAndQueriesGiveOne) {
  const TempFolder folder;
  const std::string part = folder.write("p", partFile(180, 32001)), group = folder.write("g", groupFile(180)),
                    tool = folder.write("t.spt", specialToolFile(180, {1, 2}));
  char text[4096] = "";
  float number = 0;
  std::uint32_t length = 0;
  std::int32_t count = 0;
  std::uint8_t late = 0;
  for (const Kind& kind : kinds()) {
    const std::string path = folder.write("k", kind.file(180));
    if (kind.kind == map::FileKind::part) {
      TorvPart* const record = new TorvPart;
      expectOnFailure<std::int64_t>(1, [&] { return LoadOldPart(path.c_str(), record); });
      EXPECT_EQ(LoadOldPart(path.c_str(), record), 0) << "the record is still good";
      delete record;
    } else {
      expectOnFailure<std::int64_t>(1, [&] { return kind.load(path.c_str()); });
    }
  }
  expectOnFailure<std::int64_t>(1, [&] { return GetOldPartInfo(part.c_str(), text, &number, &number, &number); });
  expectOnFailure<std::int64_t>(1, [&] { return GetOldPartInfo_v1(part.c_str(), "angle", text); });
  expectOnFailure<std::int64_t>(1, [&] { return GetOldPartTool(part.c_str(), text, 4096, &length); });
  expectOnFailure<std::int64_t>(1, [&] { return GetOldSptFromPart(part.c_str(), text); });
  expectOnFailure<std::int64_t>(1, [&] { return GetOldSptFromGroupPart(group.c_str(), text, 4096, &length); });
  expectOnFailure<std::int32_t>(1, [&] {
    return OpenSpecialToolFile(tool.c_str(), &length, &number, &number, &number, &number, &number, &count, &number,
                               &number, &number, &number, &number, &number, &count, &number, &number, &number, &number,
                               &number, &number, &number, &number, &late);
  });
  expectOnFailure<bool>(false, [] {
    SheetPartList* const list = CreateOldPartlistInfo();
    DeleteOldPartlistInfo(list);
    return list != nullptr;
  });
}

TEST(OutOfMemory, SavesGiveMinusTwo) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  part->shapes.shapes.resize(5000);
  const std::string path = folder.path("s");
  expectOnFailure<std::int64_t>(-2, [&] { return SavePart(path.c_str(), *part, 180); });
  InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  const std::uint32_t values[9] = {};
  ASSERT_EQ(AddPatIntoGroupPat(1, 0, 0, 1, 0, values), 1);
  expectOnFailure<std::int64_t>(-2, [&] { return SaveTorvPart(path.c_str(), 180); });
}

TEST(OutOfMemory, AddingCallsAddNothing) {
  const TempFolder folder;
  folder.write("named.spt", specialToolFile(162, {1, 2, 3}));
  const WinIni ini(WinIni::folderSetting(folder.path() + "/"));
  const std::uint32_t values[9] = {};
  const std::string path = folder.path("builder");
  const auto content = [&] {
    const std::int64_t status = SaveTorvPart(path.c_str(), 180);
    return status == 0 ? TempFolder::read(path) : Bytes();
  };
  for (const bool empty : {true, false}) {
    const auto start = [&] {
      InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
      if (!empty) {
        ASSERT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "named"), 4);
      }
    };
    start();
    const Bytes before = content();
    const std::int32_t shapes = empty ? 0 : 4;
    const auto attempt = [&](auto told, auto call) {
      for (const bool forGood : {false, true})
        for (std::size_t n = 0;; ++n) {
          start();
          bool happened = false;
          decltype(told) result{};
          {
            const FailingAllocation failing(n, forGood);
            result = call();
            happened = failing.happened();
          }
          if (!happened) {
            EXPECT_GT(static_cast<std::int32_t>(result), shapes);
            break;
          }
          ASSERT_EQ(result, told) << n;
          ASSERT_EQ(content(), before) << n;
        }
    };
    attempt(std::int32_t{-1},
            [&] { return AddPatternToTorvPart(1, 2, 3, 4, values, 0, 0, 0, 0, 0, 0, "named", 0, 0, 0, 0); });
    attempt(std::int32_t{-1},
            [&] { return AddPatternToTorvPart(1, 2, 3, 4, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0); });
    attempt(std::int32_t{-1}, [&] { return AddGroupPatIntoTorvPart(1, 2, 3, "named"); });
    attempt(std::uint16_t{0}, [&] { return AddPatIntoGroupPat(1, 2, 3, 4, 0, values); });
  }
}

// ---- stack and threads ---------------------------------------------------------------------------

// Every export once, on content that makes it work.
void callEverything(const std::string& folder, bool withBuilder) {
  const std::string part = folder + "/p.part", group = folder + "/g", tool = folder + "/named.spt";
  char text[8192] = "";
  float number = 0;
  std::uint32_t length = 0;
  std::int32_t count = 0;
  std::uint8_t late = 0;
  const std::uint32_t values[9] = {};
  auto* const record = new TorvPart;
  auto* const special = new OldSpecialTool;
  SheetPartList* const list = CreateOldPartlistInfo();
  EXPECT_EQ(LoadOldPart(part.c_str(), record), 0);
  EXPECT_EQ(LoadGroupPart(group.c_str(), list), 0);
  EXPECT_EQ(LoadOldSpecialTool(tool.c_str(), special), 0);
  EXPECT_EQ(GetOldPartInfo(part.c_str(), text, &number, &number, &number), 0);
  for (const char* key : {"angle", "Revision", "MatType", "Thickness"})
    EXPECT_EQ(GetOldPartInfo_v1(part.c_str(), key, text), 0);
  EXPECT_EQ(GetOldPartTool(part.c_str(), text, 8192, &length), 0);
  text[0] = '\0';
  EXPECT_EQ(GetOldSptFromPart(part.c_str(), text), 0);
  EXPECT_EQ(GetOldSptFromGroupPart(group.c_str(), text, 8192, &length), 0);
  if (withBuilder) {
    InitTorvPart(1, 2, 3, 4, "a", "b", "c", "d", "e", "f");
    EXPECT_EQ(AddPatternToTorvPart(1, 2, 3, 4, values, 0, 0, 0, 0, 0, 0, "NAMED", 0, 0, 0, 0), 1);
    EXPECT_EQ(AddGroupPatIntoTorvPart(1, 2, 3, "named"), 3);
    EXPECT_EQ(AddPatIntoGroupPat(2, 1, 2, 3, 0, values), 4);
    EXPECT_EQ(SaveTorvPart((folder + "/saved").c_str(), 180), 0);
    EXPECT_EQ(OpenSpecialToolFile(tool.c_str(), &length, &number, &number, &number, &number, &number, &count, &number,
                                  &number, &number, &number, &number, &number, &count, &number, &number, &number,
                                  &number, &number, &number, &number, &number, &late),
              0);
    GetShapeAt(0, &count, &number, &number, &number, &number, &number, &number);
  }
  DeleteOldPartlistInfo(list);
  delete special;
  delete record;
}

class WholeLibrary : public testing::Test {
 protected:
  WholeLibrary() {
    folder_.write("p.part", partFile(180, 32001));
    folder_.write("g", groupFile(180));
    folder_.write("named.spt", specialToolFile(162, {1}));
  }
  TempFolder folder_;
  WinIni ini_{WinIni::folderSetting(folder_.path() + "/")};
};

TEST_F(WholeLibrary, EveryExportWorksOnAStackOf64Kibibytes) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers widen every frame";
#endif
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64U * 1024U), 0);
  std::string path = folder_.path();
  pthread_t thread;
  ASSERT_EQ(pthread_create(
                &thread, &attributes,
                [](void* folder) -> void* {
                  callEverything(*static_cast<std::string*>(folder), true);
                  return nullptr;
                },
                &path),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

TEST_F(WholeLibrary, EightThreadsOnTheirOwnRecords) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t)
    threads.emplace_back([&, t] {
      const auto part = std::make_unique<TorvPart>();
      RandomRecords(static_cast<std::uint32_t>(t)).part(*part, 180);
      const std::string path = folder_.path("thread" + std::to_string(t));
      for (int i = 0; i < 10; ++i) {
        callEverything(folder_.path(), false);
        EXPECT_EQ(SavePart(path.c_str(), *part, 180), 0);
        EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
        part->nestShapeGroups.clear();
      }
    });
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
