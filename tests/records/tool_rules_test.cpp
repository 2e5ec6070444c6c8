// The rules of tools, stations and their lists that a table of fields does not show.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

constexpr int kIntMin = std::numeric_limits<int>::min();
constexpr int kIntMax = std::numeric_limits<int>::max();

// ---- tools ---------------------------------------------------------------------------------------

int readTool(const Bytes& bytes, int version, bool pathIsStored, OldTool& tool) {
  return readFrom(bytes, [&](InStream& s) { return ReadOldTool(s, version, pathIsStored, tool); });
}
Bytes writtenTool(const OldTool& tool, int version, bool pathIsStored) {
  bool ok = false;
  const Bytes bytes = written([&](OutStream& s) { return WriteOldTool(s, version, pathIsStored, tool); }, &ok);
  EXPECT_TRUE(ok);
  return bytes;
}
OldTool madeTool(std::int32_t code, int version = 180) {
  Maker m;
  OldTool tool;
  storedTool(m, version, true, code, tool);
  return tool;
}

TEST(Tool, InitSetsAUsedToolBackToItsDefaults) {
  Maker m = Maker::ofEveryField(1);
  OldTool tool;
  storedTool(m, 180, true, 108, tool);
  tool.name = "a tool";
  tool.symmetryFlags = tool.runtimeIndexA = tool.runtimeIndexB = 3;
  tool.fileVersion = tool.lateFlag = tool.lateFlag2 = 4;
  InitOldTool(tool);
  EXPECT_EQ(tool.name, "");
  EXPECT_EQ(tool.symmetryFlags, 0U);
  EXPECT_EQ(tool.runtimeIndexA, -1);
  EXPECT_EQ(tool.runtimeIndexB, -1);
  EXPECT_TRUE(tool.fileVersion == 0 && tool.lateFlag == 0 && tool.lateFlag2 == 0);
  EXPECT_EQ(tool.specialToolPath[0], '\0');
  EXPECT_EQ(tool.tailText[0], '\0');
  // Of a text only the first byte is certain.
  std::memset(tool.specialToolPath, 0, sizeof tool.specialToolPath);
  std::memset(tool.tailText, 0, sizeof tool.tailText);
  Checker defaults(0);
  storedTool(defaults, 180, true, 0, tool);
}

TEST(Tool, NameIsEmptyAfterEveryRead) {
  for (const Bytes& bytes : {Bytes(), writtenTool(OldTool(), 110, false)}) {
    OldTool tool;
    tool.name = "PUNCH";
    (void)readTool(bytes, 110, false, tool);
    EXPECT_EQ(tool.name, "");
  }
}

// The flags that a tool of code 108 repeats by: compared in double, computed in single precision.
std::uint32_t symmetryOf(float dimension3) {
  const float offHalf = dimension3 - 1.0F;
  if (std::fabs(static_cast<double>(offHalf)) < 0.0001) return 1;
  const float offQuarter = dimension3 - 2.0F;
  return std::fabs(static_cast<double>(offQuarter)) < 0.0001 ? 2 : 0;
}

OldTool readWithDimension3(std::int32_t code, float dimension3, std::uint32_t flagsBefore, int version = 90) {
  OldTool stored = madeTool(code), tool;
  stored.dimension3 = dimension3;
  tool.symmetryFlags = flagsBefore;
  EXPECT_EQ(readTool(writtenTool(stored, version, true), version, true, tool), 0);
  return tool;
}

TEST(Tool, ThirdDimensionOfASpecialToolGivesItsSymmetry) {
  const float infinity = std::numeric_limits<float>::infinity();
  const struct {
    float dimension3;
    std::uint32_t flags;
  } cases[] = {{1.0F, 1},     {1.00005F, 1}, {0.99995F, 1}, {1.0002F, 0},  {0.9998F, 0},   {2.0F, 2},
               {2.00005F, 2}, {1.99995F, 2}, {2.0002F, 0},  {1.9998F, 0},  {0, 0},         {-1.0F, 0},
               {-2.0F, 0},    {3.0F, 0},     {1.5F, 0},     {infinity, 0}, {-infinity, 0}, {std::nanf(""), 0}};
  for (const auto& one : cases)
    for (const std::uint32_t before : {0U, 3U, 0xFFFFFFFFU})
      for (const int version : {52, 60, 90, 110, 180})
        EXPECT_EQ(readWithDimension3(108, one.dimension3, before, version).symmetryFlags, one.flags)
            << one.dimension3 << " at version " << version;
}

