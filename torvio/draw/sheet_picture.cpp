// A sheet to scale: the plate, the placements of its parts, clamps and its own shapes.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "src/sheet/nest.h"
#include "torvio/draw/draw.h"
#include "torvio/draw/tool_outline.h"
#include "torvio/values/quantity.h"

namespace oldtorvio::draw {
namespace {

// One rectangle, in length units.
struct Placed {
  std::size_t part = 0, pattern = 0;
  double x = 0, y = 0, angle = 0;
  std::uint64_t copies = 1;  // how many it represents
  std::array<Point, 4> corners;
  Box bounds;  // y up
  bool hasMarks = false;
};

struct Grid {
  std::uint64_t drawn = 1, copies = 1;  // rectangles, and copies for each of them
  double step = 0;
};

Grid gridOf(std::uint32_t count, std::uint32_t stepBits) {
  // The step of a single copy is never used. A step that is not a length leaves all copies in one place.
  const float step = std::bit_cast<float>(stepBits);
  const bool isStep = std::isnormal(step);  // small integers are subnormal as floats
  if (count <= 1 || !isStep) return {std::min<std::uint64_t>(count, 1), count, 0};
  return {count, 1, static_cast<double>(step)};
}

void addTo(std::uint64_t& sum, std::uint64_t more) { sum = values::sumOf(sum, more); }

class SheetPicture {
 public:
  SheetPicture(const OldSheet& sheet, const FileNote& file, const PictureOptions& options)
      : sheet_(sheet),
        tools_(stationListOf(sheet.machine)),
        read_(file.read),
        picture_(file, options),
        name_(file.name) {}

  std::string drawn() {
    place();
    head();
    if (const auto world = chooseWorld()) {
      drawWorld(*world);
    } else {
      picture_.moveTo(picture_.y() + 120);
      picture_.svg().text({kPictureWidth / 2, picture_.y()}, "Nothing to draw: no plate and no part has a size",
                          {.size = 18, .fill = kMuted, .anchor = "middle"});
      picture_.moveTo(picture_.y() + 100);
    }
    listParts();
    return picture_.take();
  }

 private:
  const std::vector<TorvPart>& parts() const { return sheet_.partList.parts; }
  bool hasPlate() const { return read_.has("height") && isLength(sheet_.width) && isLength(sheet_.height); }

  // ---- where everything is -------------------------------------------------------------------------

  void place() {
    for (std::size_t i = 0; i < parts().size(); ++i) {
      const TorvPart& part = parts()[i];
      for (std::size_t j = 0; j < part.patterns.size(); ++j) {
        const Pattern& pattern = part.patterns[j];
        addTo(copies_, std::uint64_t{pattern.gridCount1} * pattern.gridCount2);
        if (pattern.gridCount1 == 0 || pattern.gridCount2 == 0) continue;
        if (!isLength(part.width) || !isLength(part.height)) {
          ++withoutSize_;
          continue;
        }
        if (!std::isfinite(pattern.originX) || !std::isfinite(pattern.originY)) {
          ++withoutPlace_;
          continue;
        }
        placeGrid(i, j);
      }
    }
  }

