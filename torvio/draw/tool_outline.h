// The outlines of tools: what their shape code and dimensions say about the hole that they make.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

#include "OldTorvIO/pattern_item.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/tool_station.h"
#include "torvio/draw/svg.h"

namespace oldtorvio::draw {

// Degrees in a radian.
inline constexpr double kDegrees = 57.29577951308232;

// "ROUND", "SPECIAL TOOL", ...; empty for 0 and for codes without a name.
std::string_view toolKind(std::int32_t shapeCode);

struct Extent {
  double width = 0, height = 0;
};
// The size of the tool at orientation 0. Nothing for a tool without an outline: a special tool, whose outline is in a
// file of its own, a shear, a laser, an unknown code, or dimensions that are not positive numbers.
std::optional<Extent> outlineOf(const OldTool& tool);

// Appends the outline, centred and turned by its orientation and by `turned` in radians. False if there is none.
bool appendOutline(Path& path, const OldTool& tool, Point centre, double scale, double turned = 0);

inline constexpr const char* kDimensionsAssumed =
    "dimension1 is the diameter or width, dimension2 the height or the distance to a flat, dimension3 the radius of "
    "rounded corners; a triangle has two sides at a right angle";

// "0.5", "2 x 0.25", "2 x 0 x 0.1": the dimensions of a tool up to the last that is not 0. The third dimension of a
// special tool is left out if it is the code of its symmetry.
std::string dimensionText(const OldTool& tool);

// Whether a station of a part or macro holds a tool: shape code 0 means that there is none.
inline bool holdsTool(const ToolStation&, const OldTool& tool) { return tool.shapeCode != 0; }
// A station of a machine also counts its tools, and its query returns none if the count is below 1.
inline bool machineHoldsTool(const ToolStation& station, const OldTool& tool) {
  return station.toolCount >= 1 && tool.shapeCode != 0;
}

// The tool of a station number, which is 1-based; null if the list has no such station.
const OldTool* toolAt(const ToolStationList& list, std::int64_t number);

// Places the shapes of a list, in order. A member of a group is stored in the coordinates of its head: relative to the
// placing point of the head, and turned by its angle.
class ShapePlaces {
 public:
  struct Place {
    double x = 0, y = 0;  // in length units
    double turned = 0;    // in radians
  };
  Place placeOf(const Shape& shape);
  bool hasMembers() const { return hasMembers_; }  // so far

 private:
  Place head_;
  bool hasHead_ = false, hasMembers_ = false;
};

inline constexpr const char* kGroupsAssumed =
    "a shape of a group belongs to the last head before it, is placed from there, and turned by its angle in radians";

// The shapes of a part or of a sheet as marks: the outline of the tool of each, else a cross.
struct WorkMarks {
  Path outlines, crosses;
  std::uint64_t drawn = 0;
  std::uint64_t outside = 0;  // marks outside `limits`, or without a place
  std::uint64_t left = 0;     // marks beyond the cap
  bool hasGroups = false;
};
// `limits` are in length units with y up; the marks are scaled and turned upside down, relative to `origin`. `cross` is
// half the size of a cross.
WorkMarks marksOf(const ShapeList& shapes, const PatternItemList* items, const ToolStationList* tools,
                  const Box& limits, Point origin, double scale, std::uint64_t cap, double cross = 1.6);

}  // namespace oldtorvio::draw
