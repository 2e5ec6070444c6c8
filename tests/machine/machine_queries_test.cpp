// The queries of machine files.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/machine/machine_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace testing_support;
using oldtorvio::OldTool;
using oldtorvio::ToolStation;

// The versions that the two functions on the current machine take.
bool isKnown(int version) { return contains(inventoryVersions(), version); }

void setText(char* field, const std::string& text) { std::memcpy(field, text.c_str(), text.size() + 1); }

struct Station {
  float limits[4] = {1, 2, 3, 4};
  std::int32_t toolCount = 1, shapeCode = 3, valueCount = 2;
};

std::unique_ptr<OldMachine> machineOf(const std::vector<Station>& stations, std::int32_t kind = 3) {
  auto m = std::make_unique<OldMachine>();
  m->textWidth = m->secondTextWidth = 256;
  m->machineKind = kind;
  m->secondTextPresent = 1;
  setText(m->machineText2, "text two");
  setText(m->secondText, "the second text");
  setText(m->displayName, "DISPLAY NAME");
  setText(m->lateText1, "late text");
  m->sizeX = 1234.5F;
  m->sizeY = 567.25F;
  m->stationWord = 0x89ABCDEF;
  m->clampInfo.clampCount = 3;
  m->blockMode = 1;
  for (int i = 0; i < 4; ++i) m->workArea.areaValues[i] = 11.5F + static_cast<float>(i);
  auto& list = m->stationsA;
  list.extraWords[0] = 0xE1E2E3E4;
  list.extraWords[1] = 0x71727374;
  list.stationModeWord = 0xFFFFFAFF;
  for (std::size_t n = 0; n < stations.size(); ++n) {
    const float base = 100.0F * static_cast<float>(n + 1);
    ToolStation s;
    s.stationNumber = static_cast<std::int32_t>(n) - 7;
    s.orientation = base + 1;
    s.stationType = 0;
    s.toolCount = stations[n].toolCount;
    s.stationValue = base + 2;
    std::copy(std::begin(stations[n].limits), std::end(stations[n].limits), s.limits);
    s.valueCount = stations[n].valueCount;
    for (int i = 0; i < 6; ++i) s.values[i] = base + 10 + static_cast<float>(i);
    for (int i = 0; i < 3; ++i) s.offsets[i] = base + 20 + static_cast<float>(i);
    s.pairValues[0] = base + 30;
    s.pairValues[1] = base + 31;
    s.wordF = -static_cast<std::int32_t>(n) - 5;
    s.realF = base + 32;
    list.stations.push_back(s);
    OldTool t;
    t.shapeCode = stations[n].shapeCode;
    t.orientation = base + 40;
    t.dimension1 = base + 41;
    t.dimension2 = base + 42;
    t.dimension3 = base + 43;
    setText(t.specialToolPath, "C:\\TOOLS\\S" + std::to_string(n) + ".SPT");
    list.tools.push_back(t);
  }
  m->stationsB.stations.resize(4);  // the other lists are asked for nothing
  m->stationsB.tools.resize(4);
  return m;
}

std::string saved(const TempFolder& folder, OldMachine& machine, int version, const std::string& name = "m.mch") {
  const std::string path = folder.path(name);
  EXPECT_EQ(oldtorvio::SaveMachine(path.c_str(), machine, version), 0) << version;
  return path;
}

// ---- one call of each function, with outputs that show whether they were changed ------------------

constexpr char kMark = 'Z';

struct Information {
  MachineInformation out;
  std::int32_t status;
  explicit Information(const std::string& path) {
    std::memset(&out, kMark, sizeof out);
    status = LoadOldMachineInformation(path.c_str(), &out);
  }
  bool untouched() const {
    MachineInformation all;
    std::memset(&all, kMark, sizeof all);
    return std::memcmp(&all, &out, sizeof all) == 0;
  }
};

struct Names {
  char display[300], text2[300], second[300], late[300];
  std::uint32_t kind = 0x5A5A5A5A;
  std::int64_t status;
  explicit Names(const std::string& path) {
    for (char* one : {display, text2, second, late}) std::memset(one, kMark, 300);
    status = GetOldVLMQMachineName(path.c_str(), display, &kind, text2, second, late);
  }
  bool untouched() const {
    const std::string fresh(300, kMark);
    for (const char* one : {display, text2, second, late})
      if (std::memcmp(one, fresh.data(), 300) != 0) return false;
    return kind == 0x5A5A5A5A;
  }
};

