// Pictures: always well-formed, bounded and without effects of what a file says; rectangles where placements say.
#include "torvio/draw/draw.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <limits>
#include <memory>
#include <regex>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "src/frame/text/text.h"
#include "src/tooling/inventory_io.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/output_checks.h"
#include "torvio/draw/contact_sheet.h"
#include "torvio/draw/tool_outline.h"

namespace {

using namespace oldtorvio;
using namespace oldtorvio::draw;
using namespace testing_support;

// ---- the check of XML ----------------------------------------------------------------------------------

TEST(SvgCheck, FindsWhatIsWrong) {
  EXPECT_EQ(svgFault("<svg a=\"1\"><g/>x &amp; y</svg>"), "");
  for (const char* wrong : {"<svg>", "<svg></g>", "<svg><script/></svg>", "<svg>&</svg>", "<svg a=1/>", "<svg/><svg/>",
                            "<svg onload=\"x\"/>", "<svg>\x1b</svg>", "<svg x=\"nan\"/>", "<svg/>x",
                            "<svg><use xlink:href=\"http:\"/></svg>"})
    EXPECT_NE(svgFault(wrong), "") << wrong;
}

// ---- records -------------------------------------------------------------------------------------------

std::unique_ptr<OldSheet> plate(float width, float height) {
  auto sheet = std::make_unique<OldSheet>();
  sheet->width = width;
  sheet->height = height;
  return sheet;
}

Pattern& place(OldSheet& sheet, float width, float height, float x, float y) {
  TorvPart& part = sheet.partList.parts.emplace_back();
  part.width = width;
  part.height = height;
  Pattern& pattern = part.patterns.emplace_back();
  pattern.originX = x;
  pattern.originY = y;
  return pattern;
}

std::string drawn(const OldSheet& sheet) { return drawRecord(sheet, {"file.sheet", "sheet, version 180", "", {}}, {}); }

// The corners of the parts in length units, from the coordinates of the picture.
std::vector<std::vector<Point>> partsOf(const std::string& svg, double plateWidth, double plateHeight) {
  static const std::regex kPlate(
      "<rect x=\"([0-9.]+)\" y=\"([0-9.]+)\" width=\"([0-9.]+)\" height=\"([0-9.]+)\" fill=\"#e8ebee\"");
  static const std::regex kPart("<path d=\"([^\"]+)\" fill=\"#[0-9a-f]+\" fill-opacity");
  static const std::regex kPoint("[ML](-?[0-9.]+) (-?[0-9.]+)");
  std::smatch found;
  if (!std::regex_search(svg, found, kPlate)) return {};
  const double left = std::stod(found[1]), top = std::stod(found[2]), scale = std::stod(found[3]) / plateWidth;
  EXPECT_NEAR(scale, std::stod(found[4]) / plateHeight, scale / 1000);
  const double bottom = top + std::stod(found[4]);
  std::vector<std::vector<Point>> parts;
  for (std::sregex_iterator part(svg.begin(), svg.end(), kPart), end; part != end; ++part) {
    const std::string data = (*part)[1];
    auto& corners = parts.emplace_back();
    for (std::sregex_iterator point(data.begin(), data.end(), kPoint); point != end; ++point)
      corners.push_back({(std::stod((*point)[1]) - left) / scale, (bottom - std::stod((*point)[2])) / scale});
  }
  return parts;
}

void expectCorners(const std::vector<Point>& corners, const std::vector<Point>& wanted) {
  ASSERT_EQ(corners.size(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_NEAR(corners[i].x, wanted[i].x, 0.01) << i;
    EXPECT_NEAR(corners[i].y, wanted[i].y, 0.01) << i;
  }
}

std::size_t countOf(const std::string& text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

bool contains(const std::string& text, std::string_view part) { return text.find(part) != std::string::npos; }

// ---- sheets --------------------------------------------------------------------------------------------

TEST(SheetPictures, PartsAreWhereTheirPlacementsSay) {
  const auto sheet = plate(100, 50);
  place(*sheet, 20, 10, 5, 7);
  Pattern& upright = place(*sheet, 20, 10, 60, 7);
  upright.rotationCos = 0;
  upright.rotationSin = 1;
  Pattern& half = place(*sheet, 20, 10, 90, 40);
  half.rotationCos = -2;  // no unit vector: only its direction counts
  const auto parts = partsOf(drawn(*sheet), 100, 50);
  ASSERT_EQ(parts.size(), 3U);
  expectCorners(parts[0], {{5, 7}, {25, 7}, {25, 17}, {5, 17}});
  expectCorners(parts[1], {{60, 7}, {60, 27}, {50, 27}, {50, 7}});
  expectCorners(parts[2], {{90, 40}, {70, 40}, {70, 30}, {90, 30}});
}

TEST(SheetPictures, OutlinesHaveTheNumberOfTheirPartAsClass) {
  const auto sheet = plate(100, 50);
  place(*sheet, 20, 10, 5, 7);
  Pattern& grid = place(*sheet, 8, 6, 40, 2);
  grid.gridCount1 = 2;
  grid.gridStep1 = std::bit_cast<std::uint32_t>(10.0F);
  static const std::regex kOutline("<path d=\"[^\"]+\" fill=\"#[0-9a-f]+\" fill-opacity[^>]* class=\"part([0-9]+)\"/>");
  const std::string svg = drawn(*sheet);
  std::vector<std::string> numbers;
  for (std::sregex_iterator part(svg.begin(), svg.end(), kOutline), end; part != end; ++part)
    numbers.push_back((*part)[1]);
  EXPECT_EQ(numbers, (std::vector<std::string>{"1", "2", "2"}));
}

TEST(SheetPictures, AGridRepeatsAPlacementByItsSteps) {
  const auto sheet = plate(100, 50);
  Pattern& grid = place(*sheet, 8, 6, 1, 2);
  grid.gridCount1 = 3;
  grid.gridCount2 = 2;
  grid.gridStep1 = std::bit_cast<std::uint32_t>(10.0F);
  grid.gridStep2 = std::bit_cast<std::uint32_t>(20.0F);
  const std::string svg = drawn(*sheet);
  const auto parts = partsOf(svg, 100, 50);
  ASSERT_EQ(parts.size(), 6U);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const double x = 1 + 10 * static_cast<double>(i % 3), y = 2 + 20 * static_cast<double>(i / 3);
    expectCorners(parts[i], {{x, y}, {x + 8, y}, {x + 8, y + 6}, {x, y + 6}});
  }
  EXPECT_TRUE(contains(svg, "1 part, 6 copies"));
  EXPECT_TRUE(contains(svg, "gridStep1"));
}

TEST(SheetPictures, CopiesWithoutAStepAreOneRectangleWithTheirNumber) {
  const auto sheet = plate(100, 50);
  Pattern& grid = place(*sheet, 30, 20, 1, 2);
  grid.gridCount1 = 7;
  grid.gridCount2 = 3;
  grid.gridStep1 = 5;  // no length: the bits of a number next to 0
  const std::string svg = drawn(*sheet);
  EXPECT_EQ(partsOf(svg, 100, 50).size(), 1U);
  EXPECT_TRUE(contains(svg,
                       "\xC3\x97"
                       "21</text>"));
}

TEST(SheetPictures, OfAMillionCopiesAreBoundedAndSaySo) {
  const auto sheet = plate(60, 45);
  Pattern& grid = place(*sheet, 0.1F, 0.1F, 0, 0);
  grid.gridCount1 = grid.gridCount2 = 1000;
  grid.gridStep1 = std::bit_cast<std::uint32_t>(0.05F);
  grid.gridStep2 = std::bit_cast<std::uint32_t>(0.04F);
  const std::string svg = drawn(*sheet);
  EXPECT_EQ(partsOf(svg, 60, 45).size(), kMostPlacements);
  EXPECT_TRUE(contains(svg, "990,000 copies: beyond the first 10,000 rectangles"));
  EXPECT_LT(svg.size(), 4U << 20U);
  EXPECT_EQ(svgFault(svg), "");
}

TEST(SheetPictures, DistantCopiesAreLeftOutAndDoNotCountTowardsTheLimit) {
  const auto sheet = plate(60, 45);
  Pattern& far = place(*sheet, 10, 8, 0, 0);
  far.gridCount1 = far.gridCount2 = 0xFFFFFFFF;
  far.gridStep1 = far.gridStep2 = std::bit_cast<std::uint32_t>(1e6F);
  Pattern& backwards = place(*sheet, 10, 8, 40, 20);
  backwards.gridCount1 = 1000;
  backwards.gridStep1 = std::bit_cast<std::uint32_t>(-15.0F);
  const std::string svg = drawn(*sheet);
  // Of the first one copy is near the plate. The second runs to the left, half a plate beyond the edge.
  const auto parts = partsOf(svg, 60, 45);
  ASSERT_EQ(parts.size(), 6U);
  expectCorners(parts[0], {{0, 0}, {10, 0}, {10, 8}, {0, 8}});
  expectCorners(parts[5], {{-20, 20}, {-10, 20}, {-10, 28}, {-20, 28}});
  EXPECT_TRUE(contains(svg, "copies: far"));
}

TEST(SheetPictures, NumbersWithoutAPlaceAreCountedAndNotDrawn) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinite = std::numeric_limits<float>::infinity();
  for (const float bad : {kNan, kInfinite, -kInfinite, 1e38F, -1e38F}) {
    const auto sheet = plate(60, 45);
    place(*sheet, 10, 10, bad, 1);
    place(*sheet, 10, 10, 1, bad);
    place(*sheet, bad, 10, 1, 1);
    place(*sheet, 10, bad, 1, 1);
    place(*sheet, 10, 10, 5, 5).rotationCos = bad;
    place(*sheet, 10, 10, 5, 5).gridStep1 = std::bit_cast<std::uint32_t>(bad);
    sheet->shapes.shapes.resize(3);
    sheet->shapes.shapes[0].x = sheet->shapes.shapes[1].y = bad;
    sheet->thickness = bad;
    sheet->machine.clampInfo.clampPositions[0] = bad;
    const std::string svg = drawn(*sheet);
    EXPECT_EQ(svgFault(svg), "") << bad;
    EXPECT_EQ(partsOf(svg, 60, 45).size(), 2U) << bad;
    EXPECT_TRUE(contains(svg, "2 shapes of the sheet: outside of the picture")) << bad;
    EXPECT_TRUE(contains(svg, "1 clamp: outside of the plate")) << bad;
    const auto none = plate(bad, 45);
    place(*none, 10, 10, bad, 1);
    EXPECT_EQ(svgFault(drawn(*none)), "") << bad;
  }
}

TEST(SheetPictures, EmptyTinyHugeAndLongPlatesAreDrawn) {
  for (const auto& [width, height] : std::vector<std::pair<float, float>>{
           {60, 45}, {1e-38F, 1e-38F}, {3e38F, 3e38F}, {1e38F, 1e-38F}, {1e-38F, 1e38F}, {1e-45F, 1}, {1e6F, 10}}) {
    const auto sheet = plate(width, height);
    place(*sheet, width / 4, height / 4, width / 2, height / 2);
    const std::string svg = drawn(*sheet);
    EXPECT_EQ(svgFault(svg), "") << width << ' ' << height;
    EXPECT_TRUE(contains(svg, "length units of the file")) << width << ' ' << height;
  }
  EXPECT_TRUE(contains(drawn(*plate(0, 45)), "Nothing to draw"));
  EXPECT_TRUE(contains(drawn(*plate(-1, 45)), "Nothing to draw"));
  const auto parts = plate(0, 0);
  place(*parts, 10, 5, 3, 4);
  EXPECT_TRUE(contains(drawn(*parts), "the plate: its size is not positive"));
}

// A sheet with more clamps than its machine has positions that no file contains.
TEST(SheetPictures, ClampsAreOnlyWhereTheMachineHasPositions) {
  const auto sheet = plate(96, 48);
  sheet->clampInfo.clampCount = 5;
  const auto marks = [](const std::string& svg) { return countOf(svg, "fill=\"#4a5560\" stroke"); };
  for (const int count : {-1, 0, 2, 5, 8}) {
    sheet->machine.clampInfo.clampCount = count;
    const int placed = std::clamp(count, 0, 5);
    const std::string svg = drawn(*sheet);
    EXPECT_EQ(marks(svg), static_cast<std::size_t>(placed)) << count;
    EXPECT_EQ(contains(svg, countText(static_cast<std::uint64_t>(5 - placed), "clamp", "clamps") +
                                ": the machine has no position for it"),
              placed < 5)
        << count;
  }
}

TEST(SheetPictures, QuantitiesDoNotWrap) {
  const auto sheet = plate(100, 50);
  Pattern& grid = place(*sheet, 8, 6, 1, 2);
  grid.gridCount1 = 65'536;
  grid.gridCount2 = 65'537;
  const std::string svg = drawn(*sheet);
  EXPECT_TRUE(contains(svg, "1 part, 4,295,032,832 copies"));
  EXPECT_TRUE(contains(svg,
                       ">\xC3\x97"
                       "4,295,032,832</text>"));
}

// ---- groups --------------------------------------------------------------------------------------------

Shape shapeAt(float x, float y, int type = 1, std::uint32_t flags = 0) {
  Shape shape;
  shape.type = static_cast<std::int8_t>(type);
  shape.flags = flags;
  shape.x = x;
  shape.y = y;
  return shape;
}

// A head at 10, 5, turned by a quarter, with a member 3 to the right of it in its own frame.
std::vector<Shape> groupOfOne() {
  std::vector<Shape> shapes{shapeAt(1, 1), shapeAt(10, 5, 7), shapeAt(3, 0, 1, 128)};
  shapes[1].values[2] = 1.5707964F;
  return shapes;
}
std::vector<Shape> withoutGroup() { return {shapeAt(1, 1), shapeAt(10, 5), shapeAt(10, 8)}; }

TEST(Groups, MembersAreInTheFrameOfTheirHead) {
  const Box limits{0, 0, 100, 100};
  ShapeList group, plain;
  group.shapes = groupOfOne();
  plain.shapes = withoutGroup();
  const WorkMarks grouped = marksOf(group, nullptr, nullptr, limits, {0, 0}, 1, 100);
  const WorkMarks placed = marksOf(plain, nullptr, nullptr, limits, {0, 0}, 1, 100);
  EXPECT_EQ(grouped.crosses.data(), placed.crosses.data());
  EXPECT_TRUE(grouped.hasGroups);
  EXPECT_FALSE(placed.hasGroups);
  // Without a head before it a member is where it says.
  group.shapes = {shapeAt(3, 4, 1, 128)};
  plain.shapes = {shapeAt(3, 4)};
  EXPECT_EQ(marksOf(group, nullptr, nullptr, limits, {0, 0}, 1, 100).crosses.data(),
            marksOf(plain, nullptr, nullptr, limits, {0, 0}, 1, 100).crosses.data());
}

TEST(Groups, ToolsOfMembersAreTurnedWithThem) {
  const Box limits{0, 0, 100, 100};
  ShapeList group, plain;
  group.shapes = groupOfOne();
  plain.shapes = withoutGroup();
  PatternItemList items(3);
  items[2].toolNumber = 1;
  ToolStationList list;
  list.stations.resize(1);
  list.tools.resize(1);
  list.tools[0].shapeCode = 3;
  list.tools[0].dimension1 = 4;
  list.tools[0].dimension2 = 2;
  ToolStationList turned = list;
  turned.tools[0].orientation = 1.5707964F;
  EXPECT_EQ(marksOf(group, &items, &list, limits, {0, 0}, 1, 100).outlines.data(),
            marksOf(plain, &items, &turned, limits, {0, 0}, 1, 100).outlines.data());
}

TEST(Groups, OfASheetAndOfItsSkeletonArePlacedAlike) {
  for (const bool isSkeleton : {false, true}) {
    const auto grouped = plate(60, 45), placed = plate(60, 45);
    (isSkeleton ? grouped->skeletonShapes : grouped->shapes).shapes = groupOfOne();
    (isSkeleton ? placed->skeletonShapes : placed->shapes).shapes = withoutGroup();
    const auto marks = [](const std::string& svg) {
      static const std::regex kMarks("<path d=\"([^\"]+)\" fill=\"[^\"]+\" stroke=\"#a3420b\" stroke-width=\"1\"");
      std::smatch found;
      return std::regex_search(svg, found, kMarks) ? found[1].str() : "none";
    };
    EXPECT_NE(marks(drawn(*grouped)), "none");
    EXPECT_EQ(marks(drawn(*grouped)), marks(drawn(*placed))) << isSkeleton;
    EXPECT_TRUE(contains(drawn(*grouped), "the last head before it"));
    EXPECT_FALSE(contains(drawn(*placed), "the last head before it"));
  }
}

TEST(SheetPictures, TextsOfTheFileStayTexts) {
  const auto sheet = plate(60, 45);
  place(*sheet, 50, 30, 1, 1);
  TorvPart& part = sheet->partList.parts[0];
  frame::setText(part.partName, "\x1b]<script>&amp;\"'\n\x9b\x81\xE4");
  frame::setText(part.woNumber, "]]><!--");
  frame::setText(sheet->sheetLabel, "</title></svg><script>alert(1)</script>");
  std::fill(std::begin(sheet->materialType), std::end(sheet->materialType), '<');  // without a NUL
  const std::string svg = drawn(*sheet);
  EXPECT_EQ(svgFault(svg), "");
  EXPECT_TRUE(contains(svg, "&lt;/title&gt;&lt;/svg&gt;&lt;script&gt;alert(1)&lt;/script&gt;"));
  EXPECT_TRUE(contains(svg, "&lt;script&gt;&amp;amp;&quot;&#39;\xEF\xBF\xBD"));
  EXPECT_TRUE(contains(svg, "\xC3\xA4"));

  PictureOptions cyrillic;
  cyrillic.encoding = *values::TextEncoding::named("cp1251");
  EXPECT_TRUE(contains(drawRecord(*sheet, {"f", "sheet", "", {}}, cyrillic), "\xD0\xB4"));  // 0xE4 there
}

TEST(SheetPictures, ToolWorkIsWrittenOnceForAllCopies) {
  const auto sheet = plate(60, 45);
  Pattern& grid = place(*sheet, 10, 8, 1, 1);
  grid.gridCount1 = 4;
  grid.gridStep1 = std::bit_cast<std::uint32_t>(12.0F);
  grid.items.resize(2);
  grid.items[0].toolNumber = 1;
  grid.items[1].toolNumber = 99;  // no such station
  sheet->partList.parts[0].shapes.shapes.resize(3);
  sheet->partList.parts[0].shapes.shapes[0].x = sheet->partList.parts[0].shapes.shapes[0].y = 4;
  sheet->partList.parts[0].shapes.shapes[2].x = -5;  // outside
  sheet->machine.stationsA.stations.resize(1);
  sheet->machine.stationsA.tools.resize(1);
  sheet->machine.stationsA.tools[0].shapeCode = 1;
  sheet->machine.stationsA.tools[0].dimension1 = 2;
  const std::string svg = drawn(*sheet);
  EXPECT_EQ(countOf(svg, "<defs>"), 1U);
  EXPECT_EQ(countOf(svg, "<use "), 4U);
  EXPECT_TRUE(contains(svg, "1 shape of a part: outside of its rectangle"));
  EXPECT_EQ(svgFault(svg), "");
}

TEST(SheetPictures, MarksOfManyPlacementsAreCapped) {
  const auto sheet = plate(60, 45);
  Pattern& grid = place(*sheet, 10, 8, 0, 0);
  grid.gridCount1 = 5000;
  grid.gridStep1 = std::bit_cast<std::uint32_t>(0.001F);
  sheet->partList.parts[0].shapes.shapes.resize(5000);
  const std::string svg = drawn(*sheet);
  EXPECT_EQ(countOf(svg, "<use "), kMostMarksOfSheet / kMostMarks);
  EXPECT_TRUE(contains(svg, "beyond the first 2,000 of the part"));
  EXPECT_LT(svg.size(), 4U << 20U);
}

TEST(SheetPictures, ClampsAreAsManyAsTheSheetSaysWhereItsMachineSays) {
  const auto sheet = plate(100, 50);
  sheet->clampInfo.clampCount = 3;
  sheet->clampInfo.clampPositions[0] = 99;
  sheet->machine.clampInfo.clampCount = 8;
  for (int i = 0; i < 8; ++i) sheet->machine.clampInfo.clampPositions[i] = static_cast<float>(10 * i + 10);
  const std::string svg = drawn(*sheet);
  EXPECT_EQ(countOf(svg, "fill=\"#4a5560\" stroke"), 3U);
  for (const std::int32_t count : {0, -5, std::numeric_limits<std::int32_t>::min()}) {
    sheet->clampInfo.clampCount = count;
    EXPECT_EQ(countOf(drawn(*sheet), "fill=\"#4a5560\" stroke"), 0U);
  }
  sheet->clampInfo.clampCount = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(countOf(drawn(*sheet), "fill=\"#4a5560\" stroke"), 8U);
}

// ---- all kinds -----------------------------------------------------------------------------------------

TEST(Pictures, EveryKindVersionAndCutIsWellFormed) {
  PictureOptions options;
  options.idPrefix = "x";
  int pictures = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes file = kind.file(version);
      const DrawnFile whole = drawFile(file.span(), kind.kind, "a<b.file", options);
      EXPECT_EQ(whole.svg.empty(), !canDraw(kind.kind)) << kind.name;
      if (whole.svg.empty()) continue;
      EXPECT_EQ(svgFault(whole.svg), "") << kind.name << ' ' << version;
      EXPECT_EQ(whole.fault, "") << kind.name << ' ' << version;
      EXPECT_TRUE(contains(whole.svg, "<title>")) << kind.name;
      ++pictures;
      int damaged = 0;
      const std::uint64_t read = explain::checkFile(file.span(), kind.kind).walked;
      for (std::size_t tenth = 0; tenth < 10; ++tenth) {
        const Bytes cut = kind.file(version).cut(static_cast<std::size_t>(read) * tenth / 10);
        const DrawnFile part = drawFile(cut.span(), kind.kind, "cut", options);
        EXPECT_EQ(svgFault(part.svg), "") << kind.name << ' ' << version << ' ' << tenth;
        const bool isDamaged = explain::checkFile(cut.span(), kind.kind).fault.has_value();
        EXPECT_NE(part.fault.empty(), isDamaged) << kind.name << ' ' << version << ' ' << tenth;
        EXPECT_EQ(contains(part.svg, "Damaged file"), isDamaged) << kind.name << ' ' << version << ' ' << tenth;
        damaged += isDamaged ? 1 : 0;
      }
      EXPECT_GE(damaged, 9) << kind.name << ' ' << version;
    }
  EXPECT_GT(pictures, 15);
}

