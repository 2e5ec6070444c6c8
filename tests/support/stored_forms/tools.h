// Tools, stations and their lists.
#pragma once
#include <utility>
#include <vector>

#include "tests/support/stored_forms/walkers.h"

namespace testing_support {

template <class M>
void storedTool(M& m, int version, bool pathIsStored, std::int32_t shapeCode, OldTool& t) {
  m.number(t.orientation);
  m.fixed(t.shapeCode, shapeCode);
  since(m, shapeCode == 108 && version >= 90, [&](auto& n) { n.block(t.specialBlock); });
  m.number(t.specialToolIndex);
  since(m, shapeCode == 108 && pathIsStored, [&](auto& n) { n.block(t.specialToolPath); });
  m.number(t.auxWord1);
  if (shapeCode == 107) {
    numbers(m, t.dimension2, t.dimension1);
  } else {
    numbers(m, t.dimension1, t.dimension2);
  }
  m.number(t.dimension3);
  for (auto [count, row] :
       {std::pair{&t.firstValueCount, &t.firstValues}, std::pair{&t.secondValueCount, &t.secondValues}}) {
    m.number(*count);
    for (int i : {0, 1, 2}) m.number((*row)[i]);
    if (version >= 110) numbers(m, (*row)[3], (*row)[4]);
    m.number((*row)[5]);
    if (version < 110)
      for (int i : {3, 4}) m.reset((*row)[i], 0.0F);
  }
  numbers(m, t.auxWord2, t.auxWord3);
  since(m, version >= 60, [&](auto& n) { each(n, t.extraValues); });
  since(m, version >= 110, [&](auto& n) { each(n, t.lateWords); });
  since(m, version >= 111, [&](auto& n) {
    n.block(t.tailBlock);
    n.block(t.tailText);
  });
}

template <class M>
void storedStation(M& m, int version, ToolStation& s) {
  numbers(m, s.stationNumber, s.orientation, s.stationType, s.toolCount, s.stationValue);
  each(m, s.limits);
  m.number(s.valueCount);
  each(m, s.values);
  each(m, s.offsets);
  numbers(m, s.byteA, s.byteB, s.byteD, s.realC);
  since(m, version >= 60, [&](auto& n) { numbers(n, s.placeValue, s.placeWord); });
  since(m, version >= 61, [&](auto& n) {
    each(n, s.wordsC);
    each(n, s.realsE);
  });
  since(m, version >= 90, [&](auto& n) {
    numbers(n, s.wordA, s.realA);
    numberOr(n, s.realB, -1.0F);
    numbers(n, s.wordB, s.realD, s.byteF, s.byteG, s.byteH);
    n.block(s.stationText);
    numbers(n, s.byteC, s.byteE);
  });
  since(m, version >= 100, [&](auto& n) {
    n.number(s.wordD);
    n.stored(2);
    each(n, s.pairValues);
    numbers(n, s.wordE, s.wordF, s.realF);
  });
  since(m, version >= 110, [&](auto& n) { n.number(s.wordG); });
  since(m, version >= 112, [&](auto& n) { n.number(s.wordH); });
  since(m, version >= 130, [&](auto& n) { numbers(n, s.wordI, s.wordJ); });
}

// Stations with tools of the shape codes given.
template <class M>
void storedStations(M& m, int version, const std::vector<std::int32_t>& codes, ToolStationList& l) {
  m.number(l.headerWord);
  if (version >= 61)
    m.number(l.secondHeaderWord);
  else
    m.reset(l.secondHeaderWord, 0U);
  if (version >= 90)
    m.number(l.stationModeWord);
  else
    m.reset(l.stationModeWord, 2U);
  m.reset(l.stationModeCode, (l.stationModeWord >> 8U) & 0xFU);
  const bool clearsExtraWords = m.reaches(0);
  if (version >= 100) m.stored(2);
  for (std::uint32_t& word : l.extraWords) {
    if (version >= 100)
      m.preset(word, 0U, clearsExtraWords);
    else
      m.reset(word, 0U);
  }
  neverStored(m, [&](auto& n) { n.number(l.spareWord); });
  const std::size_t count = codes.size();
  if (!m.size(l.stations, count)) return;
  if constexpr (!M::kChecks) m.resized(l.tools, count);
  for (std::size_t i = 0; i < count; ++i) {
    ToolStation noStation;
    OldTool noTool;
    Maker station, tool;
    storedStation(station, version, noStation);
    storedTool(tool, version, true, codes[i], noTool);
    if (i >= l.stations.size()) return m.dropped(station.bytes.size());
    storedStation(m, version, l.stations[i]);
    if (i >= l.tools.size()) return m.dropped(tool.bytes.size());
    storedTool(m, version, true, codes[i], l.tools[i]);
  }
}

}  // namespace testing_support
