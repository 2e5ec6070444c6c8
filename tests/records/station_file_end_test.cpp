// Station lists of files that end within their last station: the station's reader forgives more than the list's.
#include <gtest/gtest.h>

#include <cstdint>

#include "OldTorvIO/records.h"
#include "src/records/record_io.h"
#include "tests/support/bytes.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// One station as version 130 stores it, up to and with row 36.
Bytes stationUpToWordH(std::int32_t number) {
  Bytes b;
  b.i32(number).f32(0.5F).i32(2).i32(3).f32(1.5F);   // stationNumber to stationValue
  b.f32(1).f32(2).f32(3).f32(4).i32(1).zeros(24);    // limits, valueCount, values
  b.zeros(12).u8(1).u8(2).u8(3).f32(4);              // offsets, byteA, byteB, byteD, realC
  b.f32(5).u32(6).zeros(20).zeros(16);               // placeValue to realsE
  b.u32(7).f32(8).f32(9).u32(10).f32(11);            // wordA to realD
  b.u8(12).u8(13).u8(14).zeros(24).u8(15).u8(16);    // byteF to byteE
  b.u32(17).i32(2).f32(18).f32(19).u32(20).i32(21);  // wordD to wordF
  return b.f32(22).u32(23).u32(24);                  // realF, wordG, wordH
}
Bytes station(std::int32_t number) { return stationUpToWordH(number).u32(25).u32(26); }

// A tool without a special block, with its path.
Bytes tool() {
  ToolStationList one;
  one.stations.resize(1);
  one.tools.resize(1);
  one.tools[0].shapeCode = 1;
  const Bytes all = written([&](auto& to) { return WriteToolStationList(to, 130, one); });
  return Bytes::of(all.span().subspan(4 + 4 + 4 + 4 + 8 + 4 + station(1).size()));
}

Bytes listHead(std::int32_t count) { return Bytes().u32(1).u32(2).u32(0x300).i32(2).u32(4).u32(5).i32(count); }

int readStation(const Bytes& b, ToolStation& s) {
  return readFrom(b, [&](auto& from) { return ReadToolStation(from, 130, s); });
}
int readList(const Bytes& b, ToolStationList& list) {
  return readFrom(b, [&](auto& from) { return ReadToolStationList(from, 130, list); });
}

TEST(StationAtTheEndOfAFile, TheReaderOfAStationSucceedsAfterRow36) {
  const Bytes bytes = station(7);
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    ToolStation s;
    s.wordI = 91;
    s.wordJ = 92;
    EXPECT_EQ(readStation(bytes.cut(cut), s), cut < bytes.size() - 8 ? 1 : 0) << cut;
    if (cut < bytes.size() - 8) continue;
    EXPECT_EQ(s.stationNumber, 7);
    EXPECT_EQ(s.wordH, 24U);
    EXPECT_EQ(s.wordI, cut < bytes.size() - 4 ? 91U : 25U) << cut;
    EXPECT_EQ(s.wordJ, cut < bytes.size() ? 92U : 26U) << cut;
  }
}

TEST(StationAtTheEndOfAFile, TheReaderOfTheListFailsForTheMissingTool) {
  const Bytes first = station(1).add(tool());
  for (std::size_t missing = 0; missing <= 8; ++missing) {
    ToolStationList one;
    EXPECT_EQ(readList(listHead(1).add(station(1).cut(station(1).size() - missing)), one), 1) << missing;
    EXPECT_EQ(one.stations.size(), 1U);
    EXPECT_TRUE(one.tools.empty());

    ToolStationList two;
    EXPECT_EQ(readList(listHead(2).add(first).add(station(2).cut(station(2).size() - missing)), two), 1) << missing;
    ASSERT_EQ(two.stations.size(), 2U);
    EXPECT_EQ(two.tools.size(), 1U);
    EXPECT_EQ(two.stations[1].stationNumber, 2);
    EXPECT_EQ(two.stations[1].wordH, 24U);
  }
  ToolStationList complete;
  EXPECT_EQ(readList(listHead(1).add(first), complete), 0);
  EXPECT_EQ(complete.tools.size(), 1U);
}

TEST(StationAtTheEndOfAFile, AStationCutBeforeRow36IsNotKept) {
  const std::size_t end = stationUpToWordH(1).size();
  for (std::size_t cut = 0; cut < end; ++cut) {
    ToolStationList list;
    EXPECT_EQ(readList(listHead(1).add(station(1).cut(cut)), list), 1) << cut;
    EXPECT_TRUE(list.stations.empty()) << cut;
  }
}

}  // namespace