TEST(Pictures, KindsInWordsAreThoseThatCanBeDrawn) {
  for (const frame::FileKindInfo& info : frame::kFileKinds) {
    std::string plural(info.name);
    std::replace(plural.begin(), plural.end(), '-', ' ');
    plural += 's';
    EXPECT_EQ(contains(kDrawableKinds, plural), canDraw(info.kind)) << plural;
  }
}

TEST(Pictures, RandomRecordsAreWellFormedAndBounded) {
  const FileNote file{"random", "random, version 180", "", {}};
  for (std::uint32_t seed = 1; seed <= 25; ++seed) {
    RandomRecords random(seed, 12);
    const auto sheet = std::make_unique<OldSheet>();
    random.record(*sheet, 180);
    if (seed % 2 == 0) sheet->width = 60, sheet->height = 45;
    const auto part = std::make_unique<TorvPart>();
    random.record(*part, 180);
    const auto machine = std::make_unique<OldMachine>();
    random.record(*machine, 180);
    SheetPartList list;
    random.record(list, 180, 5);
    for (const std::string& svg : {drawRecord(*sheet, file, {}), drawRecord(*part, file, {}),
                                   drawRecord(list, file, {}), drawRecord(*machine, file, {})}) {
      EXPECT_EQ(svgFault(svg), "") << seed;
      EXPECT_LT(svg.size(), 8U << 20U) << seed;
    }
  }
}

