// Creates a nest and saves it at three versions: a plate, twelve parts in sixty placements and a machine
// with forty stations. Uses only the shared library and the public headers.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "OldTorvIO.h"

using namespace oldtorvio;

namespace {

constexpr int kParts = 12;          // with five placements each
constexpr int kShapesOfAPart = 16;  // each made by a different station
constexpr int kPunches = 36;        // the stations that the parts use
constexpr int kSpecialTool = 37, kSlotTool = 38, kUnusedTool = 39, kLaser = 40;

// Sets a text of a record. All texts of this nest fit their fields.
template <std::size_t N>
void put(char (&field)[N], std::string_view text) {
  if (!setFixedText(field, text)) throw std::length_error(std::string(text));
}

std::uint32_t bitsOf(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

std::string twoDigits(int number) {
  std::string digits = std::to_string(number);
  if (number < 10) digits.insert(digits.begin(), '0');
  return digits;
}

Shape shapeAt(std::int8_t type, float x, float y, float size) {
  Shape shape;
  shape.type = type;
  shape.x = x;
  shape.y = y;
  shape.values[0] = size;
  return shape;
}

PatternItem itemOf(int tool) {
  PatternItem item;
  item.toolNumber = tool;
  return item;
}

Pattern placement(const PatternItemList& items, std::uint32_t group, std::uint32_t columns, std::uint32_t rows) {
  Pattern pattern;
  pattern.items = items;
  pattern.patternWord = group;
  pattern.gridCount1 = columns;
  pattern.gridCount2 = rows;
  return pattern;
}

// Parts lie side by side with this distance between them.
constexpr float kGap = 0.5F;

// Places the four copies of the first placement of each part, from left to right.
void placeBlocks(std::vector<TorvPart>& parts, std::initializer_list<int> numbers, float x, float y) {
  for (const int number : numbers) {
    TorvPart& part = parts[static_cast<std::size_t>(number - 1)];
    Pattern& block = part.patterns[0];
    block.originX = x;
    block.originY = y;
    block.gridStep1 = bitsOf(part.width + kGap);
    block.gridStep2 = bitsOf(part.height + kGap);
    x += 2 * (part.width + kGap) + kGap / 2;
  }
}

// Places the single copy of a part, turned counterclockwise about its origin.
void placeTurned(TorvPart& part, float x, float y, float degrees) {
  Pattern& single = part.patterns[1];
  const float radians = degrees * 0.017453292F;
  single.originX = x;
  single.originY = y;
  single.rotationCos = std::cos(radians);
  single.rotationSin = std::sin(radians);
}

void place(std::vector<TorvPart>& parts) {
  placeBlocks(parts, {12, 11, 10, 9, 6}, 1.0F, 2.5F);
  placeBlocks(parts, {8, 7, 5, 4, 3, 2, 1}, 1.0F, 15.75F);
  float x = 1.0F;
  for (int number = 1; number <= 9; ++number) {
    TorvPart& part = parts[static_cast<std::size_t>(number - 1)];
    x += part.height;
    placeTurned(part, x, 27.0F, 90.0F);
    x += kGap;
  }
  placeTurned(parts[9], x + 9.5F, 33.0F, 180.0F);
  placeTurned(parts[10], x + 14.0F, 27.5F, 15.0F);
  placeTurned(parts[11], x + 31.0F, 28.0F, 30.0F);
}

TorvPart bracket(int number) {
  TorvPart part;
  const std::string name = "BRACKET " + twoDigits(number);
  put(part.partName, name);
  put(part.partFullDosName, R"(C:\KESTRADA\PARTS\)" + name + ".part");
  put(part.woNumber, number <= kParts / 2 ? "WO-7001" : "WO-7002");
  part.width = 4.0F + 0.5F * static_cast<float>(number);
  part.height = 3.0F + 0.25F * static_cast<float>(number);
  PatternItemList items;
  for (int i = 0; i < kShapesOfAPart; ++i) {
    const auto column = static_cast<float>(i % 4), row = static_cast<float>(i / 4);
    part.shapes.shapes.push_back(
        shapeAt(1, part.width * (0.14F + 0.24F * column), part.height * (0.14F + 0.24F * row), 0.125F));
    items.push_back(itemOf(1 + (3 * number + i) % kPunches));
  }
  const auto group = static_cast<std::uint32_t>(100 + number);
  part.patterns.push_back(placement(items, group, 2, 2));
  part.patterns.push_back(placement(items, number % 2 == 1 ? group + 100 : 0, 1, 1));
  return part;
}

OldTool toolOf(int station) {
  OldTool tool;
  tool.shapeCode = station <= 24 ? 1 : 3;                                       // round, rectangle
  tool.dimension1 = 0.03125F * static_cast<float>(station == 9 ? 8 : station);  // 9 has the size of 8
  if (station > 24) tool.dimension2 = 0.25F;
  if (station == kSlotTool || station == kUnusedTool) tool.shapeCode = 103;  // square
  if (station == kLaser) tool.shapeCode = 33;
  if (station == kSpecialTool) {
    tool.shapeCode = 108;
    tool.orientation = 0.5F;
    put(tool.specialToolPath, R"(C:\KESTRADA\SPECTOOL\Corner Punch.spt)");
  }
  return tool;
}

void fill(OldMachine& machine) {
  machine.textWidth = sizeof machine.machineText1;
  put(machine.path, R"(C:\KESTRADA\MACHINES\TP-40L.mch)");
  put(machine.machineText1, "TURRET PUNCH WITH LASER");
  put(machine.ncPath, R"(C:\KESTRADA\NC\)");
  put(machine.displayName, "TP-40L in hall 2");
  machine.machineWord1 = 0.5F;  // a load replaces one close to 0 by sizeX
  machine.machineKind = 4;      // combined: one of its stations cuts
  machine.clampInfo.clampCount = 4;
  const float positions[4] = {6.0F, 18.0F, 30.0F, 42.0F};
  std::copy(std::begin(positions), std::end(positions), machine.clampInfo.clampPositions);
  for (int number = 1; number <= kLaser; ++number) {
    ToolStation station;
    station.stationNumber = number;
    station.toolCount = 1;
    station.valueCount = 1;
    if (number == kLaser) station.byteA = 2;
    machine.stationsA.stations.push_back(station);
    machine.stationsA.tools.push_back(toolOf(number));
  }
}

// The plate has shapes, items, a slot and a profile of its own.
void fillOwnWork(OldSheet& sheet) {
  for (int i = 0; i < 30; ++i) {
    sheet.shapes.shapes.push_back(shapeAt(2, static_cast<float>(3 * i), 47.0F, 0.25F));
    sheet.patternItems.push_back(itemOf(i < 28 ? kUnusedTool : kSpecialTool));  // the first 28 are ignored
  }
  sheet.processSlotCount = 1;
  sheet.processSlots[0].toolUse = 1;
  sheet.processSlots[0].toolActive = 1;
  sheet.processSlots[0].firstToolNumber = kSlotTool;
  ProfileRecord contour;
  contour.profileWords[1] = 7;
  contour.firstBlock.motionKind = 3;
  contour.profileCondition1 = contour.profileCondition2 = 1;
  sheet.profiles.push_back(contour);
  sheet.setupList.entries.emplace_back();
}

void fillSkeleton(OldSheet& sheet) {
  put(sheet.skeletonDosName, R"(C:\KESTRADA\SKELETON\REST 18%%.part)");
  const float areas[3] = {12.5F, 7.25F, 99.0F};
  for (const float area : areas) {
    Shape cut = shapeAt(17, 0, 0, 0);
    cut.values[7] = area;
    cut.values[8] = area < 99.0F ? -0.17456F : 0;  // the mark of a cut
    sheet.skeletonShapes.shapes.push_back(cut);
  }
}

void fill(OldSheet& sheet) {
  put(sheet.sheetLabel, "NEST 4711");
  sheet.width = 96.0F;
  sheet.height = 48.0F;
  sheet.thickness = 0.0625F;
  for (int number = 1; number <= kParts; ++number) sheet.partList.parts.push_back(bracket(number));
  place(sheet.partList.parts);
  fillOwnWork(sheet);
  fillSkeleton(sheet);
  sheet.workList.resize(60);

  sheet.clampInfo.clampCount = 3;
  sheet.clampInfo.clampSpacing = 8.0F;
  sheet.clampInfo.clampWord1 = 5;
  sheet.clampInfo.clampWord2 = bitsOf(1.5F);
  sheet.clampInfo.clampWord3 = bitsOf(2.5F);
  sheet.clampInfo.clampWord4 = bitsOf(3.5F);

  sheet.paramTable.version = 180;
  sheet.paramTable.nameLength = sizeof sheet.paramTable.name;
  put(sheet.paramTable.name, "STEEL 0.0625");
  sheet.paramTable.intParams[55] = 4;
  sheet.paramTable.intParams[101] = -1;
  sheet.paramTable.intParams[600] = 7;
  fill(sheet.machine);

  sheet.utilization = 0.45703125F;
  put(sheet.partTexts[2], "COLD ROLLED");
  put(sheet.partTexts[4], "RACK 12");
  put(sheet.materialGroup, "MILD STEEL");
  put(sheet.materialType, "DC01");
  put(sheet.materialText3, "OILED");
  put(sheet.materialText4, "GRAIN ALONG X");
  put(sheet.materialText5, "STOCK 17");
  sheet.lateValue = 7.875;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: example_nest FOLDER\n";
    return 2;
  }
  const std::unique_ptr<OldSheet, void (*)(OldSheet*)> sheet(CreateSheetInfo(), DeleteSheetInfo);
  if (!sheet) return 1;
  fill(*sheet);
  for (const int version : {80, 112, 180}) {
    const std::string name = "nest_" + std::to_string(version) + ".sheet";
    if (SaveOldSheet((argv[1] + ("/" + name)).c_str(), sheet.get(), static_cast<std::uint16_t>(version)) != 0) {
      std::cerr << "cannot save " << name << " to " << argv[1] << "\n";
      return 1;
    }
    std::cout << name << ": " << sheet->partList.parts.size() << " parts, " << sheet->machine.stationsA.stations.size()
              << " stations\n";
  }
  return 0;
}
