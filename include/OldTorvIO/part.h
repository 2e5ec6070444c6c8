// A part: outline and tool shapes, stations, patterns, process tables and texts.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/mark.h"
#include "OldTorvIO/part_extensions.h"
#include "OldTorvIO/pattern.h"
#include "OldTorvIO/process_slot.h"
#include "OldTorvIO/profile.h"
#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/step_table.h"
#include "OldTorvIO/tool_station.h"
#include "OldTorvIO/work_list.h"

namespace oldtorvio {

// About 6 KiB without its lists: allocate it on the heap if the stack is small. Texts are raw bytes of the file: a text
// that fills its field has no NUL. "since 71; 2 below": version 71 is the first that stores the field, and a load of an
// older file sets it to 2. "memory only": never stored.
struct TorvPart {
  std::int32_t recordWord = 0;      // memory only
  char partName[256] = "NEW PART";  // stored in group part files and sheets
  char partFullDosName[260] = {};   // full path; set by LoadOldPart, stored in sheets
  float width = 30.0F, height = 20.0F;
  char productName[21] = "NEW PRODUCT";
  char assemblyName[21] = "NEW ASSEMBLY";
  char materialName[21] = "NEW MATERIAL";
  std::int32_t partKind = 1;
  std::int32_t partWord1 = 1;
  float thickness = 0.05F;
  char descriptionA[256] = {};  // since 62, like the next five; a load of an older file
  char descriptionB[256] = {};  // empties the texts and sets lateIndex to -1
  char revision[21] = {};
  char materialType[256] = {};
  char descriptionC[256] = {};
  std::int32_t lateIndex = -1;
  std::int32_t version = 0;  // version word of the file; 0 in group files and sheets
  ShapeList shapes;
  SetupList setupList;
  PatternList patterns;  // a part file stores only the first
  MarkList marks;
  ProfileList profiles;
  std::int32_t transformKind = 1;                    // memory only
  float transform[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};  // memory only
  ShapeList scratchShapes;                           // memory only
  StepTableList stepTables;
  WorkList workList;                  // since 71
  std::uint8_t processSlotCount = 0;  // how many of processSlots are stored, at most 250
  ProcessSlots processSlots;          // 250
  std::int32_t memoryWord1 = 1;       // memory only
  std::int32_t partWord2 = 11;
  std::int32_t memoryWord2 = 0;  // memory only
  std::int32_t workKind = 2;     // since 71; 2 below
  std::uint8_t headFlag = 0;     // since 80; 0 below
  std::int32_t optionWord = 0;   // the five option fields: since 80, if hasOptions
  double optionReal = 0.05;
  std::int32_t optionCount = 1;
  std::int32_t optionValue = 0;
  char optionText[256] = {};
  char noteText[256] = {};
  std::uint8_t hasOptions = 0;   // since 80
  ToolStationList toolStations;  // stored in part files, not in sheets
  std::int32_t tailWord1 = 1;
  std::int32_t tailWord2 = 0;
  PlacedShapeList placedShapes;                   // since 102
  char customTextA[256] = {};                     // since 110
  char customTextB[256] = {};                     // since 110
  std::int32_t memoryWord3 = 0;                   // memory only
  std::int32_t customWord1 = 0, customWord2 = 0;  // since 110
  char customText1[256] = {};                     // since 110
  char customText2[256] = {};                     // since 110
  char customText3[256] = {};                     // since 110
  std::int32_t customWord3 = 0, customWord4 = 0;  // since 110
  char customTextC[256] = {};                     // since 111, stored after customTextD
  char customTextD[256] = {};                     // since 111
  char customTextE[256] = {};                     // since 112
  std::uint8_t lateBlock1[8] = {};                // since 140
  std::uint8_t lateBlock2[8] = {};                // since 140
  std::int32_t lateWords[6] = {};                 // since 152
  char woNumber[256] = {};                        // work order number; since 162, in sheets only
  std::vector<ShapeGroup> nestShapeGroups;        // since 151; a load appends to it
  std::vector<ContourGroup> contourGroups;        // since 154
  std::vector<BindingSet> bindingSets;            // since 161
  char finalTextA[256] = {};                      // since 180
  char finalTextB[256] = {};                      // since 180
  char finalTextC[256] = {};                      // since 180
  char finalTextD[256] = {};                      // since 180
  std::int32_t finalWord1 = 0, finalWord2 = 0;    // since 180
};

}  // namespace oldtorvio