struct Figures {
  float out[12];
  std::int64_t status;
  explicit Figures(const char* path) {
    std::fill(out, out + 12, -77.5F);
    status = GetMachineDatasForQD(path, &out[0], &out[1], &out[2], &out[3], &out[4], &out[5], &out[6], &out[7], &out[8],
                                  &out[9], &out[10], &out[11]);
  }
  explicit Figures(const std::string& path) : Figures(path.c_str()) {}
  bool untouched() const { return std::count(out, out + 12, -77.5F) == 12; }
};

struct OneStation {
  std::int32_t number = 999, type = 999, valueCount = 999, shapeCode = 999, wordF = 999;
  float orientation = 0, realF = 0, stationValue = 0, limits[4] = {}, pair[2] = {};
  float values[7], dimensions[4], offsets[4];
  char path[300];
  explicit OneStation(std::int32_t index) {
    std::fill(values, values + 7, -9.0F);
    std::fill(dimensions, dimensions + 4, -9.0F);
    std::fill(offsets, offsets + 4, -9.0F);
    std::memset(path, kMark, sizeof path);
    LoadOldStationToolFromMachine(index, &number, &type, &orientation, &realF, &stationValue, &valueCount, values,
                                  &limits[0], &limits[1], &limits[2], &limits[3], &shapeCode, dimensions, offsets, path,
                                  &pair[0], &pair[1], &wordF);
  }
};

// Text and NUL, and nothing after it.
void expectCopied(const char* buffer, std::size_t size, const std::string& text) {
  EXPECT_EQ(std::string(buffer, text.size() + 1), text + '\0');
  for (std::size_t i = text.size() + 1; i < size; ++i) ASSERT_EQ(buffer[i], kMark) << i;
}

// ---- the two functions on the current machine -----------------------------------------------------

TEST(MachineQueries, CopiesOutTheMachineAtEveryVersion) {
  const TempFolder folder;
  for (int version = 152; version <= kLastVersion; ++version) {
    if (!isKnown(version)) continue;
    for (const std::int32_t kind : {1, 2, 0, -5}) {
      const auto machine = machineOf({{}, {}, {}}, kind);
      const std::string path = saved(folder, *machine, version);
      const Information info(path);
      ASSERT_EQ(info.status, 0);
      EXPECT_EQ(info.out.infoKind, kind);
      EXPECT_EQ(info.out.infoVersion, version);
      EXPECT_TRUE(info.out.infoSizeX == 1234.5F && info.out.infoSizeY == 567.25F);
      expectCopied(info.out.infoText1, 256, "the second text");
      expectCopied(info.out.infoText2, 256, "text two");
      EXPECT_EQ(static_cast<std::uint32_t>(info.out.infoStationWord), 0x89ABCDEFU);
      EXPECT_TRUE(info.out.infoExtra1 == 0xE1E2E3E4U && info.out.infoExtra2 == 0x71727374U);
      EXPECT_EQ(info.out.infoStationMode, 10);
      EXPECT_EQ(info.out.infoStationCount, 3);
      const Names names(path);
      ASSERT_EQ(names.status, 0);
      EXPECT_EQ(names.kind, static_cast<std::uint32_t>(kind));
      expectCopied(names.display, 300, "DISPLAY NAME");
      expectCopied(names.text2, 300, "text two");
      expectCopied(names.second, 300, "the second text");
      expectCopied(names.late, 300, "late text");
    }
  }
}

TEST(MachineQueries, TextThatFillsItsFieldIsCopiedUpToItsWidth) {
  const TempFolder folder;
  const auto machine = machineOf({});
  char* const texts[] = {machine->displayName, machine->machineText2, machine->secondText, machine->lateText1};
  for (int i = 0; i < 4; ++i) std::memset(texts[i], 'a' + i, 256);
  const std::string path = saved(folder, *machine, 180);
  const Names names(path);
  ASSERT_EQ(names.status, 0);
  expectCopied(names.display, 300, std::string(256, 'a'));
  expectCopied(names.text2, 300, std::string(256, 'b'));
  expectCopied(names.second, 300, std::string(256, 'c'));
  expectCopied(names.late, 300, std::string(256, 'd'));
  const Information info(path);
  EXPECT_EQ(std::string(info.out.infoText1, 256), std::string(256, 'c'));
  EXPECT_EQ(std::string(info.out.infoText2, 256), std::string(256, 'b'));
  EXPECT_EQ(static_cast<std::uint32_t>(info.out.infoStationWord), 0x89ABCDEFU);
}

