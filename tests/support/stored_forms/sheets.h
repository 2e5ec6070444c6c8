// Sheets and the lists that only sheets have.
#pragma once
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/stored_forms/machines.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/parts.h"

namespace testing_support {

// What a stored sheet looks like. `writer`: as a save lays it out, else as a file may hold it.
struct SheetForm {
  bool writer = false;
  int width = 256, nameWidth = 256, dosLength = 260;
  bool shapes = true, extension = false;
  int slots = 2, clamps = 3, rows = 2, clampRows = 2;
  std::size_t elements = 2;  // of each list
  std::size_t ownWork = 2;   // of the lists that only a sheet with shapes stores
  std::int32_t spare = -1;
  int tableVersion = 0;  // of the parameter table; 0: that of the file
  int machineWidth = 256;
};

// The table and the machine inside a sheet.
inline ParamForm tableOf(int version, const SheetForm& form) {
  return {form.tableVersion != 0 ? form.tableVersion : tableVersionOf(version), 7};
}
inline MachineForm machineOf(const SheetForm& form) {
  MachineForm machine;
  machine.writer = form.writer;
  machine.width = form.machineWidth;
  machine.limits = machine.second = machine.steps = false;
  machine.blockMode = machine.gridMode = machine.programMode = machine.segments = 0;
  machine.extension = form.extension;
  return machine;
}

// Sections of a sheet; those of the machine and the material have lower numbers.
enum SheetSection { kSheetTable = 201, kSheetMachine };

inline constexpr std::string_view kMachinePath = "C:\\m.mch";

// The first n bytes of a text, which arrive together.
template <class M, std::size_t N>
void leading(M& m, char (&field)[N], int n) {
  m.together(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) m.number(field[i]);
}

// A list of which the pieces are the count and each element.
template <class M, class List, class Fn>
void pieces(M& m, const std::string& name, List& l, std::size_t count, Fn&& each, int statusOfCut = 1) {
  bool follow = true;
  piece(
      m, name + " count", [&] { follow = m.size(l, count); }, statusOfCut);
  if (!follow) return;
  elements(m, l, count, [&](auto& n, auto& one, std::size_t) {
    piece(
        n, name + "[]", [&] { each(n, one); }, statusOfCut);
  });
}

template <class M>
void storedSheetSetup(M& m, std::size_t n, SheetSetupList& l) {
  // All entries are kept, also those that the file does not have.
  unlessZero(m, l.entries, n, [&] { piece(m, "setup count", [&] { m.size(l.entries, n); }); });
  if (n == 0) return;
  if constexpr (M::kChecks) l.entries.resize(n);
  for (SheetSetupEntry& e : l.entries) {
    piece(m, "setup", [&] {
      storedSetupEntry(m, e.entry);
      for (auto& one : e.entryBlocks) m.block(one);
    });
  }
  piece(m, "setup tail", [&] {
    storedSetupEntry(m, l.current);
    for (auto& one : l.currentBlocks) m.block(one);
    m.block(l.tailBlock);
    numbers(m, l.tailWord1, l.tailWord2);
  });
}

template <class M>
void storedTextEntry(M& m, int version, SheetTextEntry& e) {
  numbers(m, e.entryWord1, e.entryWord3);
  m.block(e.entryText1);
  m.block(e.entryText2);
  m.block(e.entryText3);
  numbers(m, e.entryWord4, e.entryWord5, e.entryWord6);
  numberOr(m, e.entryWord7, -1);
  if (version >= 180)
    m.number(e.entryWord9);
  else
    m.absent(e.entryWord9, 0U);
  m.absent(e.entryWord2, 0U);
  m.absent(e.entryWord8, 0U);
  m.absent(e.entryText4[0], '\0');
}

template <class M>
void storedNamedList(M& m, int version, NamedWorkList& l) {
  m.block(l.listName);
  numbers(m, l.listWord1, l.listWord2);
  numberOr(m, l.listWord3, -1);
  storedWorkList(m, version, 2, l.entries);
}

template <class M>
void storedTextEntries(M& m, int version, std::size_t count, std::vector<SheetTextEntry>& l) {
  pieces(m, "text", l, count, [&](auto& n, SheetTextEntry& e) { storedTextEntry(n, version, e); });
}
template <class M>
void storedNamedLists(M& m, int version, std::size_t count, std::vector<NamedWorkList>& l) {
  pieces(
      m, "named", l, count, [&](auto& n, NamedWorkList& one) { storedNamedList(n, version, one); },
      version >= 90 ? 1 : 0);
}

template <class M>
void storedBlock(M& m, int version, ShapeWorkBlock& b) {
  each(m, b.blockWords);
  for (auto& one : b.blockValues) m.block(one);
  numberOr(m, b.blockShapes.listTag, -1);
  numberOr(m, b.blockShapes.listKind, 1);
  storedShapes(m, version, {ShapeForm{}, ShapeForm{}}, b.blockShapes.shapes);
  storedWorkList(m, version, 2, b.work);
}

template <class M>
void storedExtensionEntry(M& m, MachineExtensionEntry& e) {
  m.block(e.headBlock);
  each(m, e.words);
}
template <class M>
void storedExtensionEntries(M& m, std::size_t count, std::vector<MachineExtensionEntry>& l) {
  unlessZero(m, l, count, [&] {
    pieces(m, "extension", l, count, [](auto& n, MachineExtensionEntry& e) { storedExtensionEntry(n, e); });
  });
}

// A sheet up to the spare word before its parameter table.
template <class M>
void storedSheetFront(M& m, int version, const SheetForm& form, OldSheet& s) {
  piece(m, "textWidth", [&] { fixedOr(m, s.textWidth, form.width, 256); });
  piece(m, "sheetLabel", [&] { leading(m, s.sheetLabel, form.width); });
  piece(m, "width", [&] { numberOr(m, s.width, 60.0F); });
  piece(m, "height", [&] { numberOr(m, s.height, 45.0F); });
  piece(m, "thickness", [&] { numberOr(m, s.thickness, std::bit_cast<float>(0x3D449BA6U)); });
  piece(m, "headerWord", [&] { m.number(s.headerWord); });
  if (version >= 100) {
    piece(m, "length", [&] { m.stored(form.dosLength); });
    piece(m, "skeletonDosName", [&] { leading(m, s.skeletonDosName, form.dosLength); });
    storedShapeList(m, version, form.elements > 0 ? someShapes() : std::vector<ShapeForm>{}, s.skeletonShapes);
  } else {
    m.absent(s.skeletonDosName[0], '\0');
    m.untouched(s.skeletonShapes.shapes);
    m.absent(s.skeletonShapes.listKind, 1);
  }
  bool hasParts = true;
  unlessZero(m, s.partList.parts, form.elements,
             [&] { piece(m, "part count", [&] { hasParts = m.size(s.partList.parts, form.elements); }); });
  if (form.elements > 0)
    piece(m, "nameWidth", [&] { m.fixed(s.partList.nameWidth, form.nameWidth, 256); });
  else
    m.absent(s.partList.nameWidth, 256);
  if (hasParts && form.elements > 0)
    elements(m, s.partList.parts, form.elements, [&](auto& n, TorvPart& p, std::size_t) {
      piece(n, "part[]", [&] {
        leading(n, p.partName, form.nameWidth);
        leading(n, p.partFullDosName, form.nameWidth);
        storedPart(n, version, StoredPartForm{true, true, 0}, p);
        n.absent(p.version, 0);
      });
    });
  numberOr(m, s.shapes.listTag, -1);
  numberOr(m, s.shapes.listKind, 0);
  storedShapes(m, version, form.shapes ? someShapes() : std::vector<ShapeForm>{}, s.shapes.shapes);
  if (form.shapes) {
    piece(m, "slots", [&] { m.fixed(s.processSlotCount, form.slots); });
    for (int i = 0; i < form.slots; ++i) storedSlot(m, version, s.processSlots[i]);
    const std::size_t n = form.ownWork;
    unlessZero(m, s.marks, n, [&] { storedMarks(m, n, s.marks); });
    unlessZero(m, s.profiles, n, [&] { storedProfiles(m, version, std::min(n, std::size_t{1}), s.profiles); });
    unlessZero(m, s.stepTables, n, [&] { storedStepTables(m, version, n, 3, s.stepTables); });
    storedSheetSetup(m, std::min(n, form.elements), s.setupList);
    unlessZero(m, s.patternItems, n, [&] { storedItems(m, version, n, s.patternItems); });
  } else {
    m.absent(s.processSlotCount, std::int8_t{0});
    m.untouched(s.marks);
    m.untouched(s.profiles);
    m.untouched(s.stepTables);
    m.untouched(s.setupList.entries);
    m.untouched(s.patternItems);
    m.absent(s.setupList.current.setupReal2, -1.0F);
  }
  pieces(m, "work", s.workList, form.elements, [&](auto& n, WorkEntry& w) { storedWork(n, version, w); });
  piece(m, "rows", [&] { m.fixed(s.rowTable.count, form.rows); });
  for (int i = 0; i < form.rows; ++i) {
    piece(m, "row", [&] {
      m.number(s.rowTable.words[i]);
      m.block(s.rowTable.values[i]);
    });
  }
  piece(m, "clampInfo", [&] { storedClamp(m, form.clamps, 200, s.clampInfo); });
  piece(m, "clamp rows", [&] { m.fixed(s.clampRowTable.count, form.clampRows); });
  for (int i = 0; i < form.clampRows; ++i) {
    piece(m, "clamp row", [&] {
      for (int k = 0; k < form.clamps; ++k) m.number(s.clampRowTable.words[i][k]);
      m.block(s.clampRowTable.values[i]);
    });
  }
}

template <class M>
void storedSpareWord(M& m, int version, const SheetForm& form) {
  if (version >= 154)
    piece(
        m, "spare", [&] { m.stored(form.spare); }, 0);
  m.section(kSheetTable);
}

// After the parameter table.
template <class M>
void storedSheetMachine(M& m, int version, const SheetForm& form, OldSheet& s) {
  for (int i = 0; i < 5; ++i) piece(m, "leadWord", [&] { m.number(s.leadWords[i]); });
  if (version >= 54)
    piece(m, "leadWord", [&] { m.number(s.leadWords[5]); });
  else
    m.absent(s.leadWords[5], 0U);
  if constexpr (M::kLoads) (void)setFixedText(s.machine.path, version >= 61 ? kMachinePath : "");
  if (version >= 61) {
    if constexpr (M::kMakes)
      if (m.fills()) std::memcpy(s.machine.path, kMachinePath.data(), kMachinePath.size());
    const auto width = static_cast<std::size_t>(form.width);
    piece(m, "machine path", [&] { m.raw(Bytes().text(width, fixedText(s.machine.path))); });
  }
  m.section(kSheetMachine);
  storedMachine(m, version, machineOf(form), s.machine, s.shapes);
}

// After the machine.
template <class M>
void storedSheetEnd(M& m, int version, const SheetForm& form, OldSheet& s) {
  if (form.extension) {
    storedExtensionEntries(m, form.elements, s.machine.extension.extensionEntries);
    m.absent(s.optionWord, 0U);
  } else {
    piece(m, "optionWord", [&] { m.number(s.optionWord); });
  }
  if (version >= 60) {
    storedTextEntries(m, version, form.elements, s.textEntries);
    storedNamedLists(m, version, form.elements, s.namedWorkLists);
  } else {
    m.untouched(s.textEntries);
    m.untouched(s.namedWorkLists);
  }
  for (auto& word : s.trailingWords) {
    if (version >= 90)
      piece(m, "trailingWord", [&] { m.number(word); });
    else
      m.absent(word, 0U);
  }
  if (version >= 102)
    piece(m, "utilization", [&] { m.number(s.utilization); });
  else
    m.absent(s.utilization, 0.0F);
  for (auto& text : s.partTexts) {
    if (version >= 111)
      piece(m, "partText", [&] { leading(m, text, form.width); });
    else
      m.absent(text[0], '\0');
  }
  if (version >= 111)
    piece(m, "partTextWord", [&] { m.number(s.partTextWord); });
  else
    m.absent(s.partTextWord, 0U);
  for (auto* text : {&s.materialGroup, &s.materialType, &s.materialText3, &s.materialText4}) {
    if (version >= 112)
      piece(m, "material text", [&] { leading(m, *text, 256); });
    else
      m.absent((*text)[0], '\0');
  }
  if (version >= 130)
    piece(
        m, "materialText5", [&] { leading(m, s.materialText5, 256); }, 0);
  else
    m.absent(s.materialText5[0], '\0');
  if (version >= 140)
    piece(
        m, "lateValue", [&] { m.number(s.lateValue); }, 0);
  else
    m.absent(s.lateValue, 0.0);
  if (version >= 152) {
    m.clears(s.blocks);
    piece(
        m, "blocks", [&] { m.stored(0); }, version >= 161 ? 1 : 0);
  }
  m.untouched(s.blocks);
  if (version >= 161)
    piece(m, "lateText", [&] { leading(m, s.lateText, 256); });
  else
    m.absent(s.lateText[0], '\0');
}

// What storedSheetFront leaves.
template <class M>
void storedSheetBack(M& m, int version, const SheetForm& form, OldSheet& s) {
  storedSpareWord(m, version, form);
  storedParamTable(m, tableOf(version, form), s.paramTable);
  storedSheetMachine(m, version, form, s);
  storedSheetEnd(m, version, form, s);
}

template <class M>
void storedSheet(M& m, int version, const SheetForm& form, OldSheet& s) {
  storedSheetFront(m, version, form, s);
  storedSheetBack(m, version, form, s);
}

}  // namespace testing_support