  void placeGrid(std::size_t part, std::size_t pattern) {
    const Pattern& placement = parts()[part].patterns[pattern];
    const Grid across = gridOf(placement.gridCount1, placement.gridStep1);
    const Grid up = gridOf(placement.gridCount2, placement.gridStep2);
    Placed first;
    first.part = part;
    first.pattern = pattern;
    first.x = static_cast<double>(placement.originX);
    first.y = static_cast<double>(placement.originY);
    first.angle = std::atan2(static_cast<double>(placement.rotationSin), static_cast<double>(placement.rotationCos));
    if (!std::isfinite(first.angle)) first.angle = 0;
    first.copies = across.copies * up.copies;
    setCorners(first);

    // Only copies near the plate, so that distant ones do not use up the limit.
    const Box limits = reach();
    const Range columns = rangeOf(across, first.bounds.x, first.bounds.right(), limits.x, limits.right());
    const Range rows = rangeOf(up, first.bounds.y, first.bounds.bottom(), limits.y, limits.bottom());
    // Counts of 32 bits each: the products fit.
    const std::uint64_t near = columns.count * rows.count, room = kMostPlacements - placed_.size();
    addTo(outside_, across.drawn * up.drawn - near);
    if (near > room) addTo(beyondCap_, near - room);
    for (std::uint64_t n = 0; n < std::min(near, room); ++n) {
      Placed one = first;
      const std::uint64_t column = columns.first + n % columns.count, row = rows.first + n / columns.count;
      const double dx = across.step * static_cast<double>(column), dy = up.step * static_cast<double>(row);
      one.x += dx, one.bounds.x += dx;
      one.y += dy, one.bounds.y += dy;
      for (Point& corner : one.corners) corner.x += dx, corner.y += dy;
      isTurned_ = isTurned_ || one.angle != 0;
      isGrid_ = isGrid_ || across.drawn * up.drawn > 1;
      isMerged_ = isMerged_ || one.copies > 1;
      placed_.push_back(one);
    }
  }

  struct Range {
    std::uint64_t first = 0, count = 0;
  };
  // Which copies lie between the limits, if the first one lies between `low` and `high`.
  static Range rangeOf(const Grid& grid, double low, double high, double least, double most) {
    if (grid.step == 0) return {0, low >= least && high <= most ? grid.drawn : 0};
    const double toLeast = (least - low) / grid.step, toMost = (most - high) / grid.step;
    const double from = std::ceil(std::max(std::min(toLeast, toMost), 0.0));
    const double to = std::floor(std::min(std::max(toLeast, toMost), static_cast<double>(grid.drawn - 1)));
    // A part that is larger than the limits never fits between them.
    if (!(from <= to) || high - low > most - least) return {};
    return {static_cast<std::uint64_t>(from), static_cast<std::uint64_t>(to - from) + 1};
  }

  // The plate and half its size around it; without a plate, everything.
  Box reach() const {
    constexpr double kFar = 1e100;
    if (!hasPlate()) return {-kFar, -kFar, 2 * kFar, 2 * kFar};
    const double width = static_cast<double>(sheet_.width), height = static_cast<double>(sheet_.height);
    const double around = std::max(width, height) / 2;
    return {-around, -around, width + 2 * around, height + 2 * around};
  }

  void setCorners(Placed& one) const {
    const double width = static_cast<double>(parts()[one.part].width);
    const double height = static_cast<double>(parts()[one.part].height);
    const double cosine = std::cos(one.angle), sine = std::sin(one.angle);
    const std::array<Point, 4> own{Point{0, 0}, Point{width, 0}, Point{width, height}, Point{0, height}};
    double left = std::numeric_limits<double>::max(), bottom = left, right = -left, top = -left;
    for (std::size_t i = 0; i < own.size(); ++i) {
      Point& corner = one.corners[i];
      corner = {one.x + own[i].x * cosine - own[i].y * sine, one.y + own[i].x * sine + own[i].y * cosine};
      left = std::min(left, corner.x), right = std::max(right, corner.x);
      bottom = std::min(bottom, corner.y), top = std::max(top, corner.y);
    }
    one.bounds = {left, bottom, right - left, top - bottom};
  }

  // The plate, and the parts beyond its edges.
  std::optional<Box> chooseWorld() const {
    if (!hasPlate() && placed_.empty()) return std::nullopt;
    double left = 0, bottom = 0, right = 0, top = 0;
    if (hasPlate()) right = static_cast<double>(sheet_.width), top = static_cast<double>(sheet_.height);
    for (const Placed& one : placed_) {
      const Box& box = one.bounds;
      left = std::min(left, box.x), right = std::max(right, box.right());
      bottom = std::min(bottom, box.y), top = std::max(top, box.bottom());
    }
    return Box{left, bottom, right - left, top - bottom};
  }