TEST(Pictures, OfADamagedFileOnlyWhatWasReadIsDrawn) {
  OldSheet sheet;
  sheet.width = 77;
  const TempFolder folder;
  const std::string path = folder.path("s.sheet");
  ASSERT_EQ(SaveOldSheet(path.c_str(), &sheet, 180), 0);
  const Bytes file = TempFolder::read(path);
  // The version, the width of texts and a label of 256 bytes come before the plate.
  const auto drawnUpTo = [&](std::size_t size) {
    return drawFile(file.span().first(size), frame::FileKind::sheet, "s", {}).svg;
  };
  EXPECT_TRUE(contains(drawnUpTo(file.size()), ">77</text>"));
  const std::string early = drawnUpTo(200), late = drawnUpTo(400);
  EXPECT_TRUE(contains(early, "Nothing to draw"));
  EXPECT_FALSE(contains(early, "45</text>"));  // a height that the file does not have
  EXPECT_TRUE(contains(late, ">77</text>"));
  EXPECT_FALSE(contains(late, "clamp, not to scale"));
  EXPECT_FALSE(contains(late, "0 parts"));
  EXPECT_TRUE(contains(drawnUpTo(file.size()), "0 parts"));
}

TEST(Pictures, OfTheOldestPartsAreNotCalledDamaged) {
  const Bytes file = Bytes().i16(3).f32(30).f32(20).zeros(72);
  const DrawnFile picture = drawFile(file.span(), frame::FileKind::part, "old", {});
  EXPECT_FALSE(contains(picture.svg, "amaged"));
  EXPECT_TRUE(contains(picture.svg, "No load reads all of a file of this version"));
  EXPECT_TRUE(contains(picture.svg, ">30</text>"));
  const Bytes cut = file.cut(40);
  EXPECT_TRUE(contains(drawFile(cut.span(), frame::FileKind::part, "old", {}).svg, "Damaged file"));
}

