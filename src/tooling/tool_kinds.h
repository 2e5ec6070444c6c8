// The kinds of tools, which are their shape codes.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "OldTorvIO/tool_inventory.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {

enum ToolKind : std::int32_t {
  kRoundTool = 1,
  kRectangleTool = 3,
  kShearTool = 9,
  kLaserTool = 33,
  kSquareTool = 103,
  kSingleDTool = 104,
  kDoubleDTool = 105,
  kObroundTool = 106,
  kTriangleTool = kTriangle,
  kCornerRoundedTool = 109,
  kRoundedCornersTool = 110,
  kGrTool = 112,
};

// Empty for a code without a name, and for a special tool, whose name is that of its file.
constexpr std::string_view nameOfToolKind(std::int32_t shapeCode) {
  struct Named {
    ToolKind kind;
    std::string_view name;
  };
  constexpr Named kNames[] = {
      {kRoundTool, "ROUND"},
      {kRectangleTool, "RECTANGLE"},
      {kShearTool, "RIGHT ANGLE SHEAR"},
      {kLaserTool, "LASER CUTTING TOOL"},
      {kSquareTool, "SQUARE"},
      {kSingleDTool, "SINGLE D"},
      {kDoubleDTool, "DOUBLE D"},
      {kObroundTool, "OBROUND"},
      {kTriangleTool, "TRIANGLE"},
      {kCornerRoundedTool, "CORNERR"},
      {kRoundedCornersTool, "ROUNDED C"},
      {kGrTool, "GR"},
  };
  for (const Named& named : kNames)
    if (named.kind == shapeCode) return named.name;
  return {};
}

// The file of a special tool of an inventory; null if no file has its index.
inline const std::array<char, 256>* specialToolFileOf(const OldToolInventory& inventory, const OldTool& tool) {
  // For an index below 1 this is larger than any list.
  const std::uint64_t position = static_cast<std::uint64_t>(std::int64_t{tool.specialToolIndex}) - 1;
  return position < inventory.specialToolFiles.size() ? &inventory.specialToolFiles[static_cast<std::size_t>(position)]
                                                      : nullptr;
}

}  // namespace oldtorvio
