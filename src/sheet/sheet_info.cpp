// GetOldSheetInfo: material, size and machine of a sheet, and the tools that its nest uses.
#include <algorithm>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/frame/end_process.h"
#include "src/frame/text/text.h"
#include "src/records/tool_text.h"
#include "src/sheet/sheet_file.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Whether a profile uses the special station of the machine.
bool usesSpecialStation(const ProfileRecord& profile) {
  return static_cast<std::int32_t>(profile.profileWords[1]) % 10 == 7 && profile.firstBlock.motionKind != 5 &&
         profile.profileCondition1 != 0 && profile.profileCondition2 != 0;
}

bool nestUsesSpecialStation(const OldSheet& sheet) {
  const auto anyOfPattern = [](const Pattern& pattern) {
    return std::ranges::any_of(pattern.profiles, usesSpecialStation);
  };
  const auto anyOfPart = [&](const TorvPart& part) { return std::ranges::any_of(part.patterns, anyOfPattern); };
  return std::ranges::any_of(sheet.profiles, usesSpecialStation) ||
         std::ranges::any_of(sheet.partList.parts, anyOfPart);
}

// The tool numbers of a nest in order of first use.
class UsedTools {
 public:
  explicit UsedTools(const OldSheet& sheet)
      : list_(sheet.machine.stationWord != 0 && !sheet.machine.stationsB.stations.empty() ? sheet.machine.stationsB
                                                                                          : sheet.machine.stationsA) {
    for (const TorvPart& part : sheet.partList.parts) {
      for (const Pattern& pattern : part.patterns)
        for (const PatternItem& item : pattern.items) note(item.toolNumber);
      slots(part.processSlots, part.processSlotCount);
    }
    // The first 28 items of the sheet are ignored.
    constexpr std::size_t kFirstItem = 28;
    for (std::size_t i = kFirstItem; i < sheet.patternItems.size(); ++i) note(sheet.patternItems[i].toolNumber);
    slots(sheet.processSlots, sheet.processSlotCount);
    noteSpecialStation(sheet);
  }

  // An item equal to the one before it is left out.
  std::string text() const {
    std::string all = ",", last;
    for (const std::int64_t number : numbers_) {
      const std::string item = toolText(at(list_.tools, number));
      if (item.empty() || item == last) continue;
      all.append(item).append(",");
      last = item;
    }
    return all;
  }

 private:
  // The number after the last station is accepted too; at() then ends the process.
  bool passes(std::int64_t number) const { return number >= 1 && number <= last_; }
  template <class T>
  static const T& at(const std::vector<T>& list, std::int64_t number) {
    if (number > static_cast<std::int64_t>(list.size())) EndProcess();
    return list[static_cast<std::size_t>(number - 1)];
  }

  void note(std::int64_t number) {
    if (!passes(number) || isNoted_[static_cast<std::size_t>(number)] != 0) return;
    isNoted_[static_cast<std::size_t>(number)] = 1;
    numbers_.push_back(number);
  }
  void slots(const ProcessSlots& all, int count) {
    for (std::size_t i = 0; i < all.size() && static_cast<int>(i) < count; ++i) {
      const ProcessSlot& slot = all[i];
      if (slot.toolUse != 1 || slot.toolActive == 0) continue;
      const auto number =
          static_cast<std::int16_t>(slot.toolChoice != 0 ? slot.secondToolNumber : slot.firstToolNumber);
      if (passes(number) && at(list_.stations, number).toolCount != 0) note(number);
    }
  }
  void noteSpecialStation(const OldSheet& sheet) {
    constexpr std::int32_t kCombined = 4;
    constexpr unsigned kSpecial = 2;
    if (sheet.machine.machineKind != kCombined || !nestUsesSpecialStation(sheet)) return;
    const auto special = std::ranges::find_if(list_.stations, [](auto& s) { return (s.byteA & kSpecial) != 0; });
    if (special != list_.stations.end()) note(special - list_.stations.begin() + 1);
  }

  const ToolStationList& list_;
  std::int64_t last_ = static_cast<std::int64_t>(list_.stations.size()) + 1;
  std::vector<std::uint8_t> isNoted_ = std::vector<std::uint8_t>(list_.stations.size() + 2);  // by number
  std::vector<std::int64_t> numbers_;
};

std::string partNamesOf(const OldSheet& sheet) {
  std::string all = ",";
  for (const TorvPart& part : sheet.partList.parts) all.append(fixedText(part.partName)).append(",");
  return all;
}

void copyOutSized(const std::string& text, char* to, std::int32_t size, std::int32_t* length) {
  std::uint32_t needed = 0;
  copyOutBounded(text, to, size, needed);
  *length = static_cast<std::int32_t>(needed);
}

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t GetOldSheetInfo(const char* path, char* materialName, char* materialGroup, char* materialType,
                                   char* materialText3, char* materialText4, char* materialText5, char* machinePath,
                                   char* sheetLabel, char* materialFile, float* width, float* height, float* thickness,
                                   double* lateValue, char* partNames, int32_t partNamesSize, int32_t* partNamesLength,
                                   char* tools, int32_t toolsSize, int32_t* toolsLength) noexcept {
  return withSheet(path, isKnownSheetVersion, [&](const OldSheet& sheet, int) {
    // Everything that allocates comes before the first output.
    const std::string material = std::string(fixedText(sheet.paramTable.name)) + ".mat";
    const std::string names = partNamesOf(sheet);
    const std::string usedTools = UsedTools(sheet).text();

    copyOut(materialName, material);
    copyOut(materialFile, material);
    copyOut(materialGroup, fixedText(sheet.materialGroup));
    copyOut(materialType, fixedText(sheet.materialType));
    copyOut(materialText3, fixedText(sheet.materialText3));
    copyOut(materialText4, fixedText(sheet.materialText4));
    copyOut(materialText5, fixedText(sheet.materialText5));
    copyOut(machinePath, fixedText(sheet.machine.path));
    copyOut(sheetLabel, fixedText(sheet.sheetLabel));
    *width = sheet.width;
    *height = sheet.height;
    *thickness = sheet.thickness;
    *lateValue = sheet.lateValue;
    copyOutSized(names, partNames, partNamesSize, partNamesLength);
    copyOutSized(usedTools, tools, toolsSize, toolsLength);
  });
}