TEST(Tool, LimitOfTheSymmetryIsComparedInDouble) {
  // Every single near the four limits: their distance to 1 and 2 is exact in single precision.
  std::uint32_t seen = 0;
  for (const float limit : {0.9999F, 1.0001F, 1.9999F, 2.0001F}) {
    float value = limit;
    for (int i = 0; i < 40; ++i) value = std::nextafter(value, 0.0F);
    for (int i = 0; i < 80; ++i, value = std::nextafter(value, 9.0F)) {
      const std::uint32_t flags = readWithDimension3(108, value, 4).symmetryFlags;
      ASSERT_EQ(flags, symmetryOf(value)) << std::hexfloat << value;
      seen |= 1U << flags;
    }
  }
  EXPECT_EQ(seen, 7U) << "each result occurs";
}

TEST(Tool, OtherShapeCodesKeepTheirSymmetry) {
  for (const std::int32_t code : {0, 1, 3, 107, 109, 112, -108, 364, kIntMin}) {
    for (const float dimension3 : {0.0F, 1.0F, 2.0F})
      EXPECT_EQ(readWithDimension3(code, dimension3, 6).symmetryFlags, 6U) << code;
  }
}

TEST(Tool, TriangleStoresItsSecondDimensionFirst) {
  OldTool tool;
  tool.shapeCode = 107;
  tool.dimension1 = 3;
  tool.dimension2 = 4;
  for (const int version : {52, 90, 110, 111, 180}) {
    const Bytes bytes = written([&](auto& s) { return WriteOldTool(s, version, true, tool); });
    EXPECT_EQ(Bytes::of(bytes.span().subspan(16, 8)), Bytes().f32(4).f32(3));
    OldTool loaded;
    ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadOldTool(s, version, true, loaded); }), 0);
    EXPECT_EQ(loaded.dimension1, 3.0F);
    EXPECT_EQ(loaded.dimension2, 4.0F);
  }
}

TEST(Tool, MiddleTwoValuesAreLostBelowVersion110) {
  OldTool tool;
  for (int i = 0; i < 6; ++i) tool.firstValues[i] = tool.secondValues[i] = static_cast<float>(i + 1);
  const Bytes bytes = written([&](auto& s) { return WriteOldTool(s, 100, true, tool); });
  OldTool loaded;
  for (float& one : loaded.firstValues) one = 99;
  ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadOldTool(s, 100, true, loaded); }), 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(loaded.firstValues[i], i == 3 || i == 4 ? 0.0F : static_cast<float>(i + 1));
}

TEST(Tool, CountsAndIndicesAreNotChecked) {
  for (const std::int32_t count : {-1, 0, 6, 7, kIntMin, kIntMax})
    for (const int version : {52, 109, 110, 180}) {
      OldTool tool = madeTool(112, version), back;
      tool.firstValueCount = tool.secondValueCount = tool.specialToolIndex = count;
      ASSERT_EQ(readTool(writtenTool(tool, version, true), version, true, back), 0);
      EXPECT_EQ(back.firstValueCount, count);
      EXPECT_EQ(back.secondValueCount, count);
      EXPECT_EQ(back.specialToolIndex, count);
      EXPECT_EQ(back.firstValues[5], tool.firstValues[5]) << "all values are stored whatever the count";
    }
}

TEST(Tool, FloatsThatAreNotNumbersKeepTheirBits) {
  OldTool tool, back;
  tool.orientation = std::bit_cast<float>(0x7FC12345U);
  tool.dimension2 = std::bit_cast<float>(0xFFC54321U);
  tool.firstValues[5] = -0.0F;
  tool.extraValues[1] = std::numeric_limits<float>::denorm_min();
  const Bytes bytes = writtenTool(tool, 60, true);
  ASSERT_EQ(readTool(bytes, 60, true, back), 0);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(back.orientation), 0x7FC12345U);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(back.dimension2), 0xFFC54321U);
  EXPECT_EQ(writtenTool(back, 60, true), bytes);
}

// ---- stations ------------------------------------------------------------------------------------