TEST(Pictures, ToleratedFaultsAreNamed) {
  const Bytes cut = machineFile(152);
  EXPECT_TRUE(contains(drawFile(cut.span().first(cut.size() - 1), frame::FileKind::machine, "m", {}).svg,
                       "the load did not read"));
  EXPECT_FALSE(contains(drawFile(cut.span(), frame::FileKind::machine, "m", {}).svg, "the load did not read"));
}

TEST(Pictures, OfAPartSayThatItsPatternMovesNothing) {
  TorvPart part;
  part.shapes.shapes.resize(1);
  part.patterns.resize(1);
  const auto says = [&] { return contains(drawRecord(part, {"p", "part", "", {}}, {}), "do not move the shapes"); };
  EXPECT_FALSE(says());
  part.patterns[0].originX = 2;
  EXPECT_TRUE(says());
  part.patterns[0].originX = 0;
  part.patterns[0].rotationSin = 1;
  EXPECT_TRUE(says());
}

TEST(Pictures, PartsHaveNoNameThatTheirFileLacks) {
  const Bytes file = storedPartFile(180);
  EXPECT_FALSE(contains(drawFile(file.span(), frame::FileKind::part, "p.part", {}).svg, "NEW PART"));
}

TEST(Pictures, StationsOfAMachineWithoutAToolAreLeftOut) {
  OldMachine machine;
  machine.stationsA.stations.resize(3);
  machine.stationsA.tools.resize(3);
  for (OldTool& tool : machine.stationsA.tools) tool.shapeCode = 1, tool.dimension1 = 1;
  machine.stationsA.stations[0].toolCount = 1;
  machine.stationsA.stations[1].toolCount = -1;
  machine.stationsB = machine.stationsA;
  const std::string svg = drawRecord(machine, {"m", "machine", "", {}}, {});
  EXPECT_EQ(countOf(svg, ">ROUND</text>"), 1U);
  EXPECT_TRUE(contains(svg, "2 stations: without a tool"));
  EXPECT_TRUE(contains(svg, "3 stations: of the second list"));
}

