// What queries read from the nest of a sheet: which station list its tool numbers refer to, and which numbers it uses.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>

#include "OldTorvIO/sheet.h"

namespace oldtorvio {

inline bool usesSecondStationList(const OldMachine& machine) {
  return machine.stationWord != 0 && !machine.stationsB.stations.empty();
}
// The list in which the tool numbers of a nest are 1-based positions.
inline const ToolStationList& stationListOf(const OldMachine& machine) {
  return usesSecondStationList(machine) ? machine.stationsB : machine.stationsA;
}

// A tool number of a nest and where it comes from. There may be no station with that number.
struct ToolUse {
  static constexpr std::size_t kOfSheet = static_cast<std::size_t>(-1);

  std::int64_t number = 0;
  std::size_t part = kOfSheet;        // that the item or slot belongs to
  std::size_t pattern = 0;            // of an item of a part
  std::size_t position = 0;           // of the item or slot
  const ProcessSlot* slot = nullptr;  // null for an item. A slot uses the tool only if its station has a tool count
};

// Calls see(use) for the tool number of each item and of each active slot of the parts and of the sheet, in this order.
template <class See>
void eachToolUse(const OldSheet& sheet, const See& see) {
  const auto items = [&](const PatternItemList& list, std::size_t first, std::size_t part, std::size_t pattern) {
    for (std::size_t i = first; i < list.size(); ++i) see(ToolUse{list[i].toolNumber, part, pattern, i, nullptr});
  };
  const auto slots = [&](const ProcessSlots& all, int count, std::size_t part) {
    for (std::size_t i = 0; i < all.size() && static_cast<int>(i) < count; ++i) {
      const ProcessSlot& slot = all[i];
      if (slot.toolUse != 1 || slot.toolActive == 0) continue;
      const auto number =
          static_cast<std::int16_t>(slot.toolChoice != 0 ? slot.secondToolNumber : slot.firstToolNumber);
      see(ToolUse{number, part, 0, i, &slot});
    }
  };
  for (std::size_t part = 0; part < sheet.partList.parts.size(); ++part) {
    const TorvPart& one = sheet.partList.parts[part];
    for (std::size_t i = 0; i < one.patterns.size(); ++i) items(one.patterns[i].items, 0, part, i);
    slots(one.processSlots, one.processSlotCount, part);
  }
  // The first 28 items of the sheet are ignored.
  items(sheet.patternItems, 28, ToolUse::kOfSheet, 0);
  slots(sheet.processSlots, sheet.processSlotCount, ToolUse::kOfSheet);
}

// The number of the station that cuts the profiles of the nest, if there are such profiles and such a station.
std::optional<std::int64_t> specialStationOf(const OldSheet& sheet);

// The number of placements of a part. It wraps at 32 bits.
std::uint32_t quantityOf(const TorvPart& part);

}  // namespace oldtorvio
