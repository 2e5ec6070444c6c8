#include "torvio/draw/tool_outline.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "src/records/shape_groups.h"
#include "src/tooling/tool_kinds.h"

namespace oldtorvio::draw {
namespace {

bool isLength(double value) { return std::isfinite(value) && value > 0; }

// Places the points of an outline: turned, scaled, upside down.
class Placer {
 public:
  Placer(Point centre, double scale, double angle)
      : centre_(centre), cos_(scale * std::cos(angle)), sin_(scale * std::sin(angle)) {}
  Point operator()(double x, double y) const {
    return {centre_.x + x * cos_ - y * sin_, centre_.y - (x * sin_ + y * cos_)};
  }

 private:
  Point centre_;
  double cos_, sin_;
};

void appendRound(Path& path, const Placer& at, double radius, double drawnRadius) {
  path.move(at(radius, 0)).arc(drawnRadius, false, at(-radius, 0)).arc(drawnRadius, false, at(radius, 0)).close();
}

void appendRectangle(Path& path, const Placer& at, double width, double height) {
  const double x = width / 2, y = height / 2;
  path.move(at(-x, -y)).line(at(x, -y)).line(at(x, y)).line(at(-x, y)).close();
}

void appendRounded(Path& path, const Placer& at, Extent size, double radius, double scale) {
  const double x = size.width / 2, y = size.height / 2, drawn = radius * scale;
  path.move(at(-x + radius, -y)).line(at(x - radius, -y)).arc(drawn, false, at(x, -y + radius));
  path.line(at(x, y - radius)).arc(drawn, false, at(x - radius, y));
  path.line(at(-x + radius, y)).arc(drawn, false, at(-x, y - radius));
  path.line(at(-x, -y + radius)).arc(drawn, false, at(-x + radius, -y)).close();
}

}  // namespace

std::string_view toolKind(std::int32_t shapeCode) {
  return shapeCode == kSpecialTool ? "SPECIAL TOOL" : nameOfToolKind(shapeCode);
}

std::optional<Extent> outlineOf(const OldTool& tool) {
  const double first = static_cast<double>(tool.dimension1), second = static_cast<double>(tool.dimension2);
  if (!isLength(first)) return std::nullopt;
  if (tool.shapeCode == kRoundTool || tool.shapeCode == kSquareTool) return Extent{first, first};
  if (!isLength(second)) return std::nullopt;
  switch (tool.shapeCode) {
    case kSingleDTool:
    case kDoubleDTool:
      return second < first ? std::optional(Extent{first, second}) : std::nullopt;
    case kRectangleTool:
    case kObroundTool:
    case kTriangleTool:
    case kCornerRoundedTool:
    case kRoundedCornersTool:
      return Extent{first, second};
    default:
      return std::nullopt;
  }
}

bool appendOutline(Path& path, const OldTool& tool, Point centre, double scale, double turned) {
  const auto size = outlineOf(tool);
  if (!size) return false;
  const double angle = turned + (std::isfinite(tool.orientation) ? static_cast<double>(tool.orientation) : 0);
  const bool isUpright = tool.shapeCode == kObroundTool && size->height > size->width;
  const Placer at(centre, scale, isUpright ? angle + 1.5707963267948966 : angle);
  const double radius = size->width / 2, flat = size->height / 2;
  switch (tool.shapeCode) {
    case kRoundTool:
      appendRound(path, at, radius, radius * scale);
      break;
    case kSingleDTool: {
      const double y = size->height - radius, chord = std::sqrt(radius * radius - y * y);
      path.move(at(-chord, y)).arc(radius * scale, y > 0, at(chord, y)).close();
      break;
    }
    case kDoubleDTool: {
      const double chord = std::sqrt(radius * radius - flat * flat);
      path.move(at(chord, -flat)).arc(radius * scale, false, at(chord, flat));
      path.line(at(-chord, flat)).arc(radius * scale, false, at(-chord, -flat)).close();
      break;
    }
    case kObroundTool: {
      const double end = std::min(radius, flat), straight = std::max(radius, flat) - end;
      path.move(at(straight, -end)).arc(end * scale, false, at(straight, end));
      path.line(at(-straight, end)).arc(end * scale, false, at(-straight, -end)).close();
      break;
    }
    case kTriangleTool:
      path.move(at(-radius, -flat)).line(at(radius, -flat)).line(at(-radius, flat)).close();
      break;
    case kCornerRoundedTool:
    case kRoundedCornersTool: {
      const double corner = static_cast<double>(tool.dimension3);
      if (isLength(corner))
        appendRounded(path, at, *size, std::min({corner, radius, flat}), scale);
      else
        appendRectangle(path, at, size->width, size->height);
      break;
    }
    default:
      appendRectangle(path, at, size->width, size->height);
  }
  return true;
}

std::string dimensionText(const OldTool& tool) {
  const float dimensions[] = {tool.dimension1, tool.dimension2, tool.dimension3};
  std::size_t count = std::size(dimensions);
  if (tool.shapeCode == kSpecialTool && symmetryOf(tool.dimension3) != 0) --count;
  while (count > 0 && dimensions[count - 1] == 0) --count;
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text.append(i == 0 ? "" : " x ").append(sizeText(static_cast<double>(dimensions[i])));
  return text;
}

const OldTool* toolAt(const ToolStationList& list, std::int64_t number) {
  const bool exists = number >= 1 && number <= static_cast<std::int64_t>(list.tools.size());
  return exists ? &list.tools[static_cast<std::size_t>(number - 1)] : nullptr;
}

ShapePlaces::Place ShapePlaces::placeOf(const Shape& shape) {
  const Place own{static_cast<double>(shape.x), static_cast<double>(shape.y), 0};
  if ((shape.flags & kGroupMember) != 0 && hasHead_) {
    hasMembers_ = true;
    const double cosine = std::cos(head_.turned), sine = std::sin(head_.turned);
    return {head_.x + own.x * cosine - own.y * sine, head_.y + own.x * sine + own.y * cosine, head_.turned};
  }
  if (shape.type == kGroupHead) {
    hasHead_ = true;
    head_ = own;
    if (std::isfinite(shape.values[2])) head_.turned = static_cast<double>(shape.values[2]);
  }
  return own;
}

WorkMarks marksOf(const ShapeList& shapes, const PatternItemList* items, const ToolStationList* tools,
                  const Box& limits, Point origin, double scale, std::uint64_t cap, double cross) {
  constexpr double kSmallest = 0.6, kLargest = 3000;  // limits of what is drawn
  WorkMarks marks;
  ShapePlaces places;
  for (std::size_t i = 0; i < shapes.shapes.size(); ++i) {
    const auto [x, y, turned] = places.placeOf(shapes.shapes[i]);
    const bool isInside = x >= limits.x && x <= limits.right() && y >= limits.y && y <= limits.bottom();
    if (!isInside) {
      ++marks.outside;
      continue;
    }
    if (marks.drawn >= cap) {
      ++marks.left;
      continue;
    }
    ++marks.drawn;
    const Point at{origin.x + x * scale, origin.y - y * scale};
    const bool hasItem = items != nullptr && tools != nullptr && i < items->size();
    const OldTool* const tool = hasItem ? toolAt(*tools, (*items)[i].toolNumber) : nullptr;
    const auto size = tool != nullptr ? outlineOf(*tool) : std::nullopt;
    const double drawnSize = size ? std::max(size->width, size->height) * scale : 0;
    if (drawnSize >= kSmallest && drawnSize <= kLargest)
      (void)appendOutline(marks.outlines, *tool, at, scale, turned);
    else
      marks.crosses.move({at.x - cross, at.y})
          .line({at.x + cross, at.y})
          .move({at.x, at.y - cross})
          .line({at.x, at.y + cross});
  }
  marks.hasGroups = places.hasMembers();
  return marks;
}

}  // namespace oldtorvio::draw
