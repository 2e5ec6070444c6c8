// Makes the files that the demo starts from: two special tools and a group part file.
#include <cstring>
#include <filesystem>
#include <iostream>

#include "src/frame/text.h"
#include "src/part/part_io.h"
#include "src/tooling/special_tool_io.h"

using namespace oldtorvio;

namespace {

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
  punch.shapes.shapes.push_back(shapeAt(7, 0.5F, 0.5F, 0));  // a head of its own never enters a group
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
    if (i > 0) frame::setText(tool.specialToolPath, R"(C:\KESTRADA\SPECTOOL\Corner Punch.spt)");
    part.toolStations.tools.push_back(tool);
  }
  return list;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_samples FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder(argv[1]);
  const bool made = SaveSpecialTool((folder / "Corner Punch.spt").string().c_str(), cornerPunch(), 162) == 0 &&
                    SaveSpecialTool((folder / "KeySlot.spt").string().c_str(), keySlot(), 110) == 0 &&
                    SaveGroupPart((folder / "brackets.group").string().c_str(), brackets(), 180) == 0;
  if (!made) std::cerr << "cannot write to " << folder << "\n";
  return made ? 0 : 1;
}
