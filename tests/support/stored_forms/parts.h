// Patterns, part bodies and files of parts.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tests/support/stored_forms/shapes.h"
#include "tests/support/stored_forms/small_records.h"
#include "tests/support/stored_forms/tools.h"

namespace testing_support {

struct PatternForm {
  std::int32_t groupKind = 0;
  bool embedded = true;
  std::size_t items = 2;
  std::size_t bindings = 2;
  // A grid as a load of a part file leaves it: 0, 1, 1, 0, 0.
  bool plainGrid = false;
  std::size_t profiles = 1;  // and step tables
  // How many items a load gives a pattern that ends in the late data of its group.
  std::size_t filledItems = 0;
};

inline bool isGroupKind(int version, std::int32_t kind) {
  return kind >= 32000 && kind <= (version < 110 ? 32004 : 32006);
}

// The pattern up to its items. `resetsGrid`: a load comes to the place where it sets the grid back. Returns whether it
// comes to the late data of the group.
template <class M>
bool storedPatternFront(M& m, int version, const PatternForm& form, bool resetsGrid, Pattern& p) {
  if (form.plainGrid) {
    m.fixed(p.headWord, 0);
    for (auto* one : {&p.gridCount1, &p.gridCount2}) m.fixed(*one, 1, 1U);
    for (auto* one : {&p.gridStep1, &p.gridStep2}) m.fixed(*one, 0);
  } else if (resetsGrid) {
    m.replaced(p.headWord, 0);
    for (auto* one : {&p.gridCount1, &p.gridCount2}) m.replaced(*one, 1U);
    for (auto* one : {&p.gridStep1, &p.gridStep2}) m.replaced(*one, 0U);
  } else {
    m.number(p.headWord);
    numbersOr(m, 1, p.gridCount1, p.gridCount2);
    numbers(m, p.gridStep1, p.gridStep2);
  }
  m.together(16);
  numbers(m, p.originX, p.originY);
  numberOr(m, p.rotationCos, 1.0F);
  numbers(m, p.rotationSin, p.patternWord);
  // A load sets a kind outside its band to 0.
  const bool isGroup = isGroupKind(version, form.groupKind);
  m.fixed(p.groupKind, M::kMakes || isGroup ? form.groupKind : 0);
  since(m, isGroup, [&](auto& n) {
    n.block(p.groupBlock);
    each(n, p.groupWords);
  });
  bool hasBindings = false, comesToLateData = false;
  since(m, isGroup && version >= 110, [&](auto& n) {
    numbers(n, p.bindWord1, p.bindWord2, p.bindWord3, p.bindByte, p.bindWord4);
    comesToLateData = n.reaches(0);
    for (std::uint16_t& one : p.bindShorts) numberOr(n, one, std::uint16_t{0xFFFF});
    hasBindings = n.size(p.bindFirst, form.bindings);
    if (!hasBindings) return;
    if constexpr (!M::kChecks) {
      m.resized(p.bindSecond, form.bindings);
      m.resized(p.bindThird, form.bindings);
      m.resized(p.bindFourth, form.bindings);
      m.resized(p.bindFifth, form.bindings);
    }
    for (std::size_t i = 0; i < form.bindings; ++i) {
      if (i >= p.bindFirst.size()) return n.dropped(16 + (version >= 156 ? 4 : 0) + (version >= 160 ? 8 : 0));
      numbers(n, p.bindFirst[i].first, p.bindFirst[i].second, p.bindSecond.at(i).first, p.bindSecond.at(i).second);
      // From 151 to 155 lateWord3, see below.
      if (version < 151 || version > 155) since(n, version >= 156, [&](auto& o) { o.number(p.bindThird.at(i)); });
      since(n, version >= 160, [&](auto& o) { numbers(o, p.bindFourth.at(i), p.bindFifth.at(i)); });
    }
  });
  since(m, isGroup && version >= 151, [&](auto& n) {
    numbers(n, p.lateWord1, p.lateWord2, p.lateWord3);
    if (version <= 155 && hasBindings)
      for (std::uint32_t& third : p.bindThird) n.reset(third, n.reaches(0) ? p.lateWord3 : 0U);
  });
  return comesToLateData;
}

// A reader of part files sets the grid back after the group, one of sheets does not.
template <class M>
void storedPattern(M& m, int version, const PatternForm& form, Pattern& p) {
  Maker front;
  Pattern scratch;
  storedPatternFront(front, version, form, false, scratch);
  const bool resetsGrid = !form.embedded && m.reaches(front.bytes.size());
  const bool comesToLateData = storedPatternFront(m, version, form, !M::kMakes && resetsGrid, p);
  storedItems(m, version, form.items, p.items, comesToLateData ? form.filledItems : 0);
  since(m, version >= 80, [&](auto& n) {
    storedProfiles(n, version, form.profiles, p.profiles);
    storedStepTables(n, version, form.profiles, 1, p.stepTables);
  });
}

// The lists that later versions added to a part.
template <class M>
void storedPlacedShapes(M& m, int version, std::size_t count, PlacedShapeList& l) {
  m.block(l.placedBlock);
  std::vector<ShapeForm> forms{ShapeForm{}, ShapeForm{2, 9, 2, true, "placed"}};
  forms.resize(count);
  std::vector<Shape>& shapes = l.shapes.shapes;
  list(m, shapes, count, [&](auto& n, Shape& s, std::size_t i) {
    storedShape(n, version, forms[i], s, i > 0 ? &shapes[i - 1] : nullptr);
  });
}
template <class M>
void storedNestGroups(M& m, int version, std::size_t count, std::vector<ShapeGroup>& l) {
  list(m, l, count, [&](auto& n, ShapeGroup& g, std::size_t) {
    n.number(g.groupWord);
    since(n, version >= 152, [&](auto& o) { o.number(g.groupByte); });
    storedShapeList(n, version, someShapes(), g.shapes);
  });
}
template <class M>
void storedContourGroups(M& m, int version, std::size_t count, std::vector<ContourGroup>& l) {
  m.clears(l);
  list(m, l, count, [&](auto& n, ContourGroup& g, std::size_t) {
    numbers(n, g.contourWord1, g.contourWord2, g.contourWord3);
    storedShapes(n, version, someShapes(), g.shapes);
    since(n, version >= 155, [&](auto& o) { o.number(g.contourByte); });
  });
}
template <class M>
void storedBindingSets(M& m, int version, std::size_t count, std::vector<BindingSet>& l) {
  list(m, l, count, [&](auto& n, BindingSet& s, std::size_t) {
    n.number(s.setWord);
    list(n, s.numbers, 3, [](auto& o, std::uint32_t& one, std::size_t) { o.number(one); });
    list(n, s.entries, 2, [&](auto& o, BindingEntry& e, std::size_t) {
      numbers(o, e.entryWord2, e.entryWord1);
      storedShape(o, version, ShapeForm{}, e.shape);
    });
  });
}

// `embedded`: as sheets store it, else as part files do.
struct StoredPartForm {
  bool embedded = false;
  bool options = true;
  std::int32_t groupKind = 0;
  std::vector<ShapeForm> shapes = someShapes();
  int items = -1;     // of each pattern; -1: one for each shape
  bool bare = false;  // without elements in the other lists
  // Of the tools at the stations of a part file.
  std::vector<std::int32_t> toolCodes = bare ? std::vector<std::int32_t>{} : std::vector<std::int32_t>{1, 108, 107};