TEST(MachineQueries, EveryVersionWordIsAcceptedByItsListOrItsRange) {
  const TempFolder folder;
  for (int version = -32768; version <= 32767; ++version) {
    if ((version < -2 || version > 600) && version % 1023 != 0) continue;
    // A body of two bytes: an accepted word goes on to a load that fails.
    const std::string path = folder.overwrite("a.mch", Bytes().i16(version).zeros(2));
    const Information info(path);
    const Names names(path);
    const Figures figures(path);
    EXPECT_EQ(info.status, isKnown(version) ? 0 : -1) << version;
    EXPECT_EQ(names.status, isKnown(version) ? 0 : -1) << version;
    EXPECT_EQ(figures.status, version >= 52 && version <= kLastVersion ? 1 : -1) << version;
    EXPECT_TRUE(info.untouched() && names.untouched() && figures.untouched()) << version;
  }
}

TEST(MachineQueries, MissingShortAndUnnamedFilesReturnTheirStatus) {
  const TempFolder folder;
  for (const auto& [path, status] :
       {std::pair{folder.path("nothing"), -2}, std::pair{std::string(), -2},
        std::pair{folder.write("empty", Bytes()), 1}, std::pair{folder.write("one", Bytes().u8(180)), 1}}) {
    const Information info(path);
    const Names names(path);
    const Figures figures(path);
    EXPECT_TRUE(info.status == status && names.status == status && figures.status == status) << path;
    EXPECT_TRUE(info.untouched() && names.untouched() && figures.untouched()) << path;
  }
  const Figures unnamed(nullptr);
  EXPECT_TRUE(unnamed.status == -2 && unnamed.untouched());
}

TEST(MachineQueries, FailureOfALoadShowsOnlyInTheFigures) {
  const TempFolder folder;
  const auto machine = machineOf({{}, {}});
  for (const int version : {152, 180}) {
    const Bytes file = TempFolder::read(saved(folder, *machine, version));
    std::size_t failed = 0;
    for (std::size_t cut = 2; cut < file.size(); cut += cut < 600 ? 7 : 31) {
      const std::string path = folder.write("cut.mch", file.cut(cut));
      const auto loaded = std::make_unique<OldMachine>();
      const std::int64_t status = LoadOldMachine(path.c_str(), loaded.get());
      const Information info(path);
      const Names names(path);
      const Figures figures(path);
      EXPECT_TRUE(info.status == 0 && names.status == 0) << cut;
      EXPECT_EQ(figures.status, status) << cut;
      EXPECT_EQ(info.untouched(), status != 0) << cut;
      EXPECT_EQ(names.untouched(), status != 0) << cut;
      EXPECT_EQ(figures.untouched(), status != 0) << cut;
      failed += status == 1;
    }
    EXPECT_GT(failed, 50U);
  }
}

TEST(MachineQueries, KeepsWhatALaterFileDoesNotStore) {
  const TempFolder folder;
  const auto first = machineOf({{}});
  ASSERT_EQ(Information(saved(folder, *first, 180)).status, 0);
  const auto second = machineOf({{}});
  second->secondTextPresent = 0;
  setText(second->machineText2, "other");
  const std::string path = saved(folder, *second, 180);
  const Names names(path);
  EXPECT_STREQ(names.second, "the second text");
  EXPECT_STREQ(names.text2, "other");
  EXPECT_STREQ(Information(path).out.infoText1, "the second text");
}

TEST(MachineQueries, Version53LoadsOnlyForTheFigures) {
  const TempFolder folder;
  for (const int version : {52, 53, 55, 59}) {
    // What a save stores beyond these versions comes after all that a load of them reads.
    const std::string path = saved(folder, *machineOf({{}}), version);
    OldMachine loaded;
    EXPECT_EQ(LoadOldMachine(path.c_str(), &loaded), 0) << version;
    const Figures figures(path);
    EXPECT_EQ(figures.status, 0) << version;
    EXPECT_TRUE(figures.out[0] == 1234.5F && figures.out[4] == 1 && figures.out[11] == 14.5F) << version;
    EXPECT_EQ(Information(path).status, -1) << version;
    EXPECT_EQ(Names(path).status, -1) << version;
  }
}

TEST(MachineQueries, KeepsTheLaterFieldsOfAnEarlierFileOfAHigherVersion) {
  const TempFolder folder;
  const auto first = machineOf({{}, {}});
  const std::string late = saved(folder, *first, 180, "late.mch");
  const auto second = machineOf({{}});
  setText(second->displayName, "NOT STORED");
  setText(second->lateText1, "not stored");
  setText(second->machineText2, "old");
  const std::string early = saved(folder, *second, 54, "early.mch");
  ASSERT_EQ(Names(late).status, 0);
  const Names names(early);
  EXPECT_STREQ(names.display, "DISPLAY NAME");
  EXPECT_STREQ(names.late, "late text");
  EXPECT_STREQ(names.text2, "old");
  const Information info(early);
  EXPECT_EQ(info.out.infoVersion, 54);
  EXPECT_TRUE(info.out.infoExtra1 == 0U && info.out.infoStationCount == 1);
}

