// Loads a material, a macro and a part of version 5 into records and prints some of their fields.
#include <iostream>
#include <memory>
#include <string>

#include "OldTorvIO.h"

namespace {

using oldtorvio::fixedText;

bool showMaterial(const std::string& folder) {
  const auto steel = std::make_unique<OldMaterial>();  // too large for a stack
  if (LoadOldMaterial((folder + "/steel.mat").c_str(), steel.get()) != 0) return false;
  const oldtorvio::AngleRule& rule = steel->rules.angleRules.front();
  const oldtorvio::StepTable& steps = steel->toolSets.sets[0].stepsA;
  std::cout << "steel.mat, version " << steel->version << "\n  name \"" << steel->name << "\", parameters \""
            << fixedText(steel->params.name) << "\" of version " << steel->params.version << "\n  "
            << steel->rules.angleRules.size() << " angle rules, the first for shape code " << int{rule.ruleCode}
            << " with " << int{rule.angleCount} << " value " << rule.ruleValues[0] << "\n  " << steel->toolSets.setCount
            << " tool set with " << int{steps.stepCount} << " steps, the last " << steps.stepWord[1]
            << "\n  parameter 101 = " << steel->params.realParams[101] << ", 401 = \""
            << fixedText(steel->params.textParams[401]) << "\"\n";

  // Into the same record: the short form stores only parameters and a name, so all other fields keep their values.
  if (LoadOldMaterial((folder + "/thick.mat").c_str(), steel.get()) != 0) return false;
  std::cout << "thick.mat, version " << steel->version << "\n  name \"" << steel->name << "\", still "
            << steel->toolSets.setCount << " tool set, parameter 55 = " << steel->params.realParams[55] << "\n";
  return true;
}

bool showMacro(const std::string& folder) {
  OldMacro macro;
  if (LoadOldMacro((folder + "/tab.mac").c_str(), &macro) != 0) return false;
  std::cout << "tab.mac, version " << macro.version << "\n";
  for (const oldtorvio::Shape& shape : macro.shapes.shapes)
    std::cout << "  shape of type " << int{shape.type} << " at " << shape.x << ", " << shape.y << ", size "
              << shape.values[0] << "\n";
  for (std::size_t i = 0; i < macro.stationList.stations.size(); ++i)
    std::cout << "  station " << macro.stationList.stations[i].stationNumber << ": tool of shape code "
              << macro.stationList.tools[i].shapeCode << ", " << macro.stationList.tools[i].dimension1 << "\n";
  return true;
}

bool showOldPart(const std::string& folder) {
  const auto part = std::make_unique<TorvPart>();
  if (LoadOldPart((folder + "/old.part").c_str(), part.get()) != 0) return false;
  std::cout << "old.part, version " << part->version << "\n  \"" << fixedText(part->partName) << "\" of "
            << fixedText(part->materialName) << ", " << part->width << " x " << part->height << " x " << part->thickness
            << "\n";
  for (const oldtorvio::Shape& shape : part->shapes.shapes)
    std::cout << "  shape of type " << int{shape.type} << " at " << shape.x << ", " << shape.y << ", third value "
              << shape.values[2] << "\n";
  for (const oldtorvio::Pattern& pattern : part->patterns)
    std::cout << "  pattern of " << pattern.items.size() << " items, " << pattern.gridCount1 << " by "
              << pattern.gridCount2 << "\n";
  std::cout << "  " << part->marks.size() << " mark\n";
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: example_records FOLDER\n";
    return 2;
  }
  const std::string folder = argv[1];
  if (showMaterial(folder) && showMacro(folder) && showOldPart(folder)) return 0;
  std::cerr << "cannot load the samples of " << folder << "\n";
  return 1;
}
