#include "tests/support/kind_files.h"

#include <cstring>
#include <memory>

#include "src/file_records.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "src/sheet/sheet_io.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"
#include "src/tooling/special_tool_io.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/parts.h"

namespace testing_support {

using namespace oldtorvio;

void fullMachine(RandomRecords& random, OldMachine* m, int version) {
  random.record(*m, version);
  m->limitsPresent = m->secondTextPresent = 1;
  m->blockMode = 2;
  m->gridMode = 2;
  m->gridA.cellByteCount = m->gridB.cellByteCount = 20;
  m->hasExtension = m->stepListPresent = 1;
  m->triadCount = 2;
  m->programMode = version % 2 == 0 ? 1 : 2;
  m->segments.resize(1);
  m->stepTables.resize(1);
  m->material.name = "STEEL";
  for (auto* list : {&m->stationsA, &m->stationsB, &m->stationsC}) {
    list->stations.assign(1, random.station());
    list->tools.assign(1, random.tool());
  }
  m->stationsA.stations[0].toolCount = 1;
  m->stationsA.tools[0].shapeCode = 3;
  for (ShapeProgram* program : {&m->programA, &m->programC, static_cast<ShapeProgram*>(&m->programB),
                                static_cast<ShapeProgram*>(&m->programD), &m->material.head.optionA}) {
    program->programGroups.resize(1);
    program->programGroups[0].groupShapes.shapes.resize(1);
  }
  m->unitTable.units.resize(1);
}

Bytes machineFile(int version) {
  RandomRecords random(7, 1);
  const auto m = std::make_unique<OldMachine>();
  fullMachine(random, m.get(), version);
  return Bytes().i16(version).add(written([&](auto& s) { return WriteOldMachine(s, version, nullptr, *m, false); }));
}

Bytes materialFile(int version) {
  RandomRecords random(8, 1);
  const auto m = random.newRecord<OldMaterial>(version, [=] { return version; });
  const bool isTableAlone = version == 52 || version == 60;
  m->entryList.resize(1);
  m->toolSets.setCount = 1;
  m->palette.groupCount = 1;
  m->settingListCount = 1;
  m->settingLists[0].resize(1);
  m->rules.pairRules.resize(1);
  m->head.optionA.programGroups.resize(1);
  m->head.optionA.programGroups[0].groupShapes.shapes.resize(1);
  const Bytes table = written([&](auto& s) { return WriteParamTable(s, m->params); });
  if (isTableAlone) return table;
  return Bytes().i16(version).add(table).add(written([&](auto& s) { return WriteOldMaterialBody(s, version, *m); }));
}

Bytes inventoryFile(int version) {
  RandomRecords random(9, 1);
  OldToolInventory v;
  random.record(v, version);
  v.tools.assign(2, random.tool());
  v.tools[0].shapeCode = 1;
  v.tools[1].shapeCode = 108;
  v.tools[1].specialToolIndex = 1;
  v.entries.resize(1);
  v.specialToolFiles.assign(1, {"C:\\TOOLS\\STAR.SPT"});
  return Bytes().i16(version).add(written([&](auto& s) { return WriteToolInventory(s, version, v); }));
}

Bytes macroFile(int version) {
  RandomRecords random(10, 1);
  OldMacro m;
  random.record(m, version);
  m.shapes.shapes.assign(2, random.shape());
  m.items.resize(2);
  m.stationList.stations.assign(1, random.station());
  m.stationList.tools.assign(1, random.tool());
  return Bytes().i16(version).add(written([&](auto& s) { return WriteMacro(s, version, m); }));
}

void fullSheet(OldSheet& s, int version) {
  RandomRecords random(11, 1);
  fullMachine(random, &s.machine, version);
  random.paramTable(s.paramTable, tableVersionOf(version));
  s.shapes.shapes.assign(1, random.shape());
  s.setupList.entries.resize(1);
  s.patternItems.resize(30);
  s.marks.resize(1);
  s.profiles.resize(1);
  s.stepTables.resize(1);
  s.processSlotCount = 1;
  s.workList.resize(2);
  s.rowTable.count = s.clampRowTable.count = 2;
  s.textEntries.resize(1);
  s.namedWorkLists.resize(1);
  s.namedWorkLists[0].entries.resize(1);
  s.machine.extension.extensionEntries.resize(1);
  s.skeletonShapes.shapes.assign(1, random.shape());
  TorvPart& part = s.partList.parts.emplace_back();
  random.record(part, version);
  std::strcpy(part.partName, "PLATE");
  std::strcpy(part.partFullDosName, "C:\\PARTS\\PLATE.PRT");
  std::strcpy(part.woNumber, "W1");
  part.processSlotCount = 0;
  part.patterns.resize(1);
  part.patterns[0].items.assign(1, {});
  part.patterns[0].items[0].toolNumber = 1;
}

Bytes sheetFile(int version) {
  const auto s = std::make_unique<OldSheet>();
  fullSheet(*s, version);
  return Bytes().i16(version).add(written([&](auto& to) { return WriteOldSheet(to, version, *s); }));
}

namespace {

template <frame::FileKind kKind>
Kind kindOf(std::vector<int> versions, Bytes (*file)(int version)) {
  using File = FileRecord<kKind>;
  const auto load = [](const char* path) {
    const auto record = std::make_unique<typename File::Record>();
    return File::load(path, *record);
  };
  return {kKind, std::string(frame::infoOf(kKind).name), std::move(versions), file,
          load,  sizeof(typename File::Record)};
}

}  // namespace

const std::vector<Kind>& kinds() {
  using frame::FileKind;
  static const std::vector<Kind> all{
      kindOf<FileKind::part>({52, 62, 80, 110, 151, 161, 180},
                             [](int v) { return storedPartFile(v, {.groupKind = 32001}); }),
      kindOf<FileKind::groupPart>({152, 161, 180}, [](int v) { return storedGroupFile(v); }),
      kindOf<FileKind::specialTool>({52, 110, 160, 180},
                                    [](int v) {
                                      return specialToolFile(v, {1, 2});
                                    }),
      kindOf<FileKind::machine>({52, 61, 80, 110, 152, 161, 180}, machineFile),
      kindOf<FileKind::material>({52, 61, 90, 130, 152, 161, 180}, materialFile),
      kindOf<FileKind::toolInventory>({54, 60, 110, 150, 180}, inventoryFile),
      kindOf<FileKind::macro>({52, 60, 80, 160, 180}, macroFile),
      kindOf<FileKind::sheet>({152, 161, 180}, sheetFile),
  };
  return all;
}

bool isCount(const std::string& path) {
  for (const char* end : {".count", ".length", "Count", "nameBlockSize", "textWidth", "nameLength"})
    if (path.ends_with(end)) return true;
  return false;
}

}  // namespace testing_support
