// A sheet: one nest of parts on a plate, with its machine and parameters.
#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <vector>

#include "OldTorvIO/fixed_text.h"
#include "OldTorvIO/machine.h"
#include "OldTorvIO/mark.h"
#include "OldTorvIO/param_table.h"
#include "OldTorvIO/part_list.h"
#include "OldTorvIO/pattern_item.h"
#include "OldTorvIO/process_slot.h"
#include "OldTorvIO/profile.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/sheet_lists.h"
#include "OldTorvIO/step_table.h"
#include "OldTorvIO/work_list.h"

namespace oldtorvio {

struct OldSheet;
// Sets these fields to the values of a new sheet, which the initializers of OldSheet show: sheetName, width, height,
// thickness, listKind of shapes, textWidth, processSlotMode, auxiliaryFlag, processSlotCount, headerWord, leadWords,
// rowTable, clampRowTable, trailingWords, utilization and partTextWord. Makes these texts empty: sheetPath, sheetLabel,
// skeletonDosName, partTexts, materialGroup, materialType, materialText3 to materialText5 and lateText. All other
// fields, including the lists, are unchanged.
void InitOldSheet(OldSheet& sheet);

// About 208 KiB without its lists: allocate it on the heap. Texts are raw bytes of the file: a text that fills its
// field has no NUL. Fields without a comment on their meaning are only loaded and saved. If a file stores no entries of
// shapes, it stores none of processSlotCount, processSlots, marks, profiles, stepTables, setupList and patternItems,
// and a load leaves them unchanged.
struct OldSheet {
  OldSheet() { shapes.listKind = 0; }

  std::uint16_t version = 0;            // version word of the file, even if it is refused
  char sheetName[256] = "NEW SHEET";    // memory only; no load changes it
  char sheetPath[260] = {};             // memory only; LoadOldSheetInformation sets it
  float width = 60.0F, height = 45.0F;  // of the plate, in the suite's length unit
  float thickness = 0.048F;             // of the plate
  SheetPartList partList;
  SheetSetupList setupList;
  ShapeList shapes;              // of the sheet itself; its listKind is 0 in a new sheet
  PatternItemList patternItems;  // of the sheet itself
  MarkList marks;
  ProfileList profiles;
  std::int32_t transformKind = 1;                             // memory only
  float transform[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};  // memory only
  ShapeList scratchShapes;                                    // memory only
  std::uint32_t headerWord = 0;
  StepTableList stepTables;
  std::int8_t processSlotCount = 0;                  // how many of processSlots are stored; below 1 none
  std::int32_t processSlotMode = 1;                  // memory only
  ProcessSlots processSlots;                         // 250
  std::vector<std::array<char, 256>> auxiliaryList;  // memory only
  std::uint8_t auxiliaryFlag = 1;                    // memory only
  std::vector<ShapeWorkBlock> blocks;  // since 152; a load keeps only blocks that it cannot read completely
  std::int32_t textWidth = 256;  // bytes of sheetLabel, the machine path and each of partTexts in the file, 1 to 256
  char sheetLabel[256] = {};
  WorkList workList;  // the sequence of the sheet
  RowTable rowTable;
  ClampRowTable clampRowTable;
  ClampInfo clampInfo;  // of the sheet; the machine has its own
  // The integers are the driver flags, the name is that of the material file. A table of version 0 is stored with the
  // version of the file (see SaveOldSheet).
  ParamTable paramTable;
  std::uint32_t leadWords[6] = {};            // [5] since 54
  OldMachine machine;                         // its path is stored since 61; a load of an older file empties it
  std::uint32_t optionWord = 0;               // stored if the machine has no extension
  std::vector<SheetTextEntry> textEntries;    // since 60
  std::vector<NamedWorkList> namedWorkLists;  // since 60; load and save ignore a fault inside
  std::uint32_t trailingWords[3] = {};        // since 90
  ShapeList skeletonShapes;                   // since 100
  char skeletonDosName[260] = {};             // since 100
  float utilization = 0;                      // since 102; of the plate, as the suite stored it
  char partTexts[5][256] = {};                // since 111, textWidth bytes each; see GetOldVLMQMaterialName
  std::uint32_t partTextWord = 0;             // since 111
  char materialGroup[256] = {};               // since 112
  char materialType[256] = {};                // since 112
  char materialText3[256] = {}, materialText4[256] = {};  // since 112
  char materialText5[256] = {};                           // since 130
  double lateValue = 0;                                   // since 140
  char lateText[256] = {};                                // since 161
};

inline void InitOldSheet(OldSheet& sheet) {
  (void)setFixedText(sheet.sheetName, "NEW SHEET");
  sheet.sheetPath[0] = '\0';
  sheet.width = 60.0F;
  sheet.height = 45.0F;
  sheet.thickness = 0.048F;
  sheet.shapes.listKind = 0;
  sheet.headerWord = 0;
  sheet.processSlotCount = 0;
  sheet.processSlotMode = 1;
  sheet.auxiliaryFlag = 1;
  sheet.textWidth = 256;
  sheet.sheetLabel[0] = '\0';
  sheet.rowTable = RowTable();
  sheet.clampRowTable = ClampRowTable();
  std::fill(std::begin(sheet.leadWords), std::end(sheet.leadWords), 0U);
  std::fill(std::begin(sheet.trailingWords), std::end(sheet.trailingWords), 0U);
  sheet.skeletonDosName[0] = '\0';
  sheet.utilization = 0;
  for (char(&text)[256] : sheet.partTexts) text[0] = '\0';
  sheet.partTextWord = 0;
  sheet.materialGroup[0] = sheet.materialType[0] = sheet.materialText3[0] = sheet.materialText4[0] = '\0';
  sheet.materialText5[0] = sheet.lateText[0] = '\0';
}

}  // namespace oldtorvio
