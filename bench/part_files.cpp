#include "bench/part_files.h"

#include <algorithm>

#include "src/frame/text/text.h"

namespace bench {
namespace {

using namespace oldtorvio;

void addShapes(TorvPart& part, int count) {
  for (int i = 0; i < count; ++i) part.shapes.shapes.push_back(shapeNumber(i));
  part.patterns.emplace_back().items.resize(part.shapes.shapes.size());
}

}  // namespace

std::unique_ptr<TorvPart> smallPart() {
  auto part = std::make_unique<TorvPart>();
  addShapes(*part, 10);
  addStation(part->toolStations, 1);
  return part;
}

std::unique_ptr<TorvPart> largePart() {
  auto part = std::make_unique<TorvPart>();
  addShapes(*part, 20000);
  addStation(part->toolStations, 1);
  Pattern& pattern = part->patterns.front();
  pattern.groupKind = 32001;
  for (std::uint32_t i = 0; i < 5000; ++i) {
    pattern.bindFirst.emplace_back(i, i + 1);
    pattern.bindSecond.emplace_back(i + 2, i + 3);
    pattern.bindThird.push_back(i);
    pattern.bindFourth.push_back(i);
    pattern.bindFifth.push_back(i);
  }
  return part;
}

SheetPartList groupOfParts() {
  SheetPartList list;
  for (int i = 0; i < 200; ++i) {
    TorvPart& part = list.parts.emplace_back();
    frame::setText(part.partName, "part " + std::to_string(i));
    addShapes(part, i % 10 == 0 ? 200 : 10);
    addStation(part.toolStations, 1);
  }
  return list;
}

void fillPart(Source& from, const TorvPart& like, TorvPart& to) {
  for (char(*text)[256] :
       {&to.noteText, &to.descriptionA, &to.descriptionB, &to.materialType, &to.descriptionC, &to.customTextA,
        &to.customTextB, &to.customText1, &to.customText2, &to.customText3, &to.customTextC, &to.customTextD,
        &to.customTextE, &to.finalTextA, &to.finalTextB, &to.finalTextC, &to.finalTextD})
    from.fill(*text, sizeof *text);
  fillShapes(from, like.shapes.shapes, to.shapes.shapes);
  fillStations(from, like.toolStations, to.toolStations);
  fillNumbers(from, like.setupList.entries, to.setupList.entries);
  fillNumbers(from, like.marks, to.marks);
  fillNumbers(from, like.profiles, to.profiles);
  fillNumbers(from, like.stepTables, to.stepTables);
  fillNumbers(from, like.workList, to.workList);
  for (int i = 0; i < like.processSlotCount; ++i) {
    ProcessSlot& slot = to.processSlots[static_cast<std::size_t>(i)];
    from.fill(static_cast<void*>(&slot), sizeof slot);
  }
  to.patterns.reserve(like.patterns.size());
  for (const Pattern& one : like.patterns) {
    Pattern& pattern = to.patterns.emplace_back();
    fillNumbers(from, one.items, pattern.items);
    fillNumbers(from, one.profiles, pattern.profiles);
    fillNumbers(from, one.bindFirst, pattern.bindFirst);
    fillNumbers(from, one.bindSecond, pattern.bindSecond);
    fillNumbers(from, one.bindThird, pattern.bindThird);
    fillNumbers(from, one.bindFourth, pattern.bindFourth);
    fillNumbers(from, one.bindFifth, pattern.bindFifth);
  }
}

void fillGroup(Source& from, const SheetPartList& like, SheetPartList& to) {
  to.parts.reserve(like.parts.size());
  for (const TorvPart& one : like.parts) {
    TorvPart& part = to.parts.emplace_back();
    from.fill(part.partName, sizeof part.partName);
    fillPart(from, one, part);
  }
}

}  // namespace bench