  std::size_t elements(std::size_t count) const { return bare ? 0 : count; }
};

// Sections of a part that tests change.
enum PartSection { kPartFlags = 301, kPartPattern, kPartTail };

// Up to the descriptions, where a reader may be asked to stop.
template <class M>
void storedPartFront(M& m, int version, const StoredPartForm& form, TorvPart& p) {
  numberOr(m, p.width, 30.0F);
  numberOr(m, p.height, 20.0F);
  m.block(p.productName, "NEW PRODUCT");
  m.block(p.assemblyName, "NEW ASSEMBLY");
  m.block(p.materialName, "NEW MATERIAL");
  numbersOr(m, 1, p.partKind, p.partWord1);
  numberOr(m, p.thickness, 0.05F);
  numberOr(m, p.partWord2, 11);
  storedShapeList(m, version, form.shapes, p.shapes);
  storedSetupList(m, form.elements(2), p.setupList);
  m.block(p.noteText);
  m.section(kPartFlags);
  if (version >= 80)
    m.number(p.headFlag);
  else
    m.reset(p.headFlag, std::uint8_t{0});
  since(m, version >= 80, [&](auto& n) {
    n.fixed(p.hasOptions, form.options ? 1 : 0);
    n.zeros(499);
  });
  m.clears(p.patterns);
  const std::size_t items = form.items < 0 ? form.shapes.size() : static_cast<std::size_t>(form.items);
  const PatternForm pattern{form.groupKind,
                            form.embedded,
                            items,
                            2,
                            !form.embedded,
                            form.elements(1),
                            form.embedded ? 0 : form.shapes.size()};
  const auto storedOne = [&](auto& n, Pattern& one, std::size_t) { storedPattern(n, version, pattern, one); };
  if (form.embedded) {
    m.untouched(p.toolStations.stations);
    m.section(kPartPattern);
    list(m, p.patterns, 2, storedOne);
  } else {
    storedStations(m, version, form.toolCodes, p.toolStations);
    m.section(kPartPattern);
    if constexpr (!M::kChecks) p.patterns.resize(1);
    if (!m.reaches(0))
      m.untouched(p.patterns);
    else if (p.patterns.empty())
      m.rest();
    else
      storedOne(m, p.patterns[0], 0);
  }
  const int slots = form.bare ? 0 : 2;
  m.fixed(p.processSlotCount, slots);
  for (int i = 0; i < slots; ++i) storedSlot(m, version, p.processSlots[i]);
  storedMarks(m, form.elements(2), p.marks);
  storedProfiles(m, version, form.elements(1), p.profiles);
  storedStepTables(m, version, form.elements(1), 3, p.stepTables);
  numberOr(m, p.tailWord1, 1);
  m.number(p.tailWord2);
  if (version >= 62) {
    m.block(p.descriptionA);
    m.block(p.descriptionB);
    m.block(p.revision);
    m.block(p.materialType);
    m.block(p.descriptionC);
    numberOr(m, p.lateIndex, -1);
  } else {
    for (char* text : {p.descriptionA, p.descriptionB, p.revision, p.materialType, p.descriptionC})
      m.reset(*text, '\0');
    m.reset(p.lateIndex, -1);
  }
}

template <class M>
void storedPart(M& m, int version, const StoredPartForm& form, TorvPart& p) {
  storedPartFront(m, version, form, p);
  m.section(kPartTail);
  m.clears(p.workList);
  if (version >= 71)
    numberOr(m, p.workKind, 2);
  else
    m.reset(p.workKind, 2);
  since(m, version >= 71, [&](auto& n) { storedWorkList(n, version, form.elements(2), p.workList); });
  since(m, version >= 80, [&](auto& n) {
    if (n.reaches(0))
      for (Shape& one : p.shapes.shapes) n.number(one.trailerValue);
    since(n, form.options, [&](auto& o) {
      o.number(p.optionWord);
      numberOr(o, p.optionReal, 0.05);
      numberOr(o, p.optionCount, 1);
      o.number(p.optionValue);
      o.block(p.optionText);
    });
  });
  since(m, version >= 102, [&](auto& n) { storedPlacedShapes(n, version, form.elements(2), p.placedShapes); });
  since(m, version >= 110, [&](auto& n) {
    n.block(p.customTextA);
    n.block(p.customTextB);
    numbers(n, p.customWord1, p.customWord2);
    n.block(p.customText1);
    n.block(p.customText2);
    n.block(p.customText3);
    numbers(n, p.customWord3, p.customWord4);
  });
  since(m, version >= 111, [&](auto& n) {
    n.block(p.customTextD);
    n.block(p.customTextC);
  });
  since(m, version >= 112, [&](auto& n) { n.block(p.customTextE); });
  since(m, version >= 140, [&](auto& n) {
    n.block(p.lateBlock1);
    n.block(p.lateBlock2);
  });
  since(m, version >= 151, [&](auto& n) { storedNestGroups(n, version, form.elements(2), p.nestShapeGroups); });
  since(m, version >= 152, [&](auto& n) { each(n, p.lateWords); });
  since(m, version >= 154, [&](auto& n) { storedContourGroups(n, version, form.elements(2), p.contourGroups); });
  since(m, version >= 161, [&](auto& n) { storedBindingSets(n, version, form.elements(2), p.bindingSets); });
  since(m, version >= 162 && form.embedded, [&](auto& n) { n.block(p.woNumber); });
  since(m, version >= 180, [&](auto& n) {
    n.block(p.finalTextA);
    n.block(p.finalTextB);
    n.block(p.finalTextC);
    n.block(p.finalTextD);
    numbers(n, p.finalWord1, p.finalWord2);
  });
}

// A part that a Maker fills, and part files and group part files of such parts.
inline Bytes storedPartBody(int version, const StoredPartForm& form = {}) {
  Maker m;
  storedPart(m, version, form, *std::make_unique<TorvPart>());
  return m.bytes;
}
inline Bytes storedPartFile(int version, const StoredPartForm& form = {}) {
  return Bytes().i16(version).add(storedPartBody(version, form));
}
// The parts are named "PART 0", "PART 1" and so on.
inline Bytes storedGroupFile(int version, std::int32_t extraPartCount, std::int32_t nameSize,
                             const std::vector<Bytes>& bodies) {
  Bytes b = Bytes().i16(version).i32(extraPartCount).i32(nameSize);
  for (std::size_t i = 0; i < bodies.size(); ++i)
    b.text(static_cast<std::size_t>(nameSize), "PART " + std::to_string(i)).add(bodies[i]);
  return b;
}
inline Bytes storedGroupFile(int version, std::int32_t extraPartCount = 0, std::int32_t nameSize = 256,
                             std::size_t parts = 1) {
  return storedGroupFile(version, extraPartCount, nameSize, std::vector<Bytes>(parts, storedPartBody(version)));
}

// A part with the values that it holds. Its lists are empty except for the stations with their tools and one pattern
// without items.
inline Bytes heldPartBody(int version, const TorvPart& part) {
  StoredPartForm form{false, part.hasOptions != 0, 0, {}, 0, true};
  for (const OldTool& tool : part.toolStations.tools) form.toolCodes.push_back(tool.shapeCode);
  Maker m = Maker::ofHeldValues();
  storedPart(m, version, form, *std::make_unique<TorvPart>(part));
  return m.bytes;
}
inline Bytes heldPartFile(int version, const TorvPart& part) {
  return Bytes().i16(version).add(heldPartBody(version, part));
}

}  // namespace testing_support
