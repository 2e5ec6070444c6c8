// Loads of machines, materials and tool inventories against what they cannot be faster than, and
// against one fread a field; queries against the load of their file.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

#include "OldTorvIO.h"
#include "bench/suites.h"
#include "src/frame/text.h"
#include "src/machine/machine_io.h"
#include "src/machine/machine_layout.h"
#include "src/material/material_io.h"
#include "src/material/material_layout.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/inventory_layout.h"

namespace {

using namespace oldtorvio;
using bench::finish;
using bench::freadLoad;
using bench::require;
using bench::Source;

// ---- the files ---------------------------------------------------------------------------------

void addProgramGroups(ShapeProgram& program) {
  for (int g = 0; g < 4; ++g) {
    ShapeProgramGroup& group = program.programGroups.emplace_back();
    for (int i = 0; i < 50; ++i) group.groupShapes.shapes.push_back(bench::shapeNumber(i));
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

std::unique_ptr<OldMachine> fullMachine() {
  auto m = std::make_unique<OldMachine>();
  m->textWidth = 256;
  m->blockMode = 2;
  m->gridMode = 2;  // two grids of 40,000 cells
  m->segments.resize(50);
  m->hasExtension = 1;
  m->programMode = 1;
  m->stepListPresent = 1;
  m->stepTables.resize(20);
  for (ShapeProgram* program : {&m->programA, &m->programC}) addProgramGroups(*program);
  addProgramGroups(m->programD);
  for (int i = 1; i <= 100; ++i) bench::addStation(m->stationsA, i);
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

// ---- their floors --------------------------------------------------------------------------------

template <class T>
void fillWhole(Source& from, T& record) {
  from.fill(static_cast<void*>(&record), sizeof record);
}

void fillProgram(Source& from, const ShapeProgram& like, ShapeProgram& to) {
  from.fill(&to.programWord1, 40);
  to.programGroups.reserve(like.programGroups.size());
  for (const ShapeProgramGroup& one : like.programGroups) {
    ShapeProgramGroup& group = to.programGroups.emplace_back();
    bench::fillShapes(from, one.groupShapes.shapes, group.groupShapes.shapes);
    bench::fillNumbers(from, one.groupQuads, group.groupQuads);
    bench::fillNumbers(from, one.groupSlots, group.groupSlots);
    bench::fillNumbers(from, one.groupSteps, group.groupSteps);
  }
}

void fillMaterial(Source& from, const OldMaterial& like, OldMaterial& to) {
  to.name = like.name;
  bench::fillNumbers(from, like.entryList, to.entryList);
  fillWhole(from, to.toolSets);
  for (std::uint8_t(*colours)[20] : {&to.palette.red, &to.palette.green, &to.palette.blue}) fillWhole(from, *colours);
  const auto lists = [](auto& m) { return std::array{&m.palette.listA, &m.palette.listB, &m.palette.listC}; };
  for (std::size_t i = 0; i < 3; ++i) bench::fillNumbers(from, *lists(like)[i], *lists(to)[i]);
  const auto groups = [](auto& m) {
    auto& p = m.palette;
    return std::array{&p.groupsA, &p.groupsB, &p.groupsC, &p.groupsD, &p.groupsE, &p.groupsF, &p.groupsG, &p.groupsH};
  };
  for (std::size_t k = 0; k < 8; ++k)
    for (std::size_t i = 0; i < 5; ++i)
      bench::fillNumbers(from, (*groups(like)[k])[i].groupList, (*groups(to)[k])[i].groupList);
  fillWhole(from, to.stages);
  bench::fillNumbers(from, like.rules.angleRules, to.rules.angleRules);
  bench::fillNumbers(from, like.rules.pairRules, to.rules.pairRules);
  bench::fillNumbers(from, like.rules.sizeRulesA, to.rules.sizeRulesA);
  bench::fillNumbers(from, like.rules.sizeRulesB, to.rules.sizeRulesB);
  for (std::size_t i = 0; i < 6; ++i) bench::fillNumbers(from, like.settingLists[i], to.settingLists[i]);
  from.fill(&to.setting1, reinterpret_cast<char*>(&to.choice8) - reinterpret_cast<char*>(&to.setting1));
  fillProgram(from, like.head.optionA, to.head.optionA);
  fillProgram(from, like.head.optionB, to.head.optionB);
}

// The numbers that a table of version 180 stores.
void fillParams(Source& from, ParamTable& to) { from.fill(&to.intParams[55], 19792); }

void fillMachine(Source& from, const OldMachine& like, OldMachine& to) {
  for (char(*text)[256] : {&to.machineText1, &to.machineText2, &to.machineText3, &to.ncPath, &to.displayName,
                           &to.lateText1, &to.lateText2, &to.endText1, &to.endText2})
    fillWhole(from, *text);
  fillWhole(from, to.frame);
  bench::fillStations(from, like.stationsA, to.stationsA);
  fillWhole(from, to.gridA);
  fillWhole(from, to.gridB);
  bench::fillNumbers(from, like.segments, to.segments);
  from.fill(&to.extension.extensionValue1, 200);
  fillProgram(from, like.programA, to.programA);
  bench::fillNumbers(from, like.stepTables, to.stepTables);
  fillProgram(from, like.programC, to.programC);
  fillProgram(from, like.programD, to.programD);
  fillMaterial(from, like.material, to.material);
  from.fill(to.triads, 700);
  to.unitTable.units.reserve(like.unitTable.units.size());
  for (const MachineUnit& one : like.unitTable.units)
    bench::fillNumbers(from, one.unitEntries, to.unitTable.units.emplace_back().unitEntries);
  from.fill(&to.machineWord1, 132 * 4);
}

void fillInventory(Source& from, const OldToolInventory& like, OldToolInventory& to) {
  to.tools.reserve(like.tools.size());
  for (std::size_t i = 0; i < like.tools.size(); ++i) {
    OldTool& tool = to.tools.emplace_back();
    from.fill(tool.tailText, sizeof tool.tailText);
    from.fill(&tool.firstValues, 120);
  }
  bench::fillNumbers(from, like.entries, to.entries);
  bench::fillNumbers(from, like.specialToolFiles, to.specialToolFiles);
}

template <class Record, class Fill>
void loadFloor(benchmark::State& state, const std::string& path, const Record& like, Fill fill) {
  std::size_t size = 0;
  for (auto _ : state) {
    const std::vector<char> bytes = bench::readAtOnce(path);
    size = bytes.size();
    Source from(bytes);
    const auto record = std::make_unique<Record>();
    fill(from, like, *record);
    benchmark::DoNotOptimize(record.get());
  }
  finish(state, size);
}

template <class Record, class Load>
void load(benchmark::State& state, const std::string& path, Load load) {
  for (auto _ : state) {
    const auto record = std::make_unique<Record>();
    if (load(path.c_str(), record.get()) != 0) state.SkipWithError("load");
    benchmark::DoNotOptimize(record.get());
  }
  finish(state, static_cast<std::size_t>(std::filesystem::file_size(path)));
}

template <class Record, class Walk>
void loadFread(benchmark::State& state, const std::string& path, Walk walk) {
  for (auto _ : state) {
    const auto record = std::make_unique<Record>();
    if (!walk(path, *record)) state.SkipWithError("load");
    benchmark::DoNotOptimize(record.get());
  }
  finish(state, static_cast<std::size_t>(std::filesystem::file_size(path)));
}

template <class Query>
void query(benchmark::State& state, const std::string& path, Query ask) {
  for (auto _ : state)
    if (ask(path.c_str()) != 0) state.SkipWithError("query");
}

// Both readers give a record that is stored as the file's own bytes.
template <class Record, class Write>
void requireSame(Record& library, Record& fread, Write write) {
  frame::OutStream one, other;
  require(write(one, library) && write(other, fread), "a record that cannot be written");
  require(std::ranges::equal(one.bytes(), other.bytes()), "loads that differ");
}

bool freadMaterial(const std::string& path, OldMaterial& to) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  bench::FreadReader io(file, bench::kVersion);
  std::int16_t version = 0;
  const bool ok = io.fields(F(version)) && io.record(F(to.params)) && io.whole(to);
  std::fclose(file);
  return ok;
}
bool freadMachine(const std::string& path, OldMachine& to) { return freadLoad(path, to, MachineForm<ShapeList>{}); }
bool freadInventory(const std::string& path, OldToolInventory& to) { return freadLoad(path, to); }

template <class Record, class Load, class Walk, class Fill>
void registerLoads(const std::string& name, const std::string& path, const Record& like, Load library, Walk fread,
                   Fill fill) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark(("Load" + name + "/library").c_str(), load<Record, Load>, path, library);
  RegisterBenchmark(("Load" + name + "/floor").c_str(), loadFloor<Record, Fill>, path, std::cref(like), fill);
  RegisterBenchmark(("Load" + name + "/fread").c_str(), loadFread<Record, Walk>, path, fread);
}

template <class Record, class Load, class Query>
void registerQuery(const std::string& name, const std::string& path, Load library, Query ask) {
  benchmark::RegisterBenchmark((name + "/query").c_str(), query<Query>, path, ask);
  benchmark::RegisterBenchmark((name + "/load").c_str(), load<Record, Load>, path, library);
}

}  // namespace

void bench::registerMachinesAndTools() {
  const auto machine = fullMachine();
  static const std::string machinePath = folder().path("machine");
  require(SaveMachine(machinePath.c_str(), *machine, kVersion) == 0, "a machine that cannot be saved");
  static const std::string materialPath = folder().path("material");
  require(SaveMaterial(materialPath.c_str(), machine->material, kVersion) == 0, "a material that cannot be saved");
  static const OldToolInventory inventory = inventoryOf5000();
  static const std::string inventoryPath = folder().path("inventory");
  require(SaveToolInventory(inventoryPath.c_str(), inventory, kVersion) == 0, "an inventory that cannot be saved");

  static OldMachine likeMachine, freadLikeMachine;
  require(LoadOldMachine(machinePath.c_str(), &likeMachine) == 0, "a machine that cannot be loaded");
  require(freadMachine(machinePath, freadLikeMachine), "a machine that fread cannot load");
  requireSame(likeMachine, freadLikeMachine,
              [](auto& out, OldMachine& m) { return WriteOldMachine(out, kVersion, nullptr, m, false); });
  static OldMaterial likeMaterial, freadLikeMaterial;
  require(LoadOldMaterial(materialPath.c_str(), &likeMaterial) == 0, "a material that cannot be loaded");
  require(freadMaterial(materialPath, freadLikeMaterial), "a material that fread cannot load");
  requireSame(likeMaterial, freadLikeMaterial,
              [](auto& out, OldMaterial& m) { return WriteOldMaterialBody(out, kVersion, m); });
  OldToolInventory freadLikeInventory;
  require(freadInventory(inventoryPath, freadLikeInventory), "an inventory that fread cannot load");
  OldToolInventory likeInventory = inventory;
  requireSame(likeInventory, freadLikeInventory,
              [](auto& out, OldToolInventory& v) { return WriteToolInventory(out, kVersion, v); });

  registerLoads("Machine", machinePath, likeMachine, LoadOldMachine, freadMachine, fillMachine);
  registerLoads("Material", materialPath, likeMaterial, LoadOldMaterial, freadMaterial,
                [](Source& from, const OldMaterial& like, OldMaterial& to) {
                  fillParams(from, to.params);
                  fillMaterial(from, like, to);
                });
  registerLoads("Inventory", inventoryPath, inventory, LoadOldToolInventory, freadInventory, fillInventory);

  registerQuery<OldMachine>("GetMachineDatasForQD", machinePath, LoadOldMachine, [](const char* path) {
    float out[12];
    return GetMachineDatasForQD(path, &out[0], &out[1], &out[2], &out[3], &out[4], &out[5], &out[6], &out[7], &out[8],
                                &out[9], &out[10], &out[11]);
  });
  registerQuery<OldMachine>("LoadOldMachineInformation", machinePath, LoadOldMachine, [](const char* path) {
    MachineInformation information;
    return LoadOldMachineInformation(path, &information);
  });
  registerQuery<OldMachine>("GetOldVLMQMachineName", machinePath, LoadOldMachine, [](const char* path) {
    char texts[4][257];
    std::uint32_t kind = 0;
    return GetOldVLMQMachineName(path, texts[0], &kind, texts[1], texts[2], texts[3]);
  });
  registerQuery<OldToolInventory>("LoadOldToolInventoryForCount", inventoryPath, LoadOldToolInventory,
                                  [](const char* path) {
                                    std::uint32_t count = 0;
                                    return LoadOldToolInventoryForCount(path, &count);
                                  });
}
