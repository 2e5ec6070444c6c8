// A sheet: one nest of parts on a plate, with the machine and the parameters it was made for.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

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

// About 208 KiB without its lists: keep it on the heap. Texts are raw bytes of the file: a text that
// fills its field has no NUL. Words without a stated meaning are carried. A file without shapes stores
// nothing of processSlotCount, processSlots, marks, profiles, stepTables, setupList and patternItems; a
// load then leaves these fields as they are.
struct OldSheet {
  static ShapeList freshShapes() {
    ShapeList list;
    list.listKind = 0;
    return list;
  }

  std::uint16_t version = 0;            // version word of the file, also when it is refused
  char sheetName[256] = "NEW SHEET";    // memory only
  char sheetPath[260] = {};             // memory only; LoadOldSheetInformation sets it
  float width = 60.0F, height = 45.0F;  // of the plate, in the suite's length unit
  float thickness = 0.048F;             // of the plate
  SheetPartList partList;
  SheetSetupList setupList;
  ShapeList shapes = freshShapes();  // of the sheet itself
  PatternItemList patternItems;      // of the sheet itself
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
  std::vector<ShapeWorkBlock> blocks;                // since 152; only blocks that cannot be read whole are kept
  std::int32_t textWidth = 256;  // bytes of sheetLabel, machine path and partTexts in the file, 1 to 256
  char sheetLabel[256] = {};
  WorkList workList;  // the sequence of the sheet
  RowTable rowTable;
  ClampRowTable clampRowTable;
  ClampInfo clampInfo;              // of the sheet; the machine has its own
  ParamTable paramTable;            // its integers are the driver flags, its name the material file; a save stores
                                    // an empty table in the place of one of version 0
  std::uint32_t leadWords[6] = {};  // the sixth since 54
  OldMachine machine;               // its path stands in front of it since 61; empty below
  std::uint32_t optionWord = 0;     // stored where the machine has no extension
  std::vector<SheetTextEntry> textEntries;                // since 60
  std::vector<NamedWorkList> namedWorkLists;              // since 60; a fault inside is passed over
  std::uint32_t trailingWords[3] = {};                    // since 90
  ShapeList skeletonShapes;                               // since 100
  char skeletonDosName[260] = {};                         // since 100
  float utilization = 0;                                  // since 102; of the plate, as the suite stored it
  char partTexts[5][256] = {};                            // since 111, textWidth bytes each; see GetOldVLMQMaterialName
  std::uint32_t partTextWord = 0;                         // since 111
  char materialGroup[256] = {};                           // since 112
  char materialType[256] = {};                            // since 112
  char materialText3[256] = {}, materialText4[256] = {};  // since 112
  char materialText5[256] = {};                           // since 130
  double lateValue = 0;                                   // since 140
  char lateText[256] = {};                                // since 161
};

}  // namespace oldtorvio
