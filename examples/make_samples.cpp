// Creates the sample files of the demo: one or two of every kind that no exported function writes.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include "src/frame/text/text.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"
#include "src/tooling/special_tool_io.h"

using namespace oldtorvio;

namespace {

constexpr std::string_view kCornerPunchPath = R"(C:\KESTRADA\SPECTOOL\Corner Punch.spt)";

Shape shapeAt(std::int8_t type, float x, float y, float size) {
  Shape shape;
  shape.type = type;
  shape.x = x;
  shape.y = y;
  shape.values[0] = size;
  return shape;
}

OldSpecialTool cornerPunch() {
  OldSpecialTool punch;
  punch.tool.shapeCode = 108;
  punch.tool.orientation = 0.5F;
  punch.tool.dimension1 = 2.0F;
  punch.tool.dimension2 = 1.0F;
  punch.tool.dimension3 = 1.0F;  // repeats after a half turn
  punch.tool.firstValueCount = 2;
  punch.tool.firstValues[0] = 0.25F;
  punch.tool.firstValues[1] = 0.75F;
  punch.specialValue = 0.125F;
  for (int i = 0; i < 4; ++i)
    punch.shapes.shapes.push_back(shapeAt(2, static_cast<float>(i % 2), static_cast<float>(i / 2), 0.1F));
  punch.shapes.shapes.push_back(shapeAt(7, 0.5F, 0.5F, 0));  // a head of the tool is not copied into a group
  return punch;
}

OldSpecialTool keySlot() {
  OldSpecialTool slot;
  slot.tool.shapeCode = 108;
  slot.tool.dimension1 = 3.0F;
  slot.shapes.shapes.push_back(shapeAt(1, 0, 0, 0.5F));
  return slot;
}

SheetPartList brackets() {
  SheetPartList list;
  for (int i = 0; i < 3; ++i) {
    TorvPart& part = list.parts.emplace_back();
    frame::setText(part.partName, "BRACKET " + std::to_string(i + 1));
    frame::setText(part.materialType, "STEEL");
    part.width = 10.0F + static_cast<float>(i);
    part.shapes.shapes.assign(2, shapeAt(1, 1.0F, 2.0F, 0.25F));
    part.patterns.emplace_back().items.resize(part.shapes.shapes.size());
    ToolStation station;
    station.stationNumber = 1;
    part.toolStations.stations.push_back(station);
    OldTool tool;
    tool.shapeCode = i == 0 ? 1 : 108;
    tool.dimension1 = 0.5F;
    if (i > 0) frame::setText(tool.specialToolPath, kCornerPunchPath);
    part.toolStations.tools.push_back(tool);
  }
  return list;
}

OldTool toolOf(std::int32_t shapeCode, float dimension1, float dimension2 = 0) {
  OldTool tool;
  tool.shapeCode = shapeCode;
  tool.dimension1 = dimension1;
  tool.dimension2 = dimension2;
  return tool;
}

OldTool specialToolOf(float dimension1, float dimension2) {
  OldTool tool = toolOf(108, dimension1, dimension2);
  tool.specialToolIndex = 1;
  frame::setText(tool.specialToolPath, kCornerPunchPath);
  return tool;
}

void addStation(ToolStationList& list, float left, float orientation, const OldTool& tool) {
  ToolStation station;
  station.stationNumber = static_cast<std::int32_t>(list.stations.size()) + 1;
  station.orientation = orientation;
  station.toolCount = 1;
  station.stationValue = 1.25F;
  const float limits[4] = {left, 2.0F, left + 40.0F, 48.0F};
  std::copy(std::begin(limits), std::end(limits), station.limits);
  station.valueCount = 2;
  station.values[0] = orientation;
  station.values[1] = orientation + 1.5707964F;
  station.offsets[0] = 0.5F;
  list.stations.push_back(station);
  list.tools.push_back(tool);
}

// Material files and machines both store this.
void fillMaterial(OldMaterial& material) {
  material.name = "STEEL";
  MaterialEntry& entry = material.entryList.emplace_back();
  entry.entryKey = 1;
  frame::setText(entry.entryText, "0.06 SHEET");

  material.toolSets.setCount = 1;
  MaterialToolSet& set = material.toolSets.sets[0];
  set.setWord1 = 3;
  set.stepsA.stepCount = 2;
  set.stepsA.stepWord[0] = 10;
  set.stepsA.stepWord[1] = 20;
  material.palette.colourCount = 7;

  // Exactly six: a load appends the six default rules to any other number.
  AngleRule& round = material.rules.angleRules.front();
  round.angleCount = 1;
  round.ruleValues[0] = 0.05F;
  AngleRule& pair = material.rules.pairRules[1];
  pair.angleCount = 1;  // one pair: two entries
}

std::unique_ptr<OldMaterial> steel() {
  auto material = std::make_unique<OldMaterial>();
  fillMaterial(*material);
  ParamTable& params = material->params;
  params.version = 180;
  frame::setText(params.title, "PUNCHING OF STEEL");
  params.intParams[55] = 4;
  params.realParams[101] = 0.06;
  frame::setText(params.textParams[401], "OIL THE SHEET");
  params.nameLength = sizeof params.name;
  frame::setText(params.name, "STEEL PARAMETERS");
  return material;
}

// The short form: only a parameter table.
std::unique_ptr<OldMaterial> shortSteel() {
  auto material = std::make_unique<OldMaterial>();
  ParamTable& params = material->params;
  params.version = 60;
  params.realParams[55] = 0.125;
  params.nameLength = sizeof params.name;
  frame::setText(params.name, "THICK STEEL");
  return material;
}

std::unique_ptr<OldMachine> punch() {
  auto machine = std::make_unique<OldMachine>();
  machine->textWidth = sizeof machine->machineText1;
  frame::setText(machine->machineText1, "TURRET PUNCH");
  machine->machineKind = 3;  // with station limits and a work area
  machine->secondTextPresent = 1;
  machine->secondTextWidth = sizeof machine->secondText;
  frame::setText(machine->secondText, "HALL 2");
  frame::setText(machine->machineText2, "TP-50");
  frame::setText(machine->machineText3, "THREE STATIONS");
  machine->sizeX = 50.0F;
  machine->sizeY = 60.0F;
  machine->clampInfo.clampCount = 3;
  const float area[4] = {1.0F, 2.0F, 72.0F, 50.0F};
  std::copy(std::begin(area), std::end(area), machine->workArea.areaValues);

  ToolStationList& stations = machine->stationsA;
  stations.stationModeWord = 0x300;  // a station mode of 3
  stations.extraWords[0] = 11;
  stations.extraWords[1] = 12;
  addStation(stations, 3.0F, 0, toolOf(1, 0.5F));
  addStation(stations, 5.0F, 0.5F, toolOf(3, 2.0F, 0.25F));
  addStation(stations, 7.0F, 0, specialToolOf(2.0F, 1.0F));
  machine->stationWord = 20;

  machine->blockMode = 1;
  machine->gridMode = 1;
  machine->gridA.cellByteCount = 80;
  fillMaterial(machine->material);
  frame::setText(machine->ncPath, R"(C:\KESTRADA\NC\)");
  frame::setText(machine->displayName, "Turret punch in hall 2");
  frame::setText(machine->lateText1, "SINCE 1998");
  return machine;
}

OldToolInventory shop() {
  OldToolInventory inventory;
  OldTool round = toolOf(1, 0.5F);
  round.firstValueCount = 2;
  round.firstValues[0] = 0.01F;
  round.firstValues[1] = 0.02F;
  OldTool square = toolOf(103, 0.75F, 0.75F);
  square.orientation = 0.7853982F;
  inventory.tools = {round, square, specialToolOf(2.0F, 1.0F)};
  InventoryEntry& entry = inventory.entries.emplace_back();
  frame::setText(entry.entryNameA, "DRAWER 1");
  auto& file = inventory.specialToolFiles.emplace_back();
  std::copy(kCornerPunchPath.begin(), kCornerPunchPath.end(), file.begin());
  return inventory;
}

OldMacro tab() {
  OldMacro macro;
  macro.shapes.shapes = {shapeAt(1, 0, 0, 0.25F), shapeAt(2, 1.0F, 0.5F, 0.75F)};
  macro.items.resize(macro.shapes.shapes.size());
  macro.items[1].toolNumber = 1;
  addStation(macro.stationList, 3.0F, 0, toolOf(1, 0.25F));
  return macro;
}

// A part of version 5, which no function writes: its bytes, field by field.
class OldPartBytes {
 public:
  OldPartBytes& text21(std::string_view text) {
    bytes_.append(text).append(21 - text.size(), '\0');
    return *this;
  }
  OldPartBytes& byte(int value) { return number(static_cast<std::uint32_t>(value), 1); }
  OldPartBytes& word(int value) { return number(static_cast<std::uint32_t>(value), 2); }
  OldPartBytes& real(float value) { return number(std::bit_cast<std::uint32_t>(value), 4); }
  OldPartBytes& zeros(std::size_t count) {
    bytes_.append(count, '\0');
    return *this;
  }
  bool saveAs(const std::filesystem::path& path) const {
    std::ofstream file(path, std::ios::binary);
    file << bytes_;
    file.close();
    return file.good();
  }

