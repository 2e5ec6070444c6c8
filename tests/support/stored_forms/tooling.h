// Special tools, inventories and macros.
#pragma once
#include <array>
#include <string>
#include <vector>

#include "tests/support/stored_forms/shapes.h"
#include "tests/support/stored_forms/small_records.h"
#include "tests/support/stored_forms/tools.h"

namespace testing_support {

// The first of the 60 bytes may add a symmetry, see the tests of special tools.
template <class M>
void storedSpecialTool(M& m, int version, std::int32_t shapeCode, OldSpecialTool& s,
                       const std::vector<ShapeForm>& shapes = someShapes(), std::size_t setupEntries = 2) {
  storedTool(m, version, false, shapeCode, s.tool);
  m.zeros(60);
  m.number(s.specialValue);
  storedShapeList(m, version, shapes, s.shapes);
  storedSetupList(m, setupEntries, s.setupList);
}

// The file of a special tool with the values that it holds.
inline Bytes heldSpecialToolFile(int version, OldSpecialTool file, std::uint8_t symmetryByte = 0,
                                 std::uint8_t otherBytes = 0xAB) {
  std::vector<ShapeForm> forms;
  for (const Shape& s : file.shapes.shapes)
    forms.push_back({s.type, s.valueCount, s.extraCount, s.textFlag > 0, s.note});
  Maker tool = Maker::ofHeldValues(), all = Maker::ofHeldValues();
  storedTool(tool, version, false, file.tool.shapeCode, file.tool);
  storedSpecialTool(all, version, file.tool.shapeCode, file, forms, file.setupList.entries.size());
  const Bytes symmetry = Bytes().u8(symmetryByte).fill(59, otherBytes);
  return Bytes().i16(version).add(patched(all.bytes, tool.bytes.size(), symmetry));
}

template <class M>
void storedEntry(M& m, int version, int steps, InventoryEntry& e) {
  numberOr(m, e.entryHead, std::uint16_t{256});
  m.number(e.entryWord);
  m.block(e.entryNameA);
  numbers(m, e.entryByteA, e.entryByteB);
  m.block(e.entryNameB);
  numbers(m, e.entryShortA, e.entryShortB);
  since(m, version >= 130, [&](auto& n) { n.block(e.entryNameC, "0"); });
  since(m, version >= 150, [&](auto& n) {
    n.number(e.entryLateWord);
    each(n, e.entryLateReals);
  });
  storedSteps(m, version, steps, e.entrySteps);
}

struct InventoryForm {
  std::vector<std::int32_t> codes{1, 107, 108};
  std::size_t entries = 2, files = 2;
};

// The tools are emptied and read after the pairs that follow their count.
template <class M>
void storedInventory(M& m, int version, const InventoryForm& form, OldToolInventory& inventory) {
  m.stored(static_cast<std::int32_t>(form.codes.size()));
  for (int i = 0; i < 20; ++i) numbers(m, inventory.pairFirst[i], inventory.pairSecond[i]);
  if (m.reaches(0))
    elements(m, inventory.tools, form.codes.size(),
             [&](auto& n, OldTool& t, std::size_t i) { storedTool(n, version, false, form.codes[i], t); });
  else
    m.untouched(inventory.tools);
  list(m, inventory.entries, form.entries,
       [&](auto& n, InventoryEntry& e, std::size_t i) { storedEntry(n, version, static_cast<int>(i) + 2, e); });
  list(m, inventory.specialToolFiles, form.files, [](auto& n, std::array<char, 256>& file, std::size_t) {
    n.together(file.size());
    for (char& one : file) n.number(one);
  });
}

// The file of an inventory without entries.
inline Bytes storedInventoryFile(int version, const std::vector<OldTool>& tools,
                                 const std::vector<std::string>& specialToolFiles) {
  InventoryForm form{{}, 0, specialToolFiles.size()};
  for (const OldTool& tool : tools) form.codes.push_back(tool.shapeCode);
  OldToolInventory inventory;
  inventory.tools = tools;
  for (const std::string& file : specialToolFiles) file.copy(inventory.specialToolFiles.emplace_back().data(), 256);
  Maker m = Maker::ofHeldValues();
  storedInventory(m, version, form, inventory);
  return Bytes().i16(version).add(m.bytes);
}

struct MacroForm {
  std::vector<ShapeForm> shapes = someShapes();
  std::size_t items = 2;
  std::vector<std::int32_t> codes{1, 108};
};

template <class M>
void storedMacro(M& m, int version, const MacroForm& form, OldMacro& macro) {
  m.block(macro.macroHead);
  m.block(macro.macroHeadSecond);
  m.number(macro.macroHeadWord);
  m.block(macro.macroBlock);
  m.block(macro.macroBlockLong);
  storedShapeList(m, version, form.shapes, macro.shapes);
  storedItems(m, version, form.items, macro.items);
  if (version >= 60) {
    storedStations(m, version, form.codes, macro.stationList);
  } else {
    m.untouched(macro.stationList.stations);
    m.absent(macro.stationList.stationModeWord, 0U);
  }
  since(m, version >= 60, [&](auto& n) { each(n, macro.macroTailWords); });
  if (m.reaches(0))
    for (Shape& shape : macro.shapes.shapes) since(m, version >= 80, [&](auto& n) { n.number(shape.trailerValue); });
}

}  // namespace testing_support