  // ---- the drawing ---------------------------------------------------------------------------------

  void head() {
    const std::string label = picture_.decoded(sheet_.sheetLabel);
    picture_.title(label.empty() ? name_ : label);
    if (read_.has("height"))
      picture_.fact("Plate", sizesText(static_cast<double>(sheet_.width), static_cast<double>(sheet_.height)));
    if (read_.has("thickness")) picture_.fact("Thickness", sizeText(static_cast<double>(sheet_.thickness)));
    const std::string type = picture_.decoded(sheet_.materialType), group = picture_.decoded(sheet_.materialGroup);
    picture_.fact("Material", type.empty() || group.empty() ? type + group : type + " (" + group + ")");
    std::string machine = picture_.decoded(sheet_.machine.displayName);
    if (machine.empty()) machine = picture_.decoded(sheet_.machine.machineText1);
    picture_.fact("Machine", machine);
    if (read_.has("partList"))
      picture_.fact("Parts", countText(parts().size(), "part, ", "parts, ") + countText(copies_, "copy", "copies"));
    if (sheet_.utilization != 0) picture_.fact("Utilization", sizeText(static_cast<double>(sheet_.utilization)));
    picture_.head();
  }

  void drawWorld(const Box& world) {
    view_ = picture_.fit(world, 74, 52, 24, 26, 760);
    const Point low = view_.at(world.x, world.y);
    area_ = {low.x, low.y - world.height * view_.scale, world.width * view_.scale, world.height * view_.scale};
    Svg& svg = picture_.svg();
    Box plate = area_;
    if (hasPlate()) {
      const Point corner = view_.at(0, 0);
      const double width = static_cast<double>(sheet_.width), height = static_cast<double>(sheet_.height);
      plate = {corner.x, corner.y - height * view_.scale, width * view_.scale, height * view_.scale};
      svg.rect(plate).set("fill", kPlate).set("stroke", kInk).set("stroke-width", 1.6).close();
      picture_.dimensions(plate, width, height);
      picture_.key("plate", [](Svg& icon, const Box& box) {
        icon.rect(box).set("fill", kPlate).set("stroke", kInk).set("stroke-width", 1.4).close();
      });
    } else {
      picture_.leaveOut("the plate: its size is not positive");
    }
    drawPlaced();
    drawShapes(sheet_.shapes, false);
    drawShapes(sheet_.skeletonShapes, true);
    picture_.axes({plate.x, plate.bottom()});
    // As in the queries of the library, the number is that of the sheet and the positions are those of its machine.
    if (hasPlate() && read_.has("clampInfo") && read_.has("machine.clampInfo")) {
      // A file stores as many positions as the machine has clamps; the rest of the record has those of a new machine.
      const std::int32_t count = std::clamp(sheet_.clampInfo.clampCount, 0, 8);
      const std::int32_t placed = std::clamp(sheet_.machine.clampInfo.clampCount, 0, count);
      picture_.clamps(view_, sheet_.machine.clampInfo.clampPositions, placed, plate, "the plate");
      picture_.leaveOut(static_cast<std::uint64_t>(count - placed), "clamp", "clamps",
                        "the machine has no position for it");
      picture_.assume("the clamps are as many as the sheet says, at the positions that its machine says");
    }
    picture_.scaleBar(view_);
    describe();
  }

  void drawPlaced() {
    std::uint64_t marks = 0;
    LabelSpace space;
    for (Placed& one : placed_) drawRectangle(one, marks);
    for (const Placed& one : placed_) drawLabel(one, space);
    if (marksBeyond_ > 0) picture_.leaveOut("the shapes of some parts: more than 60,000 in all");
  }