TEST(MachineQueries, CountsNoStationsInAProcessThatNeverHadAny) {
  if (!testing_support::kStartsProcesses) GTEST_SKIP() << "an emulated processor";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TempFolder folder;
  const std::string path = saved(folder, *machineOf({}), 170);
  EXPECT_EXIT(std::exit(Information(path).out.infoStationCount == 0 ? 0 : 1), testing::ExitedWithCode(0), "");
}

// ---- stations ------------------------------------------------------------------------------------

TEST(MachineQueries, CopiesOutEachStationAndItsTool) {
  const TempFolder folder;
  std::vector<Station> stations;
  for (const std::int32_t toolCount : {-1, 0, 1, 5})
    for (const std::int32_t code : {0, 1, 3, 107, 108, 112})
      for (const std::int32_t valueCount : {1, 2, 5, 6, 7, 1000})
        stations.push_back({{1.5F, -2.5F, 3.5F, static_cast<float>(code)}, toolCount, code, valueCount});
  const auto machine = machineOf(stations);
  for (const int version : {152, 160, 180}) {
    const std::string path = saved(folder, *machine, version);
    // Either function makes it the current machine.
    if (version == 160)
      ASSERT_EQ(Names(path).status, 0);
    else
      ASSERT_EQ(Information(path).out.infoStationCount, static_cast<std::int32_t>(stations.size()));
    for (std::size_t n = 0; n < stations.size(); ++n) {
      const auto index = static_cast<std::int32_t>(n);
      const OneStation one(index);
      const float base = 100.0F * static_cast<float>(n + 1);
      EXPECT_TRUE(one.number == index - 7 && one.type == 0 && one.orientation == base + 1 && one.realF == base + 32);
      EXPECT_TRUE(one.stationValue == base + 2 && one.valueCount == stations[n].valueCount) << n;
      EXPECT_TRUE(std::equal(one.limits, one.limits + 4, stations[n].limits));
      EXPECT_TRUE(one.pair[0] == base + 30 && one.pair[1] == base + 31 && one.wordF == -index - 5);
      for (std::int32_t i = 0; i < 6; ++i)
        EXPECT_EQ(one.values[i], i < stations[n].valueCount ? base + 10 + static_cast<float>(i) : 0.0F) << n;
      const bool tool = stations[n].toolCount >= 1;
      EXPECT_EQ(one.shapeCode, tool ? stations[n].shapeCode : 0) << n;
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(one.dimensions[i], tool ? base + 41 + static_cast<float>(i) : 0.0F) << n;
        EXPECT_EQ(one.offsets[i], base + 20 + static_cast<float>(i));
      }
      EXPECT_TRUE(one.values[6] == -9 && one.dimensions[3] == -9 && one.offsets[3] == -9);
      if (tool && stations[n].shapeCode == 108)
        EXPECT_STREQ(one.path, ("C:\\TOOLS\\S" + std::to_string(n) + ".SPT").c_str());
      else
        EXPECT_EQ(std::string(one.path, 300), std::string(300, kMark));
    }
  }
}

TEST(MachineQueries, QueriesAreAboutTheLastLoadedMachine) {
  const TempFolder folder;
  ASSERT_EQ(Information(saved(folder, *machineOf({{}, {}}), 180)).status, 0);
  Station other;
  other.limits[0] = 55;
  // None of these replaces it.
  EXPECT_EQ(Figures(saved(folder, *machineOf({other}), 180)).status, 0);
  EXPECT_EQ(Information(folder.write("refused", Bytes().i16(61).zeros(9))).status, -1);
  EXPECT_EQ(Names(folder.path("nothing")).status, -2);
  EXPECT_EQ(OneStation(1).limits[0], 1);
  EXPECT_EQ(OneStation(0).limits[0], 1);
  EXPECT_EQ(Names(saved(folder, *machineOf({other}), 180)).status, 0);
  EXPECT_EQ(OneStation(0).limits[0], 55);
}