TEST(Pictures, PartsShowTheOutlinesOfTheirTools) {
  TorvPart part;
  part.width = 10;
  part.height = 5;
  part.shapes.shapes.resize(2);
  part.shapes.shapes[0].x = part.shapes.shapes[0].y = 2;
  part.patterns.resize(1);
  part.patterns[0].items.resize(2);
  part.patterns[0].items[0].toolNumber = 1;
  part.toolStations.stations.resize(2);
  part.toolStations.tools.resize(2);
  part.toolStations.tools[0].shapeCode = 3;
  part.toolStations.tools[0].dimension1 = part.toolStations.tools[0].dimension2 = 1;
  part.toolStations.tools[1].shapeCode = -7;
  const std::string svg = drawRecord(part, {"p", "part", "", {}}, {});
  EXPECT_TRUE(contains(svg, ">RECTANGLE</text>"));
  EXPECT_TRUE(contains(svg, ">code -7</text>"));
  EXPECT_TRUE(contains(svg, "hole of the tool at a shape"));
  EXPECT_TRUE(contains(svg, "placing point of a shape without a tool outline"));
  EXPECT_EQ(svgFault(svg), "");
}

TEST(Pictures, AGroupOfManyPartsIsCapped) {
  SheetPartList list;
  list.parts.resize(300);
  for (std::size_t i = 0; i < list.parts.size(); ++i) list.parts[i].width = static_cast<float>(i % 7 + 1);
  list.parts[3].width = 1e30F;
  list.parts[4].height = -1;
  const std::string svg = drawRecord(list, {"g", "group-part", "", {}}, {});
  EXPECT_EQ(countOf(svg, ">NEW PART</text>"), kMostParts);
  EXPECT_TRUE(contains(svg, "99 parts: beyond the first 200"));
  EXPECT_TRUE(contains(svg, "1 part: the size is not positive"));
  EXPECT_EQ(svgFault(svg), "");
}

