// Loads of special tool files, and the current special tool.
#include "OldTorvIO.h"
#include "OldTorvIO/special_tool.h"
#include "src/tooling/tooling_file_records.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Never reset: what a file does not store keeps the value of the previous tool.
OldSpecialTool currentSpecialTool;

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t LoadOldSpecialTool(const char* path, OldSpecialTool* tool) noexcept {
  return loadRecord<FileKind::specialTool>(path, tool);
}

extern "C" int32_t OpenSpecialToolFile(const char* path, uint32_t* shapeCount, float* orientation, float* specialValue,
                                       float* dimension1, float* dimension2, float* dimension3,
                                       int32_t* firstValueCount, float* firstValue0, float* firstValue1,
                                       float* firstValue2, float* firstValue3, float* firstValue4, float* firstValue5,
                                       int32_t* secondValueCount, float* secondValue0, float* secondValue1,
                                       float* secondValue2, float* secondValue3, float* secondValue4,
                                       float* secondValue5, float* extraValue0, float* extraValue1,
                                       uint8_t* lateFlag) noexcept {
  *shapeCount = 0;
  bool isAccepted = false;
  const auto read = [&](InStream& stream, int version) -> std::int64_t {
    isAccepted = true;
    return ReadSpecialTool(stream, version, currentSpecialTool);
  };
  const auto status = static_cast<std::int32_t>(loadRecord<FileKind::specialTool>(path, currentSpecialTool, read));
  // The record decides, not the status: a read that failed after the shapes still returns them.
  if (!isAccepted || currentSpecialTool.shapes.shapes.empty()) return status;

  const OldTool& tool = currentSpecialTool.tool;
  *shapeCount = static_cast<std::uint32_t>(currentSpecialTool.shapes.shapes.size());
  *orientation = tool.orientation;
  *specialValue = currentSpecialTool.specialValue;
  *dimension1 = tool.dimension1;
  *dimension2 = tool.dimension2;
  *dimension3 = tool.dimension3;
  *firstValueCount = tool.firstValueCount;
  *firstValue0 = tool.firstValues[0];
  *firstValue1 = tool.firstValues[1];
  *firstValue2 = tool.firstValues[2];
  *firstValue3 = tool.firstValues[3];
  *firstValue4 = tool.firstValues[4];
  *firstValue5 = tool.firstValues[5];
  *secondValueCount = tool.secondValueCount;
  *secondValue0 = tool.secondValues[0];
  *secondValue1 = tool.secondValues[1];
  *secondValue2 = tool.secondValues[2];
  *secondValue3 = tool.secondValues[3];
  *secondValue4 = tool.secondValues[4];
  *secondValue5 = tool.secondValues[5];
  *extraValue0 = tool.extraValues[0];
  *extraValue1 = tool.extraValues[1];
  *lateFlag = tool.lateFlag;
  return status;
}

extern "C" void GetShapeAt(int32_t index, int32_t* type, float* x, float* y, float* value0, float* value1,
                           float* value2, float* value3) noexcept {
  const std::vector<Shape>& shapes = currentSpecialTool.shapes.shapes;
  if (index < 0 || static_cast<std::size_t>(index) >= shapes.size()) return;
  const Shape& shape = shapes[static_cast<std::size_t>(index)];
  *type = shape.type;
  *x = shape.x;
  *y = shape.y;
  *value0 = shape.values[0];
  *value1 = shape.values[1];
  *value2 = shape.values[2];
  *value3 = shape.values[3];
}
