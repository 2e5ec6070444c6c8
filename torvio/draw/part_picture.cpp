// A part to scale with its tool work, and the parts of a group part side by side.
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "torvio/draw/draw.h"
#include "torvio/draw/tool_outline.h"

namespace oldtorvio::draw {
namespace {

bool hasSize(const TorvPart& part) { return isLength(part.width) && isLength(part.height); }

bool isMoved(const Pattern& pattern) {
  return pattern.originX != 0 || pattern.originY != 0 || pattern.rotationSin != 0 || pattern.rotationCos < 0;
}

// What the marks of all parts of a picture have in common.
struct Legend {
  bool hasOutlines = false, hasCrosses = false, hasGroups = false, isMoved = false;
  std::uint64_t drawn = 0, outside = 0, left = 0;

  void describe(Picture& picture) const {
    picture.key("part: width by height", [](Svg& icon, const Box& box) {
      icon.rect(box).set("fill", kPart).set("stroke", kInk).set("stroke-width", 1.2).close();
    });
    if (hasOutlines)
      picture.key("hole of the tool at a shape", [](Svg& icon, const Box&) {
        icon.rect({5, 3, 16, 10}).set("fill", kHole).set("stroke", kInk).set("stroke-width", 0.9).close();
      });
    if (hasCrosses)
      picture.key("placing point of a shape without a tool outline", [](Svg& icon, const Box&) {
        icon.path(Path().move({9, 8}).line({17, 8}).move({13, 4}).line({13, 12}).data());
        icon.set("stroke", kInk).set("stroke-width", 1).close();
      });
    picture.assume("shapes are placed from the lower left corner of the part, x to the right and y up");
    if (hasOutlines) {
      picture.assume("tools are centred on the placing points, and their orientations are in radians");
      picture.assume(kDimensionsAssumed);
    }
    if (isMoved) picture.assume("the origin and the angle of a pattern do not move the shapes of its part");
    if (hasGroups) picture.assume(kGroupsAssumed);
    picture.assume("the file does not name its length unit");
    picture.leaveOut(outside, "shape", "shapes", "far outside of the part, or without a place");
    picture.leaveOut(left, "shape", "shapes", "beyond the cap of the picture");
  }
};

void addOutline(Svg& svg, const Box& box) {
  svg.rect(box).set("fill", kPart).set("stroke", kInk).set("stroke-width", 1.5).close();
}

// A margin of a tenth of the part is shown around it.
void addMarks(Picture& picture, const TorvPart& part, const Box& box, double scale, std::uint64_t cap, double stroke,
              Legend& legend) {
  const double width = static_cast<double>(part.width), height = static_cast<double>(part.height);
  const double around = std::min({width / 10, height / 10, 30 / scale});
  const Box limits{-around, -around, width + 2 * around, height + 2 * around};
  const PatternItemList* const items = part.patterns.empty() ? nullptr : &part.patterns.front().items;
  const WorkMarks marks = marksOf(part.shapes, items, &part.toolStations, limits, {box.x, box.bottom()}, scale, cap, 4);
  Svg& svg = picture.svg();
  if (!marks.outlines.empty())
    svg.path(marks.outlines.data()).set("fill", kHole).set("stroke", kInk).set("stroke-width", stroke).close();
  if (!marks.crosses.empty())
    svg.path(marks.crosses.data()).set("fill", "none").set("stroke", kInk).set("stroke-width", stroke).close();
  legend.hasOutlines = legend.hasOutlines || !marks.outlines.empty();
  legend.hasCrosses = legend.hasCrosses || !marks.crosses.empty();
  legend.isMoved = legend.isMoved || (!part.patterns.empty() && isMoved(part.patterns.front()));
  legend.hasGroups = legend.hasGroups || marks.hasGroups;
  legend.drawn += marks.drawn;
  legend.outside += marks.outside;
  legend.left += marks.left;
}

std::vector<std::uint64_t> usesOf(const TorvPart& part) {
  std::vector<std::uint64_t> uses(std::max(part.toolStations.stations.size(), part.toolStations.tools.size()));
  if (part.patterns.empty()) return uses;
  for (const PatternItem& item : part.patterns.front().items)
    if (item.toolNumber >= 1 && static_cast<std::size_t>(item.toolNumber) <= uses.size())
      ++uses[static_cast<std::size_t>(item.toolNumber) - 1];
  return uses;
}

void nothing(Picture& picture, std::string_view why) {
  picture.moveTo(picture.y() + 120);
  picture.svg().text({kPictureWidth / 2, picture.y()}, why, {.size = 18, .fill = kMuted, .anchor = "middle"});
  picture.moveTo(picture.y() + 100);
}

// Parts in rows, all to one scale, each with a line of text below.
class Shelves {
 public:
  static constexpr double kGap = 34, kText = 40, kNarrowest = 84, kWidestText = 150;

