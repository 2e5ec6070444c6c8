// Loads of tool inventories, and the current inventory.
#include <algorithm>
#include <string_view>

#include "OldTorvIO.h"
#include "src/frame/end_process.h"
#include "src/frame/text/text.h"
#include "src/records/tool_layout.h"
#include "src/tooling/tool_kinds.h"
#include "src/tooling/tooling_file_records.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Never reset: what a file does not store keeps the value of the previous inventory.
OldToolInventory currentToolInventory;

// A code without a name leaves the buffer unchanged.
void copyOutName(const OldTool& tool, char* name) {
  if (tool.shapeCode == kSpecialTool) {
    const auto* const file = specialToolFileOf(currentToolInventory, tool);
    if (file == nullptr) EndProcessForSubscript();
    copyOut(name, baseName(fixedText(*file)));
    return;
  }
  const std::string_view kind = nameOfToolKind(tool.shapeCode);
  if (!kind.empty()) copyOut(name, kind);
}

void copyOutValues(std::int32_t count, const float (&values)[6], float* const (&to)[6]) {
  if (count < 1 || count > 6) return;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) *to[i] = values[i];
}

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t LoadOldToolInventory(const char* path, OldToolInventory* inventory) noexcept {
  return loadRecord<FileKind::toolInventory>(path, inventory);
}

extern "C" int32_t LoadOldToolInventoryForCount(const char* path, uint32_t* count) noexcept {
  *count = 0;
  const auto read = [&](InStream& stream, int version) {
    attempt([&] {
      if (ReadToolInventory(stream, version, currentToolInventory) == 0)
        *count = static_cast<std::uint32_t>(currentToolInventory.tools.size());
    });
    return kDone;
  };
  return static_cast<std::int32_t>(loadRecord<FileKind::toolInventory>(path, currentToolInventory, read));
}

extern "C" void GetOldToolInventoryInformation(int32_t index, char* name, float* dimension1, float* dimension2,
                                               float* dimension3, float* orientation, int32_t* firstValueCount,
                                               float* firstValue0, float* firstValue1, float* firstValue2,
                                               float* firstValue3, float* firstValue4, float* firstValue5,
                                               int32_t* secondValueCount, float* secondValue0, float* secondValue1,
                                               float* secondValue2, float* secondValue3, float* secondValue4,
                                               float* secondValue5) noexcept {
  const std::vector<OldTool>& tools = currentToolInventory.tools;
  if (index < 0 || static_cast<std::size_t>(index) >= tools.size()) EndProcess();
  const OldTool& tool = tools[static_cast<std::size_t>(index)];
  copyOutName(tool, name);
  *dimension1 = tool.dimension1;
  *dimension2 = tool.dimension2;
  *dimension3 = tool.dimension3;
  *orientation = tool.orientation;
  *firstValueCount = tool.firstValueCount;
  copyOutValues(tool.firstValueCount, tool.firstValues,
                {firstValue0, firstValue1, firstValue2, firstValue3, firstValue4, firstValue5});
  *secondValueCount = tool.secondValueCount;
  copyOutValues(tool.secondValueCount, tool.secondValues,
                {secondValue0, secondValue1, secondValue2, secondValue3, secondValue4, secondValue5});
}