  void drawRectangle(Placed& one, std::uint64_t& marks) {
    Svg& svg = picture_.svg();
    Path outline;
    for (std::size_t i = 0; i < one.corners.size(); ++i) {
      const Point corner = view_.at(one.corners[i].x, one.corners[i].y);
      (void)(i == 0 ? outline.move(corner) : outline.line(corner));
    }
    const TorvPart& part = parts()[one.part];
    const double width = static_cast<double>(part.width) * view_.scale;
    const double height = static_cast<double>(part.height) * view_.scale, shorter = std::min(width, height);
    svg.path(outline.close().data()).set("fill", partColour(one.part)).set("fill-opacity", 0.9).set("stroke", kInk);
    svg.set("stroke-width", std::clamp(shorter / 30, 0.25, 1.1)).set("stroke-linejoin", "round");
    svg.set("class", "part" + std::to_string(one.part + 1)).close();
    // The corner at the part's own origin.
    const double size = std::min(9.0, shorter / 3);
    if (size >= 1.5) {
      const double cosine = std::cos(one.angle), sine = std::sin(one.angle);
      const Point origin = view_.at(one.x, one.y);
      Path mark;
      mark.move(origin).line({origin.x + size * cosine, origin.y - size * sine});
      mark.line({origin.x - size * sine, origin.y - size * cosine}).close();
      svg.path(mark.data()).set("fill", kInk).close();
    }
    one.hasMarks = useMarks(one, marks);
  }

  // The tool work of a placement: written once for each part and list of tools, and then only referenced.
  struct Symbol {
    std::vector<std::int32_t> tools;
    std::string id;
    std::uint64_t marks;
  };

  bool useMarks(const Placed& one, std::uint64_t& marks) {
    const TorvPart& part = parts()[one.part];
    if (part.shapes.shapes.empty() || std::min(part.width, part.height) * view_.scale < 12) return false;
    const Symbol* const symbol = symbolOf(one);
    if (symbol == nullptr || symbol->marks == 0) return false;
    if (marks + symbol->marks > kMostMarksOfSheet) {
      marksBeyond_ += symbol->marks;
      return false;
    }
    marks += symbol->marks;
    const Point origin = view_.at(one.x, one.y);
    std::string place = "translate(";
    appendCoordinate(place, origin.x);
    appendCoordinate(place += ' ', origin.y);
    place += ')';
    if (one.angle != 0) appendCoordinate(place += " rotate(", -one.angle * kDegrees), place += ')';
    picture_.svg().open("use").set("xlink:href", "#" + symbol->id).set("transform", place).close();
    return true;
  }

  const Symbol* symbolOf(const Placed& one) {
    const TorvPart& part = parts()[one.part];
    const PatternItemList& items = part.patterns[one.pattern].items;
    std::vector<std::int32_t> numbers;
    const std::size_t count = std::min({items.size(), part.shapes.shapes.size(), std::size_t{kMostMarks}});
    for (std::size_t i = 0; i < count; ++i) numbers.push_back(items[i].toolNumber);
    std::vector<std::size_t>& known = symbolsOfPart_[one.part];
    for (const std::size_t position : known)
      if (symbols_[position].tools == numbers) return &symbols_[position];
    constexpr std::size_t kMostOfPart = 50;
    if (known.size() == kMostOfPart || symbolMarks_ >= kMostMarksOfSheet) {
      ++marksBeyond_;
      return nullptr;
    }
    const double width = static_cast<double>(part.width), height = static_cast<double>(part.height);
    const WorkMarks work =
        marksOf(part.shapes, &items, &tools_, Box{0, 0, width, height}, {0, 0}, view_.scale, kMostMarks);
    if (known.empty()) marksOutside_ += work.outside;
    marksLeft_ += work.left;
    symbols_.push_back({std::move(numbers), picture_.id("m" + std::to_string(symbols_.size())), work.drawn});
    const Symbol& symbol = symbols_.back();
    known.push_back(symbols_.size() - 1);
    symbolMarks_ += work.drawn;
    Svg& svg = picture_.svg();
    svg.open("defs").open("g").set("id", symbol.id).set("stroke", kInk).set("fill", "none").set("stroke-width", 0.6);
    if (!work.outlines.empty()) svg.path(work.outlines.data()).set("fill", kHole).close();
    if (!work.crosses.empty()) svg.path(work.crosses.data()).close();
    svg.close().close();
    hasGroups_ = hasGroups_ || work.hasGroups;
    hasOutlines_ = hasOutlines_ || !work.outlines.empty();
    hasCrosses_ = hasCrosses_ || !work.crosses.empty();
    return &symbol;
  }

