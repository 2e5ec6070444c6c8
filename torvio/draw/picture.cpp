#include "torvio/draw/picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "torvio/draw/tool_outline.h"

namespace oldtorvio::draw {
namespace {

constexpr const char* kFonts = "Helvetica, Arial, 'Liberation Sans', 'DejaVu Sans', sans-serif";
constexpr double kSmall = 11.5, kBody = 13;

}  // namespace

const char* partColour(std::size_t index) {
  constexpr std::array kColours{"#f5d7a1", "#a8c8e4", "#d5e6bd", "#e3ada0", "#dcd5ec", "#98cbbf", "#f4eba9", "#c6b498"};
  return kColours[index % kColours.size()];
}

std::string sizesText(double width, double height) { return sizeText(width) + " \xC3\x97 " + sizeText(height); }

template <class Use>
void LabelSpace::forCells(const Box& box, Use&& use) {
  const auto cellOf = [](double value) { return static_cast<int>(std::floor(std::clamp(value, -1e5, 1e5) / kCell)); };
  for (int x = cellOf(box.x); x <= cellOf(box.right()); ++x)
    for (int y = cellOf(box.y); y <= cellOf(box.bottom()); ++y) use(std::pair(x, y));
}

bool LabelSpace::isFree(const Box& box) const {
  const auto meets = [&](const Box& other) {
    return box.x < other.right() && other.x < box.right() && box.y < other.bottom() && other.y < box.bottom();
  };
  bool isFree = true;
  forCells(box, [&](const std::pair<int, int>& cell) {
    const auto claimed = cells_.find(cell);
    if (claimed != cells_.end()) isFree = isFree && std::none_of(claimed->second.begin(), claimed->second.end(), meets);
  });
  return isFree;
}

bool LabelSpace::claim(const std::vector<Box>& boxes) {
  if (!std::all_of(boxes.begin(), boxes.end(), [this](const Box& box) { return isFree(box); })) return false;
  for (const Box& box : boxes) forCells(box, [&](const std::pair<int, int>& cell) { cells_[cell].push_back(box); });
  return true;
}

void Picture::fact(std::string_view name, std::string_view value) {
  if (!value.empty()) facts_.emplace_back(name, value);
}

void Picture::head() {
  constexpr double kTitle = 32, kFact = 16, kGap = 40, kWidest = 420;
  y_ += 26;
  const std::string subtitle = file_.kind;
  const double kindWidth = textWidth(subtitle, 15);
  svg_.text({kMargin, y_}, shortened(title_, kContentWidth - kindWidth - kGap, kTitle, true),
            {.size = kTitle, .isBold = true});
  svg_.text({kPictureWidth - kMargin, y_}, subtitle, {.size = 15, .fill = kMuted, .anchor = "end"});
  y_ += 18;
  svg_.line({kMargin, y_}, {kPictureWidth - kMargin, y_}).set("stroke", kInk).set("stroke-width", 1.5).close();

  double x = kMargin;
  y_ += 24;
  description_ = file_.kind;
  for (const auto& [name, value] : facts_) {
    const std::string text = shortened(value, kWidest, kFact);
    const double width = std::max(textWidth(name, kSmall), textWidth(text, kFact));
    if (x > kMargin && x + width > kPictureWidth - kMargin) {
      x = kMargin;
      y_ += 48;
    }
    svg_.text({x, y_}, name, {.size = kSmall, .fill = kMuted}).text({x, y_ + 20}, text, {.size = kFact});
    x += width + kGap;
    description_.append("; ").append(name).append(": ").append(text);
  }
  y_ += facts_.empty() ? 0 : 36;

  if (file_.fault.empty()) return;
  const auto lines = inLines(file_.fault, kContentWidth - 40, kBody);
  const double height = 34 + 18 * static_cast<double>(lines.size());
  svg_.rect({kMargin, y_, kContentWidth, height}).set("fill", "#fdeee4").set("stroke", kAccent).close();
  svg_.rect({kMargin, y_, 6, height}).set("fill", kAccent).close();
  svg_.text({kMargin + 20, y_ + 22},
            file_.isUnreadVersion ? "No load reads all of a file of this version: this is what it reads"
                                  : "Damaged file: this is what could be read of it",
            {.size = 14, .fill = kAccent, .isBold = true});
  for (std::size_t i = 0; i < lines.size(); ++i)
    svg_.text({kMargin + 20, y_ + 42 + 18 * static_cast<double>(i)}, lines[i], {.size = kBody});
  y_ += height + 12;
  description_.append(file_.isUnreadVersion ? "; not read further: " : "; damaged: ").append(file_.fault);
}

View Picture::fit(const Box& world, double left, double top, double right, double bottom, double mostHeight) {
  const double width = kContentWidth - left - right;
  View view;
  view.left = world.x;
  view.bottom = world.y;
  view.scale = std::min(width / world.width, mostHeight / world.height);
  const double drawnWidth = world.width * view.scale, drawnHeight = world.height * view.scale;
  view.corner = {kMargin + left + (width - drawnWidth) / 2, y_ + top + drawnHeight};
  y_ = view.corner.y + bottom;
  return view;
}

void Picture::dimensions(const Box& drawn, double width, double height) {
  constexpr double kAway = 16, kTick = 5, kSize = 13;
  const auto ruled = [&](Point from, Point to) {
    svg_.line(from, to).set("stroke", kMuted).set("stroke-width", 0.9).close();
  };
  const double y = drawn.y - kAway, x = drawn.x - kAway;
  for (const double end : {drawn.x, drawn.right()}) ruled({end, y - kTick}, {end, y + kTick});
  for (const double end : {drawn.y, drawn.bottom()}) ruled({x - kTick, end}, {x + kTick, end});
  const std::string across = sizeText(width), up = sizeText(height);
  const Point middle{drawn.x + drawn.width / 2, drawn.y + drawn.height / 2};
  // The line has a gap for its number; a number that does not fit is placed outside.
  const double gapAcross = textWidth(across, kSize) / 2 + 6, gapUp = textWidth(up, kSize) / 2 + 6;
  if (drawn.width > 2 * gapAcross) {
    ruled({drawn.x, y}, {middle.x - gapAcross, y});
    ruled({middle.x + gapAcross, y}, {drawn.right(), y});
    svg_.text({middle.x, y + 4.5}, across, {.size = kSize, .anchor = "middle"});
  } else {
    ruled({drawn.x, y}, {drawn.right(), y});
    svg_.text({middle.x, y - 8}, across, {.size = kSize, .anchor = "middle"});
  }
  if (drawn.height > 2 * gapUp) {
    ruled({x, drawn.y}, {x, middle.y - gapUp});
    ruled({x, middle.y + gapUp}, {x, drawn.bottom()});
    svg_.text({x + 4.5, middle.y}, up, {.size = kSize, .anchor = "middle", .turn = -90});
  } else {
    ruled({x, drawn.y}, {x, drawn.bottom()});
    svg_.text({x - 8, middle.y + 4.5}, up, {.size = kSize, .anchor = "end"});
  }
}

void Picture::scaleBar(const View& view) {
  constexpr double kLongest = 260, kHeight = 5;
  const double most = kLongest / view.scale;
  if (!std::isfinite(most) || !(most > 0)) return;
  const double power = std::pow(10.0, std::floor(std::log10(most)));
  const double length = power * (most >= 5 * power ? 5 : most >= 2 * power ? 2 : 1);
  const double width = length * view.scale, left = kPictureWidth - kMargin - width;
  y_ += 14;
  svg_.rect({left, y_, width, kHeight}).set("fill", kPaper).set("stroke", kInk).set("stroke-width", 0.8).close();
  for (const double quarter : {0.0, 0.5})
    svg_.rect({left + quarter * width, y_, width / 4, kHeight}).set("fill", kInk).close();
  svg_.text({left, y_ - 5}, "0", {.size = kSmall, .fill = kMuted});
  svg_.text({left + width, y_ - 5}, sizeText(length), {.size = kSmall, .fill = kMuted, .anchor = "end"});
  svg_.text({left - 12, y_ + 6}, "length units of the file", {.size = kSmall, .fill = kMuted, .anchor = "end"});
  y_ += 22;
}

void Picture::axes(Point corner) {
  constexpr double kLength = 26;
  const Point x{corner.x + kLength, corner.y}, y{corner.x, corner.y - kLength};
  svg_.open("g").set("stroke", kAccent).set("stroke-width", 1.4).set("fill", "none");
  svg_.path(Path().move({x.x - 5, x.y - 3}).line(x).line({x.x - 5, x.y + 3}).data()).close();
  svg_.path(Path().move({y.x - 3, y.y + 5}).line(y).line({y.x + 3, y.y + 5}).data()).close();
  svg_.path(Path().move(x).line(corner).line(y).data()).close();
  svg_.close();
  svg_.text({x.x + 3, x.y + 11}, "x", {.size = kSmall, .fill = kAccent});
  svg_.text({y.x - 10, y.y + 4}, "y", {.size = kSmall, .fill = kAccent});
}

void Picture::clamps(const View& view, const float (&positions)[8], std::int32_t count, const Box& plate,
                     std::string_view of) {
  std::uint64_t outside = 0;
  const std::size_t clampCount = static_cast<std::size_t>(std::clamp(count, 0, 8));
  for (std::size_t i = 0; i < clampCount; ++i) {
    const double x = view.at(static_cast<double>(positions[i]), 0).x;
    if (!(x >= plate.x - 1 && x <= plate.right() + 1)) {
      ++outside;
      continue;
    }
    svg_.path(Path()
                  .move({x - 9, plate.bottom() - 7})
                  .line({x + 9, plate.bottom() - 7})
                  .line({x + 12, plate.bottom() + 12})
                  .line({x - 12, plate.bottom() + 12})
                  .close()
                  .data())
        .set("fill", "#4a5560")
        .set("stroke", kPaper)
        .close();
    svg_.text({x, plate.bottom() + 8}, std::to_string(i + 1),
              {.size = kSmall, .fill = "#ffffff", .anchor = "middle", .isBold = true});
  }
  leaveOut(outside, "clamp", "clamps", "outside of " + std::string(of));
  if (clampCount == outside) return;
  key("clamp, not to scale", [](Svg& svg, const Box& box) {
    svg.path(Path().move({5, 1}).line({21, 1}).line({24, box.height}).line({2, box.height}).close().data());
    svg.set("fill", "#4a5560").close();
  });
  assume("clamp positions are along x, at the lower edge of " + std::string(of));
}

void Picture::heading(std::string_view utf8) {
  y_ += 26;
  svg_.text({kMargin, y_}, utf8, {.size = 15, .isBold = true});
  y_ += 8;
  svg_.line({kMargin, y_}, {kPictureWidth - kMargin, y_}).set("stroke", kRule).close();
  y_ += 6;
}

void Picture::leaveOut(std::uint64_t count, std::string_view one, std::string_view many, std::string_view why) {
  if (count > 0) leaveOut(countText(count, one, many).append(": ").append(why));
}

double Picture::notes(const std::vector<std::string>& lines, std::string_view caption, double x, double y,
                      double width) {
  if (lines.empty()) return y;
  svg_.text({x, y + 12}, caption, {.size = kBody, .isBold = true});
  y += 20;
  for (const std::string& note : lines) {
    svg_.rect({x + 1, y + 8, 3.5, 3.5}).set("fill", kMuted).close();
    for (const std::string& line : inLines(note, width - 14, kBody)) {
      svg_.text({x + 14, y + 14}, line, {.size = kBody, .fill = "#3a4651"});
      y += 18;
    }
    y += 2;
  }
  return y + 10;
}

std::string Picture::take() {
  if (!file_.tolerated.empty()) leaveOut("what the load did not read and tolerates, " + file_.tolerated);
  heading("Reading this picture");
  constexpr double kKeyWidth = 390, kGap = 40;
  y_ += 8;
  double y = y_, below = y_;
  for (const auto& [icon, text] : keys_) {
    std::string shift = "translate(";
    appendCoordinate(shift, kMargin);
    appendCoordinate(shift += ' ', y);
    svg_.open("g").set("transform", shift += ')').raw(icon).close();
    for (const std::string& line : inLines(text, kKeyWidth - 42, kBody)) {
      svg_.text({kMargin + 42, y + 12.5}, line, {.size = kBody, .fill = "#3a4651"});
      y += 18;
    }
    y += 6;
  }
  below = std::max(below, y);
  const double left = kMargin + kKeyWidth + kGap, both = kPictureWidth - kMargin - left;
  const double half = (both - kGap) / 2;
  const bool isSplit = !leftOut_.empty();
  below = std::max(below, notes(assumed_, "Assumed: the files do not say it", left, y_, isSplit ? half : both));
  below = std::max(below, notes(leftOut_, "Not shown", left + half + kGap, y_, half));
  y_ = below + 16;
  svg_.text({kMargin, y_}, shortened("File " + file_.name, kContentWidth, kSmall), {.size = kSmall, .fill = kMuted});
  y_ += kMargin - 12;

  const std::string body = svg_.take();
  Svg root;
  std::string extent = "0 0 ";
  appendCoordinate(extent, kPictureWidth);
  appendCoordinate(extent += ' ', y_);
  root.open("svg").set("xmlns", "http://www.w3.org/2000/svg").set("xmlns:xlink", "http://www.w3.org/1999/xlink");
  root.set("version", "1.1").set("width", kPictureWidth).set("height", y_).set("viewBox", extent);
  root.set("font-family", kFonts);
  root.open("title").content(title_).close().open("desc").content(description_).close();
  root.rect({0, 0, kPictureWidth, y_}).set("fill", kPaper).close().raw(body);
  return (options_.isInline ? "" : "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") + root.take();
}

void stationTable(Picture& picture, const ToolStationList& list, bool (*holdsTool)(const ToolStation&, const OldTool&),
                  const std::vector<std::uint64_t>* uses) {
  constexpr std::size_t kMostStations = 160, kColumns = 8;
  constexpr double kWidth = kContentWidth / kColumns, kHeight = 132, kIcon = 74, kPad = 8;
  std::vector<std::size_t> shown;
  std::uint64_t empty = 0, left = 0;
  double largest = 0;
  const std::size_t count = std::min(list.stations.size(), list.tools.size());
  for (std::size_t i = 0; i < count; ++i) {
    const OldTool& tool = list.tools[i];
    if (!holdsTool(list.stations[i], tool)) {
      ++empty;
      continue;
    }
    if (shown.size() == kMostStations) {
      ++left;
      continue;
    }
    shown.push_back(i);
    if (const auto size = outlineOf(tool)) largest = std::max({largest, size->width, size->height});
  }
  picture.leaveOut(empty, "station", "stations", "without a tool");
  picture.leaveOut(left, "station", "stations", "beyond the first 160 with a tool");
  if (shown.empty()) return;
  picture.heading("Tools");
  const double scale = largest > 0 ? kIcon / largest : 1, top = picture.y() + 4;
  Svg& svg = picture.svg();
  bool hasCross = false;
  for (std::size_t n = 0; n < shown.size(); ++n) {
    const OldTool& tool = list.tools[shown[n]];
    const std::size_t column = n % kColumns, row = n / kColumns;
    const double x = kMargin + kWidth * static_cast<double>(column);
    const double y = top + kHeight * static_cast<double>(row);
    const std::string number = std::to_string(list.stations[shown[n]].stationNumber);
    svg.text({x + kPad, y + 18}, number, {.size = 13, .isBold = true});
    if (uses != nullptr && (*uses)[shown[n]] > 0)
      svg.text({x + kWidth - kPad - 4, y + 18}, "\xC3\x97" + countText((*uses)[shown[n]]),
               {.size = 12, .fill = kMuted, .anchor = "end"});
    const Point centre{x + kWidth / 2, y + 12 + kIcon / 2};
    Path outline;
    OldTool upright = tool;
    upright.orientation = 0;
    if (appendOutline(outline, upright, centre, scale)) {
      svg.path(outline.data()).set("fill", "#cfd8e1").set("stroke", kInk).set("stroke-width", 1).close();
    } else {
      hasCross = true;
      Path cross;
      cross.move({centre.x - 7, centre.y - 7}).line({centre.x + 7, centre.y + 7});
      cross.move({centre.x - 7, centre.y + 7}).line({centre.x + 7, centre.y - 7});
      svg.path(cross.data()).set("fill", "none").set("stroke", kMuted).set("stroke-width", 1.2).close();
    }
    const std::string_view kind = toolKind(tool.shapeCode);
    const std::string name = kind.empty() ? "code " + std::to_string(tool.shapeCode) : std::string(kind);
    svg.text({x + kPad, y + 102}, shortened(name, kWidth - 2 * kPad, kSmall), {.size = kSmall, .fill = kMuted});
    svg.text({x + kPad, y + 117}, shortened(dimensionText(tool), kWidth - 2 * kPad, 12), {.size = 12});
    svg.rect({x, y, kWidth - 6, kHeight - 6}).set("fill", "none").set("stroke", kRule).set("rx", 4).close();
  }
  const std::size_t rows = (shown.size() + kColumns - 1) / kColumns;
  picture.moveTo(top + kHeight * static_cast<double>(rows) + 4);
  if (hasCross)
    picture.key(
        "tool without an outline: a special tool, whose outline is in a file of its own, or one whose "
        "dimensions do not define it",
        [](Svg& icon, const Box&) {
          icon.path(Path().move({7, 2}).line({19, 14}).move({7, 14}).line({19, 2}).data());
          icon.set("fill", "none").set("stroke", kMuted).set("stroke-width", 1.2).close();
        });
}

}  // namespace oldtorvio::draw