  // `textWidths` are the widths of the names of the parts.
  Shelves(const std::vector<const TorvPart*>& parts, const std::vector<double>& textWidths, double scale) {
    double x = 0, y = 0, tallest = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      const TorvPart* const part = parts[i];
      const double width = static_cast<double>(part->width) * scale;
      const double height = static_cast<double>(part->height) * scale,
                   place = std::max({width, kNarrowest, textWidths[i]});
      if (x > 0 && x + place > kContentWidth) {
        y += tallest + kText + kGap;
        x = tallest = 0;
      }
      boxes_.push_back({x, y, width, height});
      tallest = std::max(tallest, height);
      widest_ = std::max(widest_, x + place);
      x += place + kGap;
      rows_.push_back(y);
    }
    height_ = y + tallest + kText;
    // All parts of a row are aligned at the bottom.
    for (std::size_t i = 0; i < boxes_.size();) {
      std::size_t end = i;
      double most = 0;
      for (; end < boxes_.size() && rows_[end] == rows_[i]; ++end) most = std::max(most, boxes_[end].height);
      for (; i < end; ++i) boxes_[i].y = rows_[i] + most - boxes_[i].height;
    }
  }

  bool fits(double height) const { return widest_ <= kContentWidth && height_ <= height; }
  double height() const { return height_; }
  const std::vector<Box>& boxes() const { return boxes_; }

 private:
  std::vector<Box> boxes_;
  std::vector<double> rows_;
  double widest_ = 0, height_ = 0;
};

}  // namespace

std::string drawRecord(const TorvPart& part, const FileNote& file, const PictureOptions& options) {
  Picture picture(file, options);
  // Only the oldest part files store the name of the part.
  const std::string name = file.read.has("partName") ? picture.decoded(part.partName) : "";
  picture.title(name.empty() ? file.name : name);
  const bool isSizeRead = file.read.has("height");
  if (isSizeRead) picture.fact("Size", sizesText(static_cast<double>(part.width), static_cast<double>(part.height)));
  if (file.read.has("thickness")) picture.fact("Thickness", sizeText(static_cast<double>(part.thickness)));
  if (file.read.has("materialName")) picture.fact("Material", picture.decoded(part.materialName));
  picture.fact("Material type", picture.decoded(part.materialType));
  if (file.read.has("productName")) picture.fact("Product", picture.decoded(part.productName));
  if (file.read.has("assemblyName")) picture.fact("Assembly", picture.decoded(part.assemblyName));
  picture.fact("Revision", picture.decoded(part.revision));
  if (file.read.has("shapes")) picture.fact("Shapes", countText(part.shapes.shapes.size()));
  if (!part.patterns.empty()) {
    const Pattern& first = part.patterns.front();
    const double angle = std::atan2(static_cast<double>(first.rotationSin), static_cast<double>(first.rotationCos));
    if (angle != 0) picture.fact("Angle", sizeText(angle * kDegrees) + "\xC2\xB0");
  }
  picture.head();
  const std::vector<std::uint64_t> uses = usesOf(part);
  if (isSizeRead && hasSize(part)) {
    const double width = static_cast<double>(part.width), height = static_cast<double>(part.height);
    const View view = picture.fit({0, 0, width, height}, 74, 60, 40, 36, 700);
    const Point low = view.at(0, 0);
    const Box box{low.x, low.y - height * view.scale, width * view.scale, height * view.scale};
    addOutline(picture.svg(), box);
    picture.dimensions(box, width, height);
    Legend legend;
    addMarks(picture, part, box, view.scale, kMostMarksOfPart, 1, legend);
    picture.axes(low);
    picture.scaleBar(view);
    legend.describe(picture);
  } else {
    nothing(picture, "Nothing to draw: the size of the part is not positive");
    picture.leaveOut(part.shapes.shapes.size(), "shape", "shapes", "the part has no size");
  }
  stationTable(picture, part.toolStations, holdsTool, &uses);
  return picture.take();
}