// An independent parser, where there is one.
TEST(Pictures, ParseAsXml) {
  if (runShell("python3 -c \"import xml.dom.minidom\"").code != 0) GTEST_SKIP() << "no XML parser";
  const TempFolder folder;
  int count = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes file = kind.file(version);
      const std::string svg = drawFile(file.span(), kind.kind, "\xE2\x80\xAE<\xEF\xBF\xBF>", {}).svg;
      if (svg.empty()) continue;
      (void)folder.write(std::to_string(++count) + ".svg", Bytes::of(std::as_bytes(std::span(svg))));
    }
  ASSERT_GT(count, 15);
  const Outcome run = runShell(
      "python3 -c \"import glob, sys, xml.dom.minidom; print(len([xml.dom.minidom.parse(one) for one in "
      "glob.glob(sys.argv[1] + '/*.svg')]))\" " +
      folder.path());
  EXPECT_EQ(run.output, std::to_string(count) + "\n") << run.errors;
}

// ---- tools ---------------------------------------------------------------------------------------------

TEST(ToolOutlines, NamesAreThoseOfTheLibrary) {
  OldToolInventory inventory;
  for (int code = 0; code <= 120; ++code) {
    if (code == 108) continue;  // named after its file there
    inventory.tools.emplace_back().shapeCode = code;
  }
  const TempFolder folder;
  const std::string path = folder.path("all.inv");
  ASSERT_EQ(SaveToolInventory(path.c_str(), inventory, 150), 0);
  std::uint32_t count = 0;
  ASSERT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), 0);
  ASSERT_EQ(count, inventory.tools.size());
  for (std::size_t i = 0; i < inventory.tools.size(); ++i) {
    char name[260] = "";
    float numbers[16] = {};
    std::int32_t counts[2] = {};
    GetOldToolInventoryInformation(static_cast<std::int32_t>(i), name, &numbers[0], &numbers[1], &numbers[2],
                                   &numbers[3], &counts[0], &numbers[4], &numbers[5], &numbers[6], &numbers[7],
                                   &numbers[8], &numbers[9], &counts[1], &numbers[10], &numbers[11], &numbers[12],
                                   &numbers[13], &numbers[14], &numbers[15]);
    EXPECT_EQ(toolKind(inventory.tools[i].shapeCode), std::string_view(name)) << inventory.tools[i].shapeCode;
  }
}

OldTool toolOf(std::int32_t code, float first, float second = 0, float third = 0) {
  OldTool tool;
  tool.shapeCode = code;
  tool.dimension1 = first;
  tool.dimension2 = second;
  tool.dimension3 = third;
  return tool;
}

std::string outline(const OldTool& tool) {
  Path path;
  return appendOutline(path, tool, {0, 0}, 1) ? path.data() : "";
}

TEST(ToolOutlines, FollowFromShapeCodeAndDimensions) {
  EXPECT_EQ(outline(toolOf(1, 2)), "M1 0A1 1 0 0 0 -1 0A1 1 0 0 0 1 0Z");
  EXPECT_EQ(outline(toolOf(3, 4, 2)), "M-2 1L2 1L2 -1L-2 -1Z");
  EXPECT_EQ(outline(toolOf(103, 2)), "M-1 1L1 1L1 -1L-1 -1Z");
  EXPECT_EQ(outline(toolOf(104, 10, 9)), "M-3 -4A5 5 0 1 0 3 -4Z");
  EXPECT_EQ(outline(toolOf(105, 10, 8)), "M3 4A5 5 0 0 0 3 -4L-3 -4A5 5 0 0 0 -3 4Z");
  EXPECT_EQ(outline(toolOf(106, 6, 2)), "M2 1A1 1 0 0 0 2 -1L-2 -1A1 1 0 0 0 -2 1Z");
  EXPECT_EQ(outline(toolOf(106, 2, 6)), "M1 -2A1 1 0 0 0 -1 -2L-1 2A1 1 0 0 0 1 2Z");
  EXPECT_EQ(outline(toolOf(107, 4, 2)), "M-2 1L2 1L-2 -1Z");
  EXPECT_EQ(outline(toolOf(110, 4, 4, 1)),
            "M-1 2L1 2A1 1 0 0 0 2 1L2 -1A1 1 0 0 0 1 -2L-1 -2A1 1 0 0 0 -2 -1L-2 1A1 1 0 0 0 -1 2Z");
  EXPECT_EQ(outline(toolOf(110, 4, 4)), outline(toolOf(3, 4, 4)));
  OldTool turned = toolOf(3, 4, 2);
  turned.orientation = 1.5707964F;
  EXPECT_EQ(outline(turned), "M1 2L1 -2L-1 -2L-1 2Z");
}

