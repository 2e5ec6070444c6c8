#include "bench/sheet_files.h"

#include <algorithm>
#include <string>

#include "bench/kind_files.h"
#include "bench/part_files.h"
#include "src/frame/text/text.h"

namespace bench {
namespace {

using namespace oldtorvio;

constexpr int kStations = 40;
constexpr int kShapes = 64;  // of each part

PatternItem itemNumber(int i) {
  PatternItem item;
  item.itemWord1 = static_cast<std::uint32_t>(i);
  item.toolNumber = 1 + i % kStations;
  return item;
}

void fillPartNumber(TorvPart& part, int number) {
  const std::string name = "part " + std::to_string(number);
  frame::setText(part.partName, name);
  frame::setText(part.partFullDosName, "C:\\PARTS\\" + name + ".TPT");
  frame::setText(part.woNumber, "WO-" + std::to_string(number % 100));
  part.shapes.shapes.reserve(kShapes);
  for (int i = 0; i < kShapes; ++i) part.shapes.shapes.push_back(shapeNumber(i));
  for (int placement = 0; placement < 2; ++placement) {
    Pattern& pattern = part.patterns.emplace_back();
    pattern.gridCount1 = 2;
    pattern.patternWord = static_cast<std::uint32_t>(1 + number % 10);
    for (int i = 0; i < kShapes; ++i) pattern.items.push_back(itemNumber(number + i));
    pattern.profiles.resize(2);
  }
  part.setupList.entries.resize(3);
  part.marks.resize(4);
  part.stepTables.resize(1);
  part.workList.resize(20);
  part.processSlotCount = 4;
  for (std::size_t i = 0; i < part.processSlotCount; ++i) {
    part.processSlots[i].toolUse = 1;
    part.processSlots[i].toolActive = 1;
    part.processSlots[i].firstToolNumber = static_cast<std::uint16_t>(1 + i);
  }
}

template <class T>
void fillWhole(Source& from, T& field) {
  from.fill(static_cast<void*>(&field), sizeof field);
}

}  // namespace

std::unique_ptr<OldSheet> sheetOf(int parts) {
  auto sheet = std::make_unique<OldSheet>();
  const auto inProportion = static_cast<std::size_t>(parts) * 5;

  frame::setText(sheet->sheetLabel, "LABEL");
  frame::setText(sheet->skeletonDosName, "C:\\SHEETS\\SKELETON.SKN");
  frame::setText(sheet->materialGroup, "STEEL");
  frame::setText(sheet->materialType, "STEEL 2.5");
  frame::setText(sheet->partTexts[2], "third");
  frame::setText(sheet->partTexts[4], "fifth");
  sheet->utilization = 0.75F;

  sheet->partList.parts.resize(static_cast<std::size_t>(parts));
  for (int i = 0; i < parts; ++i) fillPartNumber(sheet->partList.parts[static_cast<std::size_t>(i)], i);
  for (int i = 0; i < 100; ++i) {
    sheet->shapes.shapes.push_back(shapeNumber(i));
    sheet->skeletonShapes.shapes.push_back(shapeNumber(i));
    sheet->patternItems.push_back(itemNumber(i));
  }
  sheet->processSlotCount = 4;
  sheet->marks.resize(inProportion);
  sheet->profiles.resize(10);
  sheet->stepTables.resize(2);
  sheet->setupList.entries.resize(4);
  sheet->workList.resize(inProportion);
  sheet->textEntries.resize(2);
  sheet->namedWorkLists.resize(2);
  for (NamedWorkList& list : sheet->namedWorkLists) list.entries.resize(inProportion);

  sheet->paramTable.version = kVersion;
  sheet->paramTable.nameLength = 16;
  frame::setText(sheet->paramTable.name, "STEEL 2.5");
  OldMachine& machine = sheet->machine;
  machine = *fullMachine(kStations);
  frame::setText(machine.path, "C:\\MACHINES\\PUNCH.MAC");
  frame::setText(machine.ncPath, "C:\\NC");
  return sheet;
}

void fillSheet(Source& from, const OldSheet& like, OldSheet& to) {
  for (char(*text)[256] :
       {&to.sheetLabel, &to.partTexts[0], &to.partTexts[1], &to.partTexts[2], &to.partTexts[3], &to.partTexts[4],
        &to.materialGroup, &to.materialType, &to.materialText3, &to.materialText4, &to.materialText5, &to.lateText})
    fillWhole(from, *text);
  fillWhole(from, to.skeletonDosName);
  fillShapes(from, like.skeletonShapes.shapes, to.skeletonShapes.shapes);

  to.partList.parts.reserve(like.partList.parts.size());
  for (const TorvPart& one : like.partList.parts) {
    TorvPart& part = to.partList.parts.emplace_back();
    for (char(*text)[256] : {&part.partName, &part.woNumber}) fillWhole(from, *text);
    from.fill(part.partFullDosName, 256);
    fillPart(from, one, part);
  }

  fillShapes(from, like.shapes.shapes, to.shapes.shapes);
  for (int i = 0; i < like.processSlotCount; ++i) fillWhole(from, to.processSlots[static_cast<std::size_t>(i)]);
  fillNumbers(from, like.marks, to.marks);
  fillNumbers(from, like.profiles, to.profiles);
  fillNumbers(from, like.stepTables, to.stepTables);
  fillNumbers(from, like.setupList.entries, to.setupList.entries);
  fillNumbers(from, like.patternItems, to.patternItems);
  fillNumbers(from, like.workList, to.workList);
  fillParams(from, to.paramTable);
  from.fill(to.machine.path, 256);
  fillMachine(from, like.machine, to.machine);
  fillNumbers(from, like.textEntries, to.textEntries);
  to.namedWorkLists.reserve(like.namedWorkLists.size());
  for (const NamedWorkList& one : like.namedWorkLists) {
    NamedWorkList& list = to.namedWorkLists.emplace_back();
    fillWhole(from, list.listName);
    fillNumbers(from, one.entries, list.entries);
  }
}

}  // namespace bench