  // The text of a label, its size, and the side of its part along which it is placed.
  struct Label {
    std::string text;
    double size = 0;
    bool isAcross = true;
  };

  // The number and the name of the part if they fit, otherwise the number, which the list explains.
  std::optional<Label> labelOf(const Placed& one) const {
    const TorvPart& part = parts()[one.part];
    const double width = static_cast<double>(part.width) * view_.scale;
    const double height = static_cast<double>(part.height) * view_.scale;
    const std::string number = std::to_string(one.part + 1);
    const std::string copies = one.copies > 1 ? " \xC3\x97" + countText(one.copies) : "";
    const std::string name = picture_.decoded(part.partName);
    // Along the side that is closer to level if the text fits there, otherwise along the longer one.
    const bool isLevelAcross = std::fabs(std::cos(one.angle)) >= 0.70;
    struct Form {
      std::string text;
      double largest, smallest;
    };
    constexpr double kPad = 5;
    for (const Form& form : {Form{number + "  " + name + copies, 12.5, 8.5}, Form{number + copies, 12, 4.5}})
      for (const bool isAcross : {isLevelAcross, width >= height}) {
        const double along = isAcross ? width : height, across = isAcross ? height : width;
        const double fitting = (along - std::min(kPad, along / 6)) / textWidth(form.text, 1, true);
        const double size = std::min({form.largest, fitting, across * 0.5});
        if (size >= form.smallest) return Label{form.text, size, isAcross};
      }
    return std::nullopt;
  }

  void drawLabel(const Placed& one, LabelSpace& space) {
    const auto label = labelOf(one);
    if (!label) return;
    double degrees = one.angle * kDegrees + (label->isAcross ? 0 : 90);
    while (degrees > 90.01) degrees -= 180;  // never overhead
    while (degrees < -89.99) degrees += 180;

    const Point low = view_.at(one.bounds.x, one.bounds.y);
    const Point centre{low.x + one.bounds.width * view_.scale / 2, low.y - one.bounds.height * view_.scale / 2};
    const double textSize = textWidth(label->text, label->size, true), line = label->size * 1.3;
    // Squares along the text, so that turned labels claim no more than they cover.
    const double radians = degrees / kDegrees, rest = std::max(textSize - line, 0.0);
    const auto steps = static_cast<std::size_t>(std::ceil(rest / line));
    std::vector<Box> boxes;
    for (std::size_t step = 0; step <= steps; ++step) {
      const double along = steps > 0 ? rest * (static_cast<double>(step) / static_cast<double>(steps) - 0.5) : 0;
      boxes.push_back({centre.x + along * std::cos(radians) - line / 2, centre.y - along * std::sin(radians) - line / 2,
                       line, line});
    }
    if (!space.claim(boxes)) return;

    std::string turn = "translate(";
    appendCoordinate(turn, centre.x);
    appendCoordinate(turn += ' ', centre.y);
    turn += ')';
    if (std::fabs(degrees) > 0.005) appendCoordinate(turn += " rotate(", -degrees), turn += ')';
    Svg& svg = picture_.svg();
    svg.open("g").set("transform", turn);
    if (one.hasMarks)
      svg.rect({-textSize / 2, -line / 2, textSize, line})
          .set("fill", partColour(one.part))
          .set("fill-opacity", 0.85)
          .set("rx", 2)
          .close();
    svg.text({0, label->size * 0.35}, label->text, {.size = label->size, .anchor = "middle", .isBold = true});
    svg.close();
  }