TEST(MachineQueries, EndsTheProcessAtAnIndexOutsideTheStations) {
  if (!testing_support::kStartsProcesses) GTEST_SKIP() << "an emulated processor";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TempFolder folder;
  const std::string path = saved(folder, *machineOf({{}, {}}), 180);
  for (const std::int32_t index : {-1, 2, 3, 2147483647, -2147483647 - 1}) {
    EXPECT_DEATH(
        {
          if (Information(path).out.infoStationCount == 2) OneStation{1};
          OneStation{index};
          std::exit(0);
        },
        "");
  }
}

// ---- the figures ---------------------------------------------------------------------------------

// A load that fails in the tool of the second station leaves that station without one.
TEST(MachineQueries, EndsTheProcessAtAStationWithoutATool) {
  if (!testing_support::kStartsProcesses) GTEST_SKIP() << "an emulated processor";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TempFolder folder;
  const auto machine = machineOf({{}, {}});
  for (oldtorvio::OldTool& tool : machine->stationsA.tools) tool.auxWord2 = 0x5EEDF00D;
  const std::string path = saved(folder, *machine, 180);
  const Bytes whole = TempFolder::read(path);
  const std::string all(reinterpret_cast<const char*>(whole.span().data()), whole.size());
  const std::string mark("\x0D\xF0\xED\x5E", 4);
  const std::size_t second = all.find(mark, all.find(mark) + 1);
  ASSERT_NE(second, std::string::npos);
  const std::string cut = folder.write("cut", whole.cut(second + 1));
  EXPECT_EQ(Information(cut).status, 0);
  EXPECT_EQ(OneStation(0).limits[0], 1);
  EXPECT_DEATH(
      {
        const Information failed(cut);
        const OneStation withoutTool(1);
      },
      "");
}

TEST(MachineQueries, FiguresFollowTheKindOfTheMachineAndTheLimitsOfItsStations) {
  const TempFolder folder;
  const auto limited = [](float a, float b, float c, float d) { return Station{{a, b, c, d}}; };
  struct Case {
    std::vector<Station> stations;
    float wanted[4];
  };
  const std::vector<Case> cases{{{}, {999999, 999999, 0, 0}},
                                {{limited(1, 2, 3, 4)}, {1, 2, 3, 4}},
                                {{limited(1, 20, 30, 4), limited(10, 2, 3, 40), limited(5, 6, 7, 8)}, {1, 2, 30, 40}},
                                {{limited(-1, -2, -3, -4), limited(-10, 5, -30, -40)}, {-10, -2, 0, 0}},
                                {{limited(1000000, 2000000, 3000000, 4000000)}, {999999, 999999, 3000000, 4000000}},
                                {{limited(40, 30, 20, 10), limited(41, 29, 21, 9)}, {40, 29, 21, 10}}};
  for (const int version : {152, 153, 163, 180})  // a range, no list
    for (const std::int32_t kind : {-1, 0, 1, 2, 3, 1000})
      for (const Case& one : cases) {
        const auto machine = machineOf(one.stations, kind);
        machine->clampInfo.clampCount = kind % 8;
        machine->blockMode = static_cast<std::uint32_t>(one.stations.size());
        const Figures figures(saved(folder, *machine, version));
        ASSERT_EQ(figures.status, 0) << version;
        EXPECT_TRUE(figures.out[0] == 1234.5F && figures.out[1] == 567.25F);
        EXPECT_EQ(std::bit_cast<std::int32_t>(figures.out[2]), kind % 8);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(figures.out[3]), machine->blockMode);
        for (int i = 0; i < 4; ++i) {
          EXPECT_EQ(figures.out[4 + i], kind == 1 ? 0.0F : one.wanted[i]) << "kind " << kind << ", " << i;
          EXPECT_EQ(figures.out[8 + i], kind == 2 ? 0.0F : 11.5F + static_cast<float>(i)) << "kind " << kind;
        }
      }
}

TEST(MachineQueries, RefusesAMachineWithTrailerValuesOfShapes) {
  const TempFolder folder;
  const auto machine = machineOf({{}});
  machine->smallValue = 0x100;  // its second byte is what a load takes for the mark
  oldtorvio::ShapeList shapes;
  shapes.shapes.resize(2);
  oldtorvio::OutStream stream;
  ASSERT_TRUE(oldtorvio::WriteOldMachine(stream, 180, &shapes, *machine, true));
  const std::string path = folder.write("a.mch", Bytes().i16(180).add(Bytes::of(stream.bytes())));
  EXPECT_TRUE(Figures(path).status == 1 && Figures(path).untouched());
  EXPECT_TRUE(Information(path).status == 0 && Information(path).untouched());
  EXPECT_TRUE(Names(path).status == 0 && Names(path).untouched());
}

}  // namespace