TEST(ToolStation, TypeZeroHasAtLeastOneValue) {
  for (const int version : {52, 61, 90, 130})
    for (const std::int32_t type : {0, 1, 2, -1, 256})
      for (const std::int32_t count : {kIntMin, -1, 0, 1, 6, 7, kIntMax}) {
        Maker m;
        ToolStation made, loaded;
        storedStation(m, version, made);
        made.stationType = type;
        made.valueCount = count;
        const Bytes bytes = written([&](auto& s) { return WriteToolStation(s, version, made); });
        EXPECT_EQ(bytes, patched(patched(m.bytes, 8, Bytes().i32(type)), 36, Bytes().i32(count)))
            << "a save stores the count as it is";
        ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadToolStation(s, version, loaded); }), 0);
        EXPECT_EQ(loaded.valueCount, type == 0 && count < 1 ? 1 : count) << "type " << type;
        EXPECT_EQ(loaded.values[5], made.values[5]) << "all six values are stored";
      }
}

TEST(ToolStation, MorePairValuesRunOnIntoTheFieldsAfterThemWhichAreReadOver) {
  const ToolStation fresh;
  const std::size_t countEnd = written([&](auto& s) { return WriteToolStation(s, 99, fresh); }).size() + 4;
  const auto front = [&](int version) {
    return written([&](auto& s) { return WriteToolStation(s, version, fresh); }).cut(countEnd);
  };
  for (const std::int32_t count : {kIntMin, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 256, 2000000000, kIntMax})
    for (const int version : {100, 110, 112, 130}) {
      Bytes bytes = front(version);
      bytes.i32(count);
      for (int i = 0; i < std::min(count, 40); ++i) bytes.f32(static_cast<float>(i + 1));
      bytes.i32(101).i32(102).f32(103);
      if (version >= 110) bytes.i32(104);
      if (version >= 112) bytes.i32(105);
      if (version >= 130) bytes.i32(106).i32(107);
      ToolStation s;
      std::size_t consumed = 0;
      const int result = readFrom(
          bytes, [&](auto& in) { return ReadToolStation(in, version, s); }, &consumed);
      if (count > 9) {
        EXPECT_EQ(result, 1);
        EXPECT_EQ(consumed, countEnd + 4) << "refused as soon as the count has been read";
        EXPECT_TRUE(s.pairValues[0] == 0 && s.wordE == 0 && s.wordJ == 0);
        continue;
      }
      ASSERT_EQ(result, 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(s.pairValues[0], count >= 1 ? 1.0F : 0.0F);
      EXPECT_EQ(s.pairValues[1], count >= 2 ? 2.0F : 0.0F);
      EXPECT_EQ(s.wordE, 101U);
      EXPECT_EQ(s.wordF, 102);
      EXPECT_EQ(s.realF, 103.0F);
      const auto spilled = [&](int at, std::uint32_t stored, bool isStored) {
        if (isStored) return stored;
        return count > at ? std::bit_cast<std::uint32_t>(static_cast<float>(at + 1)) : 0U;
      };
      EXPECT_EQ(s.wordG, spilled(5, 104, version >= 110));
      EXPECT_EQ(s.wordH, spilled(6, 105, version >= 112));
      EXPECT_EQ(s.wordI, spilled(7, 106, version >= 130));
      EXPECT_EQ(s.wordJ, spilled(8, 107, version >= 130));
    }
}

TEST(ToolStation, CutAmongSurplusPairValuesKeepsThoseThatArrived) {
  Bytes bytes = written([&](auto& s) { return WriteToolStation(s, 99, ToolStation()); }).u32(7).i32(9);
  const std::size_t first = bytes.size();
  for (int i = 0; i < 9; ++i) bytes.f32(static_cast<float>(i + 1));
  const auto bits = [](int n) { return std::bit_cast<std::uint32_t>(static_cast<float>(n)); };
  for (std::size_t cut = first; cut < bytes.size(); ++cut) {
    ToolStation s;
    ASSERT_EQ(readFrom(bytes.cut(cut), [&](auto& in) { return ReadToolStation(in, 100, s); }), 1) << cut;
    const auto arrived = [&](int n) { return cut >= first + 4 * static_cast<std::size_t>(n) ? bits(n) : 0U; };
    EXPECT_EQ(bits(0) == arrived(1), s.pairValues[0] == 0) << cut;
    EXPECT_EQ(s.pairValues[1], cut >= first + 8 ? 2.0F : 0.0F) << cut;
    EXPECT_EQ(s.wordE, arrived(3)) << cut;
    EXPECT_EQ(static_cast<std::uint32_t>(s.wordF), arrived(4)) << cut;
    EXPECT_EQ(s.realF, cut >= first + 20 ? 5.0F : 0.0F) << cut;
    EXPECT_EQ(s.wordG, arrived(6)) << cut;
    EXPECT_EQ(s.wordH, arrived(7)) << cut;
    EXPECT_EQ(s.wordI, arrived(8)) << cut;
    EXPECT_EQ(s.wordJ, arrived(9)) << cut;
  }
}

// ---- lists of stations and tools -----------------------------------------------------------------

int readList(const Bytes& bytes, int version, ToolStationList& list) {
  return readFrom(bytes, [&](InStream& s) { return ReadToolStationList(s, version, list); });
}
// A list with a plain and a special tool.
Bytes storedList(int version, ToolStationList& made) {
  Maker m;
  storedStations(m, version, {1, 108}, made);
  return m.bytes;
}
Bytes storedList(int version) {
  ToolStationList made;
  return storedList(version, made);
}
std::size_t headSize(int version) {
  return 8 + (version >= 61 ? 4U : 0U) + (version >= 90 ? 4U : 0U) + (version >= 100 ? 12U : 0U);
}

TEST(ToolStationList, ModeCodeIsBits8To11OfTheModeWord) {
  const std::pair<std::int64_t, std::uint32_t> cases[] = {{0, 0},          {2, 0},         {0xFF, 0},   {0x100, 1},
                                                          {0x0A02, 10},    {0xF00, 15},    {0x1000, 0}, {0x1F00, 15},
                                                          {0xFFFFF5FF, 5}, {0xFFFFF0FF, 0}};
  for (const auto& [word, code] : cases) {
    ToolStationList list;
    ASSERT_EQ(readList(Bytes().i32(0).i32(0).i32(word).i32(0), 90, list), 0);
    EXPECT_EQ(list.stationModeCode, code) << word;
  }
  ToolStationList list;
  list.stationModeCode = 9;
  ASSERT_EQ(readList(Bytes().i32(0).i32(0).i32(0), 80, list), 0);
  EXPECT_EQ(list.stationModeWord, 2U);
  EXPECT_EQ(list.stationModeCode, 0U);
}

TEST(ToolStationList, ExtraWordCountMustBeOneOrTwo) {
  for (const std::int32_t count : {kIntMin, -1, 0, 1, 2, 3, 4, 2000000000, kIntMax}) {
    ToolStationList list;
    list.extraWords[0] = list.extraWords[1] = 99;
    list.stations.resize(2);
    list.tools.resize(2);
    Bytes bytes = Bytes().i32(0).i32(0).i32(0).i32(count);
    for (int i = 0; i < std::min(count, 2); ++i) bytes.i32(7 + i);
    const bool good = count == 1 || count == 2;
    EXPECT_EQ(readList(bytes.i32(-1), 100, list), good ? 0 : 1) << count;
    EXPECT_EQ(list.extraWords[0], good ? 7U : 0U);
    EXPECT_EQ(list.extraWords[1], count == 2 ? 8U : 0U);
    EXPECT_EQ(list.stations.size(), good ? 0U : 2U);
  }
}

TEST(ToolStationList, CountOfZeroKeepsTheListsAndANegativeOneEmptiesThem) {
  for (const int version : {52, 61, 90, 100, 180})
    for (const std::int32_t count : {0, -1, -2, kIntMin}) {
      ToolStationList list;
      list.stations.resize(2);
      list.tools.resize(2);
      const Bytes all = storedList(version);
      const std::size_t countAt = headSize(version) - 4;
      std::size_t consumed = 0;
      EXPECT_EQ(readFrom(
                    patched(all, countAt, Bytes().i32(count)),
                    [&](InStream& s) { return ReadToolStationList(s, version, list); }, &consumed),
                0);
      EXPECT_EQ(consumed, countAt + 4);
      EXPECT_EQ(list.stations.size(), count == 0 ? 2U : 0U);
      EXPECT_EQ(list.tools.size(), count == 0 ? 2U : 0U);
    }
}

TEST(ToolStationList, CountBeyondTheFileFailsWithWhatIsThere) {
  for (const std::int64_t count : {3LL, 1000LL, 2000000000LL, static_cast<long long>(kIntMax)})
    for (const int version : {52, 90, 130}) {
      ToolStationList list;
      const Bytes bytes = patched(storedList(version), headSize(version) - 4, Bytes().i32(count));
      EXPECT_EQ(readList(bytes, version, list), 1);
      EXPECT_EQ(list.stations.size(), 2U);
      EXPECT_EQ(list.tools.size(), 2U);
    }
}

TEST(ToolStationList, StationStartsFreshWhateverTheOneBeforeItHeld) {
  // Only the first station fills words that version 100 does not store.
  const Bytes whole = written([&](auto& s) { return WriteToolStation(s, 100, ToolStation()); });
  Bytes rich = written([&](auto& s) { return WriteToolStation(s, 99, ToolStation()); }).u32(0).i32(9);
  for (int i = 0; i < 9; ++i) rich.f32(1);
  rich.zeros(12);
  const Bytes tool = writtenTool(OldTool(), 100, true);
  ToolStationList list;
  const Bytes head = Bytes().zeros(12).i32(2).zeros(8).i32(2);
  ASSERT_EQ(readList(Bytes(head).add(rich).add(tool).add(whole).add(tool), 100, list), 0);
  EXPECT_NE(list.stations.at(0).wordJ, 0U);
  const ToolStation& second = list.stations.at(1);
  EXPECT_TRUE(second.wordG == 0 && second.wordH == 0 && second.wordI == 0 && second.wordJ == 0);
}

TEST(ToolStationList, ListsOfDifferentLengthCannotBeStored) {
  ToolStationList list;
  AddToolStation(list, ToolStation());
  bool ok = true;
  (void)written([&](auto& s) { return WriteToolStationList(s, 52, list); }, &ok);
  EXPECT_FALSE(ok);
  AddTool(list, OldTool());
  (void)written([&](auto& s) { return WriteToolStationList(s, 52, list); }, &ok);
  EXPECT_TRUE(ok);
}

TEST(ToolStationList, StationWhoseToolCannotBeReadStays) {
  ToolStationList made;
  made.stations.resize(2);
  made.tools.resize(2);
  const Bytes bytes = written([&](auto& s) { return WriteToolStationList(s, 52, made); });
  ToolStationList list;
  EXPECT_EQ(readFrom(bytes.cut(bytes.size() - 1), [&](auto& s) { return ReadToolStationList(s, 52, list); }), 1);
  EXPECT_EQ(list.stations.size(), 2U);
  EXPECT_EQ(list.tools.size(), 1U);
}

TEST(ToolStationList, AddingAppendsCopies) {
  ToolStationList list;
  const ToolStationList made = (storedList(180, list), list);
  ToolStation station;
  OldTool tool;
  station.stationNumber = 9;
  tool.auxWord1 = 4711;
  AddToolStation(list, station);
  AddTool(list, tool);
  station.stationNumber = 0;
  tool.auxWord1 = 0;
  ASSERT_EQ(list.stations.size(), 3U);
  ASSERT_EQ(list.tools.size(), 3U);
  EXPECT_EQ(list.stations[2].stationNumber, 9);
  EXPECT_EQ(list.tools[2].auxWord1, 4711U);
  EXPECT_EQ(list.stations[0].stationNumber, made.stations[0].stationNumber);
}

// ---- a file that ends in its last station --------------------------------------------------------

TEST(StationAtTheEndOfAFile, ReaderOfAStationSucceedsAfterWordH) {
  Maker m;
  ToolStation made;
  storedStation(m, 130, made);
  for (std::size_t missing = 0; missing <= 9; ++missing) {
    ToolStation s;
    s.wordI = 91;
    s.wordJ = 92;
    EXPECT_EQ(
        readFrom(m.bytes.cut(m.bytes.size() - missing), [&](auto& from) { return ReadToolStation(from, 130, s); }),
        missing > 8 ? 1 : 0);
    EXPECT_EQ(s.wordH, missing > 8 ? 0U : made.wordH);
    EXPECT_EQ(s.wordI, missing > 4 ? 91U : made.wordI) << missing;
    EXPECT_EQ(s.wordJ, missing > 0 ? 92U : made.wordJ) << missing;
  }
}

TEST(StationAtTheEndOfAFile, ReaderOfTheListFailsForTheMissingTool) {
  ToolStationList made;
  const Bytes all = storedList(130, made);
  const std::size_t tool = writtenTool(made.tools[1], 130, true).size();
  const Bytes upToTool = all.cut(all.size() - tool);
  for (std::size_t missing = 0; missing <= 9; ++missing) {
    ToolStationList list;
    EXPECT_EQ(readList(upToTool.cut(upToTool.size() - missing), 130, list), 1) << missing;
    EXPECT_EQ(list.stations.size(), missing > 8 ? 1U : 2U);
    EXPECT_EQ(list.tools.size(), 1U);
    if (missing <= 8) {
      EXPECT_EQ(list.stations[1].stationNumber, made.stations[1].stationNumber);
    }
  }
}

}  // namespace
