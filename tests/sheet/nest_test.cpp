// What a nest uses: each tool number with the place where it is.
#include "src/sheet/nest.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

namespace {

using namespace oldtorvio;

// Number, part, pattern, position and whether it is a slot's.
using Place = std::tuple<std::int64_t, std::size_t, std::size_t, std::size_t, bool>;

std::vector<Place> placesOf(const OldSheet& sheet) {
  std::vector<Place> places;
  eachToolUse(sheet, [&](const ToolUse& use) {
    places.emplace_back(use.number, use.part, use.pattern, use.position, use.slot != nullptr);
  });
  return places;
}

PatternItem itemOf(std::int16_t tool) {
  PatternItem item;
  item.toolNumber = tool;
  return item;
}

void useTool(ProcessSlot& slot, std::uint16_t first, std::uint16_t second, bool isSecond) {
  slot.toolUse = 1;
  slot.toolActive = 1;
  slot.toolChoice = isSecond ? 1 : 0;
  slot.firstToolNumber = first;
  slot.secondToolNumber = second;
}

TEST(ToolUses, HaveTheirPartPatternAndPosition) {
  const auto sheet = std::make_unique<OldSheet>();
  sheet->partList.parts.resize(2);
  TorvPart& part = sheet->partList.parts[1];
  part.patterns.resize(2);
  part.patterns[1].items = {itemOf(11), itemOf(12)};
  useTool(part.processSlots[2], 13, 14, true);
  useTool(part.processSlots[3], 15, 16, false);
  part.processSlotCount = 3;  // the slots after these are none
  EXPECT_EQ(placesOf(*sheet), (std::vector<Place>{{11, 1, 1, 0, false}, {12, 1, 1, 1, false}, {14, 1, 0, 2, true}}));
}

TEST(ToolUses, OfTheSheetBelongToNoPart) {
  const auto sheet = std::make_unique<OldSheet>();
  for (std::int16_t tool = 1; tool <= 30; ++tool) sheet->patternItems.push_back(itemOf(tool));
  useTool(sheet->processSlots[1], 40, 41, false);
  sheet->processSlotCount = 2;
  // The first 28 items are ignored.
  const std::size_t none = SIZE_MAX;
  EXPECT_EQ(placesOf(*sheet),
            (std::vector<Place>{{29, none, 0, 28, false}, {30, none, 0, 29, false}, {40, none, 0, 1, true}}));
}

}  // namespace