std::string drawRecord(const SheetPartList& list, const FileNote& file, const PictureOptions& options) {
  Picture picture(file, options);
  picture.title(file.name);
  if (!list.parts.empty() || file.fault.empty()) picture.fact("Parts", countText(list.parts.size()));
  picture.head();
  std::vector<const TorvPart*> parts;
  std::uint64_t withoutSize = 0, left = 0;
  double largest = 0;
  for (const TorvPart& part : list.parts) {
    if (!hasSize(part))
      ++withoutSize;
    else if (parts.size() == kMostParts)
      ++left;
    else
      parts.push_back(&part),
          largest = std::max({largest, static_cast<double>(part.width), static_cast<double>(part.height)});
  }
  picture.leaveOut(withoutSize, "part", "parts", "the size is not positive");
  picture.leaveOut(left, "part", "parts", "beyond the first 200");
  if (parts.empty()) {
    nothing(picture, list.parts.empty() ? "Nothing to draw: no part was read" : "Nothing to draw: no part has a size");
    return picture.take();
  }

  std::vector<double> textWidths;
  textWidths.reserve(parts.size());
  for (const TorvPart* part : parts)
    textWidths.push_back(std::min(textWidth(picture.decoded(part->partName), 13, true) + 1, Shelves::kWidestText));

  // The largest scale at which all parts fit. Texts need room too, so the sheet grows with many parts.
  const double room = std::max(700.0, 110.0 * std::ceil(static_cast<double>(parts.size()) / 7));
  double low = 0, high = 560 / largest;
  for (int step = 0; step < 50; ++step) {
    const double middle = (low + high) / 2;
    (Shelves(parts, textWidths, middle).fits(room) ? low : high) = middle;
  }
  const Shelves shelves(parts, textWidths, low);
  Legend legend;
  const double top = picture.y() + 16;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const TorvPart& part = *parts[i];
    Box box = shelves.boxes()[i];
    box.x += kMargin;
    box.y += top;
    Svg& svg = picture.svg();
    addOutline(svg, box);
    addMarks(picture, part, box, low, std::min(kMostMarks, kMostMarksOfSheet - legend.drawn),
             std::clamp(std::min(box.width, box.height) / 80, 0.3, 1.0), legend);
    const double below = std::max({box.width, Shelves::kNarrowest, textWidths[i]});
    svg.text({box.x, box.bottom() + 19}, shortened(picture.decoded(part.partName), below, 13, true),
             {.size = 13, .isBold = true});
    const std::string size = sizesText(static_cast<double>(part.width), static_cast<double>(part.height));
    svg.text({box.x, box.bottom() + 35}, shortened(size, below + 16, 12), {.size = 12, .fill = kMuted});
  }
  picture.moveTo(top + shelves.height() + 10);
  View view;
  view.scale = low;
  picture.scaleBar(view);
  legend.describe(picture);
  return picture.take();
}

}  // namespace oldtorvio::draw
