// A machine: its size and work area to scale, the limits of its stations, clamps, and the tools at its stations.
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "torvio/draw/draw.h"
#include "torvio/draw/tool_outline.h"

namespace oldtorvio::draw {
namespace {

std::optional<Box> boxOf(const float (&values)[4]) {
  for (const float value : values)
    if (!std::isfinite(value)) return std::nullopt;
  const Box box{static_cast<double>(values[0]), static_cast<double>(values[1]),
                static_cast<double>(values[2]) - static_cast<double>(values[0]),
                static_cast<double>(values[3]) - static_cast<double>(values[1])};
  if (!(box.width > 0) || !(box.height > 0)) return std::nullopt;
  return box;
}

Box around(const std::optional<Box>& first, const Box& second) {
  if (!first) return second;
  const double left = std::min(first->x, second.x), bottom = std::min(first->y, second.y);
  return {left, bottom, std::max(first->right(), second.right()) - left,
          std::max(first->bottom(), second.bottom()) - bottom};
}

void icon(Svg& svg, const char* fill, const char* stroke, const char* dashes) {
  svg.rect({1, 1, 24, 14}).set("fill", fill).set("stroke", stroke).set("stroke-width", 1.2);
  if (*dashes != '\0') svg.set("stroke-dasharray", dashes);
  svg.close();
}

}  // namespace

std::string drawRecord(const OldMachine& machine, const FileNote& file, const PictureOptions& options) {
  Picture picture(file, options);
  const std::string name = picture.decoded(machine.displayName), text = picture.decoded(machine.machineText1);
  picture.title(!name.empty() ? name : !text.empty() ? text : file.name);
  picture.fact("Text", name.empty() ? "" : text);
  if (file.read.has("machineKind")) picture.fact("Kind", std::to_string(machine.machineKind));
  if (file.read.has("sizeX"))
    picture.fact("Size", sizesText(static_cast<double>(machine.sizeX), static_cast<double>(machine.sizeY)));
  if (file.read.has("stationsA")) picture.fact("Stations", countText(machine.stationsA.stations.size()));
  if (!machine.stationsB.stations.empty())
    picture.fact("Second station list", countText(machine.stationsB.stations.size()));
  if (!machine.stationsC.stations.empty())
    picture.fact("Third station list", countText(machine.stationsC.stations.size()));
  if (file.read.has("clampInfo")) picture.fact("Clamps", std::to_string(machine.clampInfo.clampCount));
  picture.fact("Material", picture.decoded(std::string_view(machine.material.name)));
  if (file.read.has("ncPath")) picture.fact("NC path", picture.decoded(machine.ncPath));
  picture.head();

  // The machine queries return zeros for these two kinds.
  constexpr std::int32_t kWithoutLimits = 1, kWithoutArea = 2;
  std::optional<Box> world, size, area;
  if (file.read.has("sizeX") && isLength(machine.sizeX) && isLength(machine.sizeY))
    world = size = Box{0, 0, static_cast<double>(machine.sizeX), static_cast<double>(machine.sizeY)};
  if (file.read.has("workArea") && machine.machineKind != kWithoutArea) area = boxOf(machine.workArea.areaValues);
  if (area) world = around(world, *area);
  // Stations often share their limits: each box once, with the numbers of its stations.
  std::map<std::tuple<double, double, double, double>, std::uint64_t> limits;
  constexpr std::size_t kMostLimits = 200;
  std::uint64_t withoutLimits = 0, left = 0, far = 0;
  if (machine.machineKind != kWithoutLimits && world) {
    for (const ToolStation& station : machine.stationsA.stations) {
      const auto box = boxOf(station.limits);
      if (!box) {
        ++withoutLimits;
      } else if (box->width > 4 * world->width || box->height > 4 * world->height ||
                 std::fabs(box->x) > 4 * world->width || std::fabs(box->y) > 4 * world->height) {
        ++far;
      } else {
        const std::tuple key(box->x, box->y, box->width, box->height);
        if (limits.size() == kMostLimits && limits.find(key) == limits.end())
          ++left;
        else
          ++limits[key];
      }
    }
    for (const auto& [box, count] : limits)
      world = around(world, Box{std::get<0>(box), std::get<1>(box), std::get<2>(box), std::get<3>(box)});
  }

  if (world) {
    const View view = picture.fit(*world, 74, 56, 40, 36, 560);
    const auto drawn = [&](const Box& box) {
      const Point low = view.at(box.x, box.y);
      return Box{low.x, low.y - box.height * view.scale, box.width * view.scale, box.height * view.scale};
    };
    Svg& svg = picture.svg();
    if (area) {
      svg.rect(drawn(*area)).set("fill", "#dfe9dc").set("stroke", kInk).set("stroke-width", 1.5).close();
      picture.key("work area: " + sizesText(area->width, area->height) + " from " + sizeText(area->x) + ", " +
                      sizeText(area->y),
                  [](Svg& mark, const Box&) { icon(mark, "#dfe9dc", kInk, ""); });
      picture.assume("the four values of the work area are its smallest x and y and its largest x and y");
    }
    if (size) {
      svg.rect(drawn(*size)).set("fill", "none").set("stroke", kInk).set("stroke-width", 1.2);
      svg.set("stroke-dasharray", "9 5").close();
      picture.dimensions(drawn(*size), size->width, size->height);
      picture.key("size of the machine", [](Svg& mark, const Box&) { icon(mark, "none", kInk, "6 3"); });
      picture.assume("the size of the machine is measured from 0, 0");
    } else if (area) {
      picture.dimensions(drawn(*area), area->width, area->height);
    }
    for (const auto& [box, count] : limits) {
      svg.rect(drawn({std::get<0>(box), std::get<1>(box), std::get<2>(box), std::get<3>(box)})).set("fill", "none");
      svg.set("stroke", kAccent).set("stroke-width", 0.9).set("stroke-dasharray", "2 3").close();
    }
    if (!limits.empty()) {
      picture.key("limits of a station; stations with the same limits share one rectangle",
                  [](Svg& mark, const Box&) { icon(mark, "none", kAccent, "2 3"); });
      picture.assume("the limits of a station are the smallest x and y and the largest x and y");
    }
    const Box plate = drawn(area ? *area : size ? *size : *world);
    if (file.read.has("clampInfo"))
      picture.clamps(view, machine.clampInfo.clampPositions, machine.clampInfo.clampCount, plate,
                     area ? "the work area" : "the machine");
    picture.scaleBar(view);
    picture.leaveOut(withoutLimits, "station", "stations", "in the drawing: without limits");
    picture.leaveOut(far, "station", "stations", "in the drawing: limits far outside of the machine");
    picture.leaveOut(left, "station", "stations", "in the drawing: more than 200 different limits");
  } else {
    picture.moveTo(picture.y() + 60);
    picture.svg().text({kPictureWidth / 2, picture.y()}, "Neither a size nor a work area to draw",
                       {.size = 18, .fill = kMuted, .anchor = "middle"});
    picture.moveTo(picture.y() + 40);
  }
  picture.assume("the file does not name its length unit");
  stationTable(picture, machine.stationsA, machineHoldsTool, nullptr);
  picture.leaveOut(machine.stationsB.stations.size(), "station", "stations", "of the second list");
  picture.leaveOut(machine.stationsC.stations.size(), "station", "stations", "of the third list");
  if (!machine.stationsA.tools.empty()) picture.assume(kDimensionsAssumed);
  return picture.take();
}

}  // namespace oldtorvio::draw