 private:
  OldPartBytes& number(std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) bytes_ += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
    return *this;
  }
  std::string bytes_;
};

OldPartBytes oldPart() {
  constexpr std::size_t kSetupEntry = 34, kAfterSetup = 16, kGridSteps = 8;
  OldPartBytes part;
  part.word(5);
  part.text21("OLD BRACKET").real(12.0F).real(8.0F).text21("CABINET").text21("DOOR").text21("STEEL");
  part.word(1).word(1).real(0.06F);                                // kind, a word, thickness
  part.word(2);                                                    // shapes: type, word, flags, place, values
  part.byte(1).word(0).word(0).real(1.0F).real(2.0F).real(0.25F);  // one value
  part.byte(2).word(0).word(0).real(4.0F).real(2.0F).real(0.5F);   // four: the third is an
  part.real(0).real(7.0F).real(0);                                 // angle beyond a full turn
  part.word(1);                                                    // patterns
  part.word(0).word(3).word(2).zeros(kGridSteps);                  // three by two, which a load resets to one by one
  part.real(0).real(0).real(1.0F).real(0);                         // origin and rotation
  part.word(2).word(0).word(1).word(0).word(2);                    // items: a word, a tool
  part.word(0).zeros(kSetupEntry + kAfterSetup);                   // no setup entries but the current one
  part.word(1).word(1).word(2).zeros(8);                           // marks
  return part;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_samples FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder(argv[1]);
  const auto at = [&](const char* name) { return (folder / name).string(); };
  const auto machine = punch();
  const auto material = steel(), shortMaterial = shortSteel();
  const bool made = SaveSpecialTool(at("Corner Punch.spt").c_str(), cornerPunch(), 162) == 0 &&
                    SaveSpecialTool(at("KeySlot.spt").c_str(), keySlot(), 110) == 0 &&
                    SaveGroupPart(at("brackets.group").c_str(), brackets(), 180) == 0 &&
                    SaveMachine(at("punch.mch").c_str(), *machine, 162) == 0 &&
                    SaveMaterial(at("steel.mat").c_str(), *material, 180) == 0 &&
                    SaveMaterial(at("thick.mat").c_str(), *shortMaterial, 60) == 0 &&
                    SaveToolInventory(at("shop.inv").c_str(), shop(), 150) == 0 &&
                    SaveMacro(at("tab.mac").c_str(), tab(), 110) == 0 && oldPart().saveAs(at("old.part"));
  if (!made) std::cerr << "cannot write to " << folder << "\n";
  return made ? 0 : 1;
}
