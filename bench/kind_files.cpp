#include "bench/kind_files.h"

#include <array>

namespace bench {
namespace {

using namespace oldtorvio;

void addProgramGroups(ShapeProgram& program) {
  for (int g = 0; g < 4; ++g) {
    ShapeProgramGroup& group = program.programGroups.emplace_back();
    for (int i = 0; i < 50; ++i) group.groupShapes.shapes.push_back(shapeNumber(i));
    group.groupQuads.resize(20);
    group.groupSlots.resize(20);
    group.groupSteps.resize(10);
  }
}

void makeFull(OldMaterial& m) {
  m.name = "STEEL 2.5";
  m.entryList.resize(50);
  m.toolSets.setCount = 6;
  m.palette.colourCount = 20;
  m.palette.groupCount = 5;
  for (SettingList* list : {&m.palette.listA, &m.palette.listB, &m.palette.listC}) list->resize(20);
  for (auto* groups : {&m.palette.groupsA, &m.palette.groupsB, &m.palette.groupsC, &m.palette.groupsD,
                       &m.palette.groupsE, &m.palette.groupsF, &m.palette.groupsG, &m.palette.groupsH})
    for (SettingGroup& group : *groups) group.groupList.resize(10);
  for (SettingList& list : m.settingLists) list.resize(50);
  for (AngleRule& rule : m.rules.angleRules) rule.angleCount = 10;
  for (AngleRule& rule : m.rules.pairRules) rule.angleCount = 5;
  addProgramGroups(m.head.optionA);
  addProgramGroups(m.head.optionB);
  m.params.version = 180;
  m.params.nameLength = 16;
}

template <class T>
void fillWhole(Source& from, T& record) {
  from.fill(static_cast<void*>(&record), sizeof record);
}

void fillProgram(Source& from, const ShapeProgram& like, ShapeProgram& to) {
  from.fill(&to.programWord1, 40);
  to.programGroups.reserve(like.programGroups.size());
  for (const ShapeProgramGroup& one : like.programGroups) {
    ShapeProgramGroup& group = to.programGroups.emplace_back();
    fillShapes(from, one.groupShapes.shapes, group.groupShapes.shapes);
    fillNumbers(from, one.groupQuads, group.groupQuads);
    fillNumbers(from, one.groupSlots, group.groupSlots);
    fillNumbers(from, one.groupSteps, group.groupSteps);
  }
}

}  // namespace

std::unique_ptr<OldMachine> fullMachine(int stations) {
  auto m = std::make_unique<OldMachine>();
  m->textWidth = 256;
  m->machineWord1 = 60.0F;
  m->blockMode = 2;
  m->gridMode = 2;  // two grids of 40,000 cells
  m->segments.resize(50);
  m->hasExtension = 1;
  m->programMode = 1;
  m->stepListPresent = 1;
  m->stepTables.resize(20);
  for (ShapeProgram* program : {&m->programA, &m->programC}) addProgramGroups(*program);
  addProgramGroups(m->programD);
  for (int i = 1; i <= stations; ++i) addStation(m->stationsA, i);
  m->triadCount = 100;
  m->unitTable.units.resize(5);
  for (MachineUnit& unit : m->unitTable.units) unit.unitEntries.resize(20);
  makeFull(m->material);
  return m;
}

OldToolInventory inventoryOf5000() {
  OldToolInventory inventory;
  inventory.tools.resize(5000);
  int number = 0;
  for (OldTool& tool : inventory.tools) {
    tool.shapeCode = ++number % 5 == 0 ? 108 : 103;
    tool.specialToolIndex = 1;
    tool.dimension1 = static_cast<float>(number);
  }
  inventory.entries.resize(100);
  inventory.specialToolFiles.resize(20);
  return inventory;
}

void fillMaterial(Source& from, const OldMaterial& like, OldMaterial& to) {
  to.name = like.name;
  fillNumbers(from, like.entryList, to.entryList);
  fillWhole(from, to.toolSets);
  for (std::uint8_t(*colours)[20] : {&to.palette.red, &to.palette.green, &to.palette.blue}) fillWhole(from, *colours);
  const auto lists = [](auto& m) { return std::array{&m.palette.listA, &m.palette.listB, &m.palette.listC}; };
  for (std::size_t i = 0; i < 3; ++i) fillNumbers(from, *lists(like)[i], *lists(to)[i]);
  const auto groups = [](auto& m) {
    auto& p = m.palette;
    return std::array{&p.groupsA, &p.groupsB, &p.groupsC, &p.groupsD, &p.groupsE, &p.groupsF, &p.groupsG, &p.groupsH};
  };
  for (std::size_t k = 0; k < 8; ++k)
    for (std::size_t i = 0; i < 5; ++i)
      fillNumbers(from, (*groups(like)[k])[i].groupList, (*groups(to)[k])[i].groupList);
  fillWhole(from, to.stages);
  fillNumbers(from, like.rules.angleRules, to.rules.angleRules);
  fillNumbers(from, like.rules.pairRules, to.rules.pairRules);
  fillNumbers(from, like.rules.sizeRulesA, to.rules.sizeRulesA);
  fillNumbers(from, like.rules.sizeRulesB, to.rules.sizeRulesB);
  for (std::size_t i = 0; i < 6; ++i) fillNumbers(from, like.settingLists[i], to.settingLists[i]);
  from.fill(&to.setting1,
            static_cast<std::size_t>(reinterpret_cast<char*>(&to.choice8) - reinterpret_cast<char*>(&to.setting1)));
  fillProgram(from, like.head.optionA, to.head.optionA);
  fillProgram(from, like.head.optionB, to.head.optionB);
}

void fillParams(Source& from, ParamTable& to) { from.fill(&to.intParams[55], 19792); }

void fillMachine(Source& from, const OldMachine& like, OldMachine& to) {
  for (char(*text)[256] : {&to.machineText1, &to.machineText2, &to.machineText3, &to.ncPath, &to.displayName,
                           &to.lateText1, &to.lateText2, &to.endText1, &to.endText2})
    fillWhole(from, *text);
  fillWhole(from, to.frame);
  fillStations(from, like.stationsA, to.stationsA);
  fillWhole(from, to.gridA);
  fillWhole(from, to.gridB);
  fillNumbers(from, like.segments, to.segments);
  from.fill(&to.extension.extensionValue1, 200);
  fillProgram(from, like.programA, to.programA);
  fillNumbers(from, like.stepTables, to.stepTables);
  fillProgram(from, like.programC, to.programC);
  fillProgram(from, like.programD, to.programD);
  fillMaterial(from, like.material, to.material);
  from.fill(to.triads, 700);
  to.unitTable.units.reserve(like.unitTable.units.size());
  for (const MachineUnit& one : like.unitTable.units)
    fillNumbers(from, one.unitEntries, to.unitTable.units.emplace_back().unitEntries);
  from.fill(&to.machineWord1, 132 * 4);
}

void fillInventory(Source& from, const OldToolInventory& like, OldToolInventory& to) {
  to.tools.reserve(like.tools.size());
  for (std::size_t i = 0; i < like.tools.size(); ++i) {
    OldTool& tool = to.tools.emplace_back();
    from.fill(tool.tailText, sizeof tool.tailText);
    from.fill(&tool.firstValues, 120);
  }
  fillNumbers(from, like.entries, to.entries);
  fillNumbers(from, like.specialToolFiles, to.specialToolFiles);
}

}  // namespace bench
