// GetOldSheetInfo: material, size and machine of a sheet, and the tools that its nest uses.
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/frame/end_process.h"
#include "src/frame/text/text.h"
#include "src/records/tool_text.h"
#include "src/sheet/nest.h"
#include "src/sheet/sheet_file.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// The tool numbers of a nest in order of first use.
class UsedTools {
 public:
  explicit UsedTools(const OldSheet& sheet) : list_(stationListOf(sheet.machine)) {
    eachToolUse(sheet, [this](const ToolUse& use) {
      const bool isUsed = use.slot == nullptr || (passes(use.number) && at(list_.stations, use.number).toolCount != 0);
      if (isUsed) note(use.number);
    });
    if (const auto special = specialStationOf(sheet)) note(*special);
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
