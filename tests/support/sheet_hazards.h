// What a sheet may hold that ends the process by rule when it is saved or asked.
#pragma once
#include <algorithm>
#include <vector>

#include "src/frame/codec/writer.h"
#include "src/sheet/sheet_io.h"
#include "src/sheet/sheet_layout.h"

namespace testing_support {

// A save begins with the second block and ends the process when no block from there on can be stored.
inline bool blocksCanBeStored(const std::vector<oldtorvio::ShapeWorkBlock>& blocks, int version) {
  const auto canBeStored = [version](const oldtorvio::ShapeWorkBlock& block) {
    oldtorvio::codec::OutStream out;
    return oldtorvio::codec::writeRecord(out, version, block);
  };
  return blocks.empty() || std::any_of(blocks.begin() + 1, blocks.end(), canBeStored);
}

// A tool number one past the last station does when it counts; those that would not are left out as well.
inline bool namesNoStationPastTheLast(const oldtorvio::OldSheet& s) {
  const oldtorvio::OldMachine& m = s.machine;
  const auto& list = m.stationWord != 0 && !m.stationsB.stations.empty() ? m.stationsB : m.stationsA;
  const auto past = static_cast<std::int64_t>(list.stations.size()) + 1;
  const auto namesPast = [past](const oldtorvio::PatternItem& item) { return item.toolNumber == past; };
  const auto slotsName = [past](const oldtorvio::ProcessSlots& slots) {
    return std::any_of(std::begin(slots), std::end(slots), [past](const oldtorvio::ProcessSlot& slot) {
      return slot.firstToolNumber == past || slot.secondToolNumber == past;
    });
  };
  for (const oldtorvio::TorvPart& part : s.partList.parts) {
    for (const oldtorvio::Pattern& pattern : part.patterns)
      if (std::any_of(pattern.items.begin(), pattern.items.end(), namesPast)) return false;
    if (slotsName(part.processSlots)) return false;
  }
  return std::none_of(s.patternItems.begin(), s.patternItems.end(), namesPast) && !slotsName(s.processSlots);
}

}  // namespace testing_support