  void drawShapes(const ShapeList& list, bool isSkeleton) {
    constexpr std::uint64_t kMost = 20000;
    Path marks;
    std::uint64_t drawn = 0, outside = 0, left = 0;
    const double reach = isSkeleton ? 2.2 : 3.2;
    ShapePlaces places;
    for (const Shape& shape : list.shapes) {
      const ShapePlaces::Place place = places.placeOf(shape);
      const Point at = view_.at(place.x, place.y);
      const bool isInside =
          at.x >= area_.x - 1 && at.x <= area_.right() + 1 && at.y >= area_.y - 1 && at.y <= area_.bottom() + 1;
      if (!isInside)
        ++outside;
      else if (drawn == kMost)
        ++left;
      else if (++drawn; isSkeleton)
        marks.move({at.x - reach, at.y})
            .line({at.x, at.y - reach})
            .line({at.x + reach, at.y})
            .line({at.x, at.y + reach})
            .close();
      else
        marks.move({at.x - reach, at.y})
            .line({at.x + reach, at.y})
            .move({at.x, at.y - reach})
            .line({at.x, at.y + reach});
    }
    hasGroups_ = hasGroups_ || places.hasMembers();
    const std::string of = isSkeleton ? " of the skeleton" : " of the sheet";
    picture_.leaveOut(outside, "shape" + of, "shapes" + of, "outside of the picture");
    picture_.leaveOut(left, "shape" + of, "shapes" + of, "beyond the first 20,000");
    if (drawn == 0) return;
    const char* const fill = isSkeleton ? kPaper : "none";
    picture_.svg().path(marks.data()).set("fill", fill).set("stroke", kAccent).set("stroke-width", 1).close();
    picture_.key(
        isSkeleton ? "placing point of a shape of the skeleton" : "placing point of a shape of the sheet itself",
        [&](Svg& icon, const Box&) {
          Path path;
          if (isSkeleton)
            path.move({10, 8}).line({13, 5}).line({16, 8}).line({13, 11}).close();
          else
            path.move({9, 8}).line({17, 8}).move({13, 4}).line({13, 12});
          icon.path(path.data()).set("fill", fill).set("stroke", kAccent).set("stroke-width", 1.2).close();
        });
  }

  void describe() {
    if (!placed_.empty()) {
      picture_.key(
          "part with its number in the list; the dark corner is its own origin", [](Svg& icon, const Box& box) {
            icon.rect(box).set("fill", partColour(0)).set("stroke", kInk).close();
            icon.path(Path().move({0, 16}).line({7, 16}).line({0, 9}).close().data()).set("fill", kInk).close();
          });
      picture_.assume("a part is its width by its height, with its lower left corner at the origin of the placement");
    }
    if (hasOutlines_) {
      picture_.key("hole of the tool at a shape of the part", [](Svg& icon, const Box&) {
        icon.rect({5, 3, 16, 10}).set("fill", kHole).set("stroke", kInk).set("stroke-width", 0.8).close();
      });
      picture_.assume("tools are centred on the placing points of the shapes; orientations are in radians");
      picture_.assume(kDimensionsAssumed);
    }
    if (hasCrosses_)
      picture_.key("placing point of a shape of a part without a tool outline", [](Svg& icon, const Box&) {
        icon.path(Path().move({10, 8}).line({16, 8}).move({13, 5}).line({13, 11}).data());
        icon.set("stroke", kInk).set("stroke-width", 0.8).close();
      });
    if (hasGroups_) picture_.assume(kGroupsAssumed);
    if (isMerged_)
      picture_.assume("copies whose grid step is not a length are one rectangle, marked \xC3\x97 with their number");
    if (isGrid_)
      picture_.assume("the grid steps are the bits of real numbers, gridStep1 along x and gridStep2 along y");
    if (isTurned_)
      picture_.assume("a placement is turned about its origin, counterclockwise, by the angle of its sine and cosine");
    picture_.assume("x points right and y up; the file does not name its length unit");
    picture_.leaveOut(beyondCap_, "copy", "copies", "beyond the first 10,000 rectangles");
    picture_.leaveOut(outside_, "copy", "copies", "far outside of the plate");
    picture_.leaveOut(withoutSize_, "placement", "placements", "the size of the part is not positive");
    picture_.leaveOut(withoutPlace_, "placement", "placements", "the origin is not a number");
    picture_.leaveOut(marksOutside_, "shape of a part", "shapes of parts", "outside of its rectangle");
    picture_.leaveOut(marksLeft_, "shape of a part", "shapes of parts", "beyond the first 2,000 of the part");
  }