TEST(ToolOutlines, DimensionsKeepTheirPlaces) {
  EXPECT_EQ(dimensionText(toolOf(1, 0.5F)), "0.5");
  EXPECT_EQ(dimensionText(toolOf(3, 2, 0.25F)), "2 x 0.25");
  EXPECT_EQ(dimensionText(toolOf(110, 2, 0, 0.5F)), "2 x 0 x 0.5");
  EXPECT_EQ(dimensionText(toolOf(3, 0, 2)), "0 x 2");
  EXPECT_EQ(dimensionText(toolOf(3, 0)), "");
  // Codes of symmetry, as far as a load takes them for such.
  EXPECT_EQ(dimensionText(toolOf(108, 3, 2, 1)), "3 x 2");
  EXPECT_EQ(dimensionText(toolOf(108, 3, 2, 2.00005F)), "3 x 2");
  EXPECT_EQ(dimensionText(toolOf(108, 3, 2, 1.5F)), "3 x 2 x 1.5");
}

TEST(ToolOutlines, NeedPositiveDimensionsAndAKnownKind) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInfinite = std::numeric_limits<float>::infinity();
  for (const std::int32_t code : {0, 9, 33, 108, 111, 112, -1, 999})
    EXPECT_EQ(outline(toolOf(code, 1, 1, 1)), "") << code;
  for (const std::int32_t code : {1, 3, 103, 104, 105, 106, 107, 109, 110})
    for (const float bad : {0.0F, -1.0F, kNan, kInfinite}) {
      EXPECT_EQ(outline(toolOf(code, bad, 1, 1)), "") << code << ' ' << bad;
      const bool hasSecond = code != 1 && code != 103;
      EXPECT_EQ(outline(toolOf(code, 1, bad, 1)).empty(), hasSecond) << code << ' ' << bad;
    }
  EXPECT_EQ(outline(toolOf(104, 1, 1)), "");  // a flat that cuts nothing off
  OldTool turned = toolOf(3, 4, 2);
  turned.orientation = kNan;
  EXPECT_EQ(outline(turned), outline(toolOf(3, 4, 2)));
}

// ---- texts and numbers ---------------------------------------------------------------------------------

TEST(Coordinates, AreBoundedAndNeverDependOnTheLocale) {
  const auto text = [](double value) {
    std::string to;
    appendCoordinate(to, value);
    return to;
  };
  const CommaLocale comma;
  EXPECT_EQ(text(1.5), "1.5");
  EXPECT_EQ(text(-0.004), "0");
  EXPECT_EQ(text(-0.006), "-0.01");
  EXPECT_EQ(text(12.349), "12.35");
  EXPECT_EQ(text(12.305), "12.31");
  EXPECT_EQ(text(1e30), "1000000");
  EXPECT_EQ(text(-std::numeric_limits<double>::infinity()), "-1000000");
  EXPECT_EQ(text(std::numeric_limits<double>::quiet_NaN()), "0");
  EXPECT_EQ(sizeText(0.0625), "0.0625");
  EXPECT_EQ(sizeText(1e6), "1000000");
  EXPECT_EQ(sizeText(1e30), "1e+30");
  EXPECT_EQ(sizeText(-0.0), "0");
  EXPECT_EQ(sizeText(std::numeric_limits<double>::quiet_NaN()), "?");
  EXPECT_EQ(countText(1234567), "1,234,567");
  EXPECT_EQ(countText(999), "999");
  EXPECT_EQ(countText(1, "part", "parts"), "1 part");
}

TEST(Labels, AreShortenedToTheirRoom) {
  const std::string name = "A NAME THAT GOES ON AND ON";
  for (const double room : {5.0, 20.0, 60.0, 120.0, 1000.0}) {
    const std::string text = shortened(name, room, 12);
    EXPECT_LE(textWidth(text, 12), room);
    EXPECT_TRUE(text.empty() || text == name || text.ends_with("\xE2\x80\xA6")) << text;
  }
  EXPECT_EQ(shortened(name, 1000, 12), name);
  for (const std::string& line : inLines("words that go on " + std::string(300, 'x') + " end", 100, 12))
    EXPECT_LE(textWidth(line, 12), 100) << line;
  EXPECT_EQ(escaped("\xFF\xC3\xA4\xE2\x80\xAE<\x7F"), "\xEF\xBF\xBD\xC3\xA4\xEF\xBF\xBD&lt;\xEF\xBF\xBD");
}

TEST(Labels, NeverOverlap) {
  LabelSpace space;
  EXPECT_TRUE(space.claim({{0, 0, 100, 10}}));
  EXPECT_FALSE(space.claim({{90, 5, 30, 10}}));
  EXPECT_TRUE(space.claim({{100, 0, 30, 10}}));
  EXPECT_FALSE(space.claim({{300, 0, 10, 10}, {50, 5, 1, 1}}));
  EXPECT_TRUE(space.claim({{300, 0, 10, 10}}));  // the claim before took nothing
}

