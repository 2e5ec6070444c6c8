#include "torvio/draw/tool_outline.h"

#include <algorithm>
#include <cmath>

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

bool appendOutline(Path& path, const OldTool& tool, Point centre, double scale) {
  const auto size = outlineOf(tool);
  if (!size) return false;
  const double angle = std::isfinite(tool.orientation) ? static_cast<double>(tool.orientation) : 0;
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
  std::string text;
  for (const float dimension : {tool.dimension1, tool.dimension2, tool.dimension3})
    if (dimension != 0) text.append(text.empty() ? "" : " x ").append(sizeText(static_cast<double>(dimension)));
  return text;
}

const OldTool* toolAt(const ToolStationList& list, std::int64_t number) {
  const bool exists = number >= 1 && number <= static_cast<std::int64_t>(list.tools.size());
  return exists ? &list.tools[static_cast<std::size_t>(number - 1)] : nullptr;
}

WorkMarks marksOf(const ShapeList& shapes, const PatternItemList* items, const ToolStationList* tools,
                  const Box& limits, Point origin, double scale, std::uint64_t cap, double cross) {
  constexpr double kSmallest = 0.6, kLargest = 3000;  // of what is drawn
  WorkMarks marks;
  for (std::size_t i = 0; i < shapes.shapes.size(); ++i) {
    const double x = static_cast<double>(shapes.shapes[i].x), y = static_cast<double>(shapes.shapes[i].y);
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
      (void)appendOutline(marks.outlines, *tool, at, scale);
    else
      marks.crosses.move({at.x - cross, at.y})
          .line({at.x + cross, at.y})
          .move({at.x, at.y - cross})
          .line({at.x, at.y + cross});
  }
  return marks;
}

}  // namespace oldtorvio::draw