  void listParts() {
    if (parts().empty()) return;
    picture_.heading("Parts");
    constexpr double kColumn = kContentWidth / 2, kRow = 22, kSize = 13;
    const std::size_t listed = std::min<std::size_t>(parts().size(), kMostListed);
    const std::size_t rows = (listed + 1) / 2;
    const double top = picture_.y() + 4;
    Svg& svg = picture_.svg();
    for (std::size_t i = 0; i < listed; ++i) {
      const TorvPart& part = parts()[i];
      const std::size_t column = i / rows, row = i % rows;
      const double x = kMargin + kColumn * static_cast<double>(column);
      const double y = top + kRow * static_cast<double>(row), line = y + 14;
      svg.rect({x, y + 2, 34, 16}).set("fill", partColour(i)).set("stroke", kInk).set("stroke-width", 0.6).close();
      svg.text({x + 17, y + 14.5}, std::to_string(i + 1), {.size = 12, .anchor = "middle", .isBold = true});
      svg.text({x + 44, line}, shortened(picture_.decoded(part.partName), 226, kSize), {.size = kSize});
      const std::string size = sizesText(static_cast<double>(part.width), static_cast<double>(part.height));
      svg.text({x + 280, line}, shortened(size, 140, kSize), {.size = kSize});
      svg.text({x + 476, line}, "\xC3\x97" + countText(values::quantityOf(part)), {.size = kSize, .anchor = "end"});
      svg.text({x + 496, line}, shortened(picture_.decoded(part.woNumber), 138, kSize),
               {.size = kSize, .fill = kMuted});
    }
    picture_.moveTo(top + kRow * static_cast<double>(rows));
    if (parts().size() == listed) return;
    picture_.moveTo(picture_.y() + 18);
    svg.text({kMargin, picture_.y()}, "and " + countText(parts().size() - listed, "more part", "more parts"),
             {.size = kSize, .fill = kMuted});
  }

  const OldSheet& sheet_;
  const ToolStationList& tools_;
  const explain::ReadMembers& read_;
  Picture picture_;
  std::string name_;
  View view_;
  Box area_;
  std::vector<Placed> placed_;
  std::vector<Symbol> symbols_;
  std::map<std::size_t, std::vector<std::size_t>> symbolsOfPart_;
  std::uint64_t symbolMarks_ = 0;
  std::uint64_t copies_ = 0, withoutSize_ = 0, withoutPlace_ = 0, beyondCap_ = 0, outside_ = 0;
  std::uint64_t marksBeyond_ = 0, marksOutside_ = 0, marksLeft_ = 0;
  bool isTurned_ = false, isGrid_ = false, isMerged_ = false, hasOutlines_ = false, hasCrosses_ = false;
  bool hasGroups_ = false;
};

}  // namespace

std::string drawRecord(const OldSheet& sheet, const FileNote& file, const PictureOptions& options) {
  return SheetPicture(sheet, file, options).drawn();
}

}  // namespace oldtorvio::draw