// ---- the command ---------------------------------------------------------------------------------------

class DrawCommand : public testing::Test {
 protected:
  void SetUp() override {
    OldSheet sheet;
    frame::setText(sheet.sheetLabel, "NEST");
    // Windows has no files with "<" in their names.
    sheet_ = folder_.path(kIsPosix ? "nest & <co>.sheet" : "nest & co.sheet");
    ASSERT_EQ(SaveOldSheet(sheet_.c_str(), &sheet, 180), 0);
    cut_ = folder_.path("cut.sheet");
    std::filesystem::copy_file(sheet_, cut_);
    std::filesystem::resize_file(cut_, std::filesystem::file_size(cut_) / 2);
    material_ = folder_.write("steel.mat", materialFile(180));
  }
  static std::string quoted(const std::string& path) { return "\"" + path + "\""; }
  static std::string contentOf(const std::string& path) { return asText(TempFolder::read(path)); }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_.path()), {}));
  }

  TempFolder folder_;
  std::string sheet_, cut_, material_;
};

TEST_F(DrawCommand, WritesToStandardOutputOrReplacesAFile) {
  const Outcome run = torvio("draw " + quoted(sheet_));
  EXPECT_EQ(run.code, 0) << run.errors;
  EXPECT_EQ(svgFault(run.output), "");
  EXPECT_EQ(torvio("draw -o - " + quoted(sheet_)).output, run.output);
  const std::string out = folder_.path("out.svg");
  for (int i = 0; i < 2; ++i) {
    const std::size_t before = files();
    const Outcome to = torvio("draw " + quoted(sheet_) + " -o " + quoted(out));
    EXPECT_EQ(to.code, 0) << to.errors;
    EXPECT_EQ(to.output, "");
    EXPECT_EQ(contentOf(out), run.output);
    EXPECT_EQ(files(), before + (i == 0 ? 1 : 0));  // no temporary file stays
  }
}

TEST_F(DrawCommand, DrawsWhatCouldBeReadOfADamagedFile) {
  const Outcome run = torvio("draw --kind sheet " + quoted(cut_));
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(contains(run.errors, "damaged at ")) << run.errors;
  EXPECT_EQ(svgFault(run.output), "");
  EXPECT_TRUE(contains(run.output, "Damaged file"));
}

TEST_F(DrawCommand, KeepsTheOutputFileWhenNothingCanBeDrawn) {
  const std::string out = folder_.write("out.svg", Bytes().raw({'o', 'l', 'd'}));
  const Outcome material = torvio("draw " + quoted(material_) + " -o " + quoted(out));
  EXPECT_EQ(material.code, 1);
  EXPECT_TRUE(contains(material.errors, "only sheets, parts, group parts and machines do")) << material.errors;
  EXPECT_EQ(torvio("draw " + quoted(folder_.path("none")) + " -o " + quoted(out)).code, 3);
  EXPECT_EQ(torvio("draw " + quoted(folder_.write("text", Bytes().raw({0xFF, 0xFF, 1}))) + " -o " + quoted(out)).code,
            1);
  EXPECT_EQ(contentOf(out), "old");
  const Outcome nowhere = torvio("draw " + quoted(sheet_) + " -o " + quoted(folder_.path("no/such/out.svg")));
  EXPECT_EQ(nowhere.code, 3);
  EXPECT_TRUE(contains(nowhere.errors, "cannot be created")) << nowhere.errors;
  EXPECT_EQ(torvio("draw " + quoted(sheet_) + " -o " + quoted(folder_.path())).code, 3);
}

TEST_F(DrawCommand, RefusesToReplaceAFileThatItDraws) {
  const std::string before = contentOf(sheet_);
  EXPECT_EQ(torvio("draw " + quoted(sheet_) + " -o " + quoted(sheet_)).code, 2);
  EXPECT_EQ(torvio("draw --html " + quoted(cut_) + " " + quoted(sheet_) + " -o " + quoted(sheet_)).code, 2);
  EXPECT_EQ(contentOf(sheet_), before);
  EXPECT_EQ(torvio("draw " + quoted(sheet_) + " " + quoted(cut_)).code, 2);
  EXPECT_EQ(torvio("draw --encoding utf9 " + quoted(sheet_)).code, 2);
}

TEST_F(DrawCommand, ThePageHasEveryFileAndDistinctIdentifiers) {
  const std::string out = folder_.path("page.html");
  // The extension implies --html.
  const Outcome run =
      torvio("draw " + quoted(sheet_) + " " + quoted(material_) + " " + quoted(sheet_) + " -o " + quoted(out));
  EXPECT_EQ(run.code, 1);
  const std::string page = contentOf(out);
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  EXPECT_EQ(countOf(page, "<figure"), 3U);
  EXPECT_EQ(countOf(page, "<svg"), 2U);
  EXPECT_EQ(countOf(page, kIsPosix ? "nest &amp; &lt;co&gt;.sheet</b>" : "nest &amp; co.sheet</b>"), 2U);
  EXPECT_TRUE(contains(page, "steel.mat</b>"));
  EXPECT_FALSE(contains(page, "<script"));
  EXPECT_FALSE(contains(page, "<?xml"));
  std::set<std::string> ids;
  static const std::regex kId(" id=\"([^\"]+)\"");
  for (std::sregex_iterator id(page.begin(), page.end(), kId), end; id != end; ++id)
    EXPECT_TRUE(ids.insert((*id)[1]).second) << (*id)[1];
  EXPECT_GE(ids.size(), 3U);
}

}  // namespace
