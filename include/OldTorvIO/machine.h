// A punching or laser machine.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "OldTorvIO/machine_parts.h"
#include "OldTorvIO/material.h"
#include "OldTorvIO/shape_program.h"
#include "OldTorvIO/step_table.h"
#include "OldTorvIO/tool_station.h"

namespace oldtorvio {

// One more setup of the machine. The fields of the same names in OldMachine are the first setup.
struct MachineSetup {
  float sizeX = 0, sizeY = 0;
  ClampInfo clampInfo;
  float clampValue1 = 3.189F, clampValue2 = 0.3937F;
  std::uint32_t machineWord91 = 0, machineWord92 = 0;
};

// About 150 KiB without its lists: allocate it on the heap. Texts are raw bytes of the file: a text that fills its
// field has no NUL. Fields without a comment on their meaning are only loaded and saved. "since 61; 0 below": version
// 61 is the first that stores the field, and a load of an older file sets it to 0.
struct OldMachine {
  std::int16_t version = 0;  // version word of a machine file; a load of a sheet leaves it unchanged
  // Path of the file that LoadOldMachineInformation or GetOldVLMQMachineName loaded (its first 259 characters), set
  // even if the version is refused. A sheet stores the path of its machine.
  char path[260] = {};
  std::int32_t textWidth = 0;  // bytes of machineText1 in the file, 1 to 256; 0 cannot be stored
  char machineText1[256] = {};
  std::int32_t machineKind = 1;  // 1: no station limits, 2: no work area (see GetMachineDatasForQD)
  // 1: the four values below are stored; otherwise a load sets them to -0.125, -0.125, 0.048 and 0. At its end a load
  // raises limitB to the larger of areaValues[0] and [1] if that is above it, and sets limitA to limitB.
  std::uint8_t limitsPresent = 0;
  float limitA = -0.1F;
  float limitB = -0.1F;
  float limitC = 0.05F;
  std::uint32_t limitWord = 0;
  std::uint8_t secondTextPresent = 0;  // 1: secondText is stored
  std::int32_t secondTextWidth = 0;    // bytes of secondText in the file, 1 to 256
  char secondText[256] = {};
  std::int32_t smallValue = 0;     // a load reads a signed byte, a save stores four bytes
  std::uint8_t shapesPresent = 0;  // 1: the machine stores trailer values of the shapes of its sheet
  float sizeX = 0, sizeY = 0;
  MachineFrame frame;
  ClampInfo clampInfo;  // stored twice; a load keeps the second
  float clampValue1 = 3.189F, clampValue2 = 0.3937F;
  std::uint32_t clampWord = 0;
  char machineText2[256] = {}, machineText3[256] = {};
  WorkArea workArea;
  ToolStationList stationsA;
  std::uint32_t stationWord = 0;         // since 61; 0 below
  ToolStationList stationsB, stationsC;  // since 61
  std::uint32_t blockMode = 0;           // 1: blockA is stored, 2: blockB and blockA
  std::uint8_t blockA[16] = {}, blockB[16] = {};
  // 1: gridA is stored, 2: gridB and gridA. After a negative mode a file stores none of gridA to programB, the second
  // clampInfo and machineWord91 to machineWord107, and a load sets the mode to 0.
  std::int32_t gridMode = 0;
  MachineGrid gridA, gridB;
  std::uint32_t gridWord1 = 0;
  float gridAngle = 1.5707964F;
  std::uint32_t gridWord3 = 0;
  std::uint8_t segmentBox[16] = {};  // stored if there are segments
  std::vector<GridSegment> segments;
  std::uint8_t gridFlag1 = 0, gridFlag2 = 0;
  std::int32_t hasExtension = 0;  // not 0: extension is stored
  MachineExtension extension;
  std::int32_t programMode = 0;  // 1: programA is stored, 2: programB
  ShapeProgram programA;
  ShapeProgramEx programB;
  std::int32_t stepListPresent = 0;  // not 0: stepTables are stored
  StepTableList stepTables;
  char ncPath[256] = {};                                // since 62; folder of the NC output
  char ncExtension[11] = "nc";                          // since 62
  ShapeProgram programC;                                // since 71
  ShapeProgramEx programD;                              // since 80
  std::uint8_t wideValue1[8] = {}, wideValue2[8] = {};  // since 80
  OldMaterial material;                                 // since 80, without params, path and version
  std::uint8_t lateByteA = 0;                           // since 90
  std::uint32_t lateWord8 = 0;                          // since 90
  std::uint8_t flagTriple[3] = {};                      // since 100
  std::uint32_t triadWord1 = 0, triadWord2 = 0;         // since 101
  std::int32_t triadCount = 0;                          // since 101; stored triads, at most 255
  std::uint8_t triads[255][7] = {};                     // since 101
  std::uint32_t unitWord = 0;                           // since 110
  MachineUnitTable unitTable;                           // since 110; a load ignores a fault in it
  std::uint32_t numberColumns[6][3] = {};               // since 110
  std::string textColumnA[3], textColumnB[3];           // since 110; at most 256 bytes each
  char displayName[256] = {};                           // since 111; the machine's name
  char displayTail[20] = {};                            // since 111, raw
  std::uint32_t lateWord1 = 0, lateWord2 = 0;           // since 112
  std::int32_t lateWord3 = 1;                           // since 112, stored last; 1 below
  std::uint32_t lateWord4 = 0;                          // since 112; 0 below
  float lateWord5 = 0.0001F;                            // since 112, stored third; 0.0001 below
  char lateText1[256] = {};                             // since 130
  std::uint32_t lateWord6 = 0;                          // since 130
  char lateText2[256] = {};                             // since 130
  char lateExtension[11] = {};                          // since 130
  std::uint32_t lateWord7 = 0;                          // since 130
  std::uint8_t lateByteB = 0;                           // since 141
  std::uint8_t lateByteC = 0;                           // since 152, but a save stores it at every version
  MachineSetup setup2;                                  // never stored; a load copies the first setup
  float setupWords[5] = {0, 0.5F, 0.5F, 0.04F, 0};      // since 154
  MachineSetup setup3;                                  // since 154; a load of an older file copies the first setup
  char endText1[256] = {};                              // since 157
  std::uint32_t endWord = 0;                            // since 170
  char endText2[256] = {};                              // since 180

  // Numbered words, grouped by the version that added them.
  // since 60
  float machineWord1 = 0.0001F;  // a load replaces an absolute value below 0.0001 by sizeX
  std::uint32_t machineWord2 = 0, machineWord3 = 0, machineWord4 = 0, machineWord5 = 0, machineWord6 = 0;
  std::uint32_t machineWord7 = 0, machineWord8 = 0, machineWord9 = 0, machineWord10 = 0, machineWord11 = 0;

  // since 62
  std::uint32_t machineWord12 = 0, machineWord13 = 0, machineWord14 = 0, machineWord15 = 0, machineWord16 = 0;
  std::uint32_t machineWord17 = 0, machineWord18 = 0, machineWord19 = 0, machineWord20 = 0, machineWord21 = 0;
  std::uint32_t machineWord22 = 0, machineWord23 = 0, machineWord24 = 0;
  std::int32_t machineWord25 = 3;
  std::uint32_t machineWord26 = 0, machineWord27 = 0, machineWord28 = 0, machineWord29 = 0, machineWord30 = 0;
  std::uint32_t machineWord31 = 0, machineWord32 = 0, machineWord33 = 0, machineWord34 = 0, machineWord35 = 0;
  std::uint32_t machineWord36 = 0, machineWord37 = 0, machineWord38 = 0, machineWord39 = 0, machineWord40 = 0;
  std::uint32_t machineWord41 = 0, machineWord42 = 0, machineWord43 = 0;
  std::int32_t machineWord44 = 1;
  std::int32_t machineWord45 = -1, machineWord46 = -1, machineWord47 = -1, machineWord48 = -1;
  std::int32_t machineWord49 = -1, machineWord50 = -1, machineWord51 = -1, machineWord52 = -1;
  std::uint32_t machineWord53 = 0;
  std::uint32_t machineWord54 = 0, machineWord55 = 0, machineWord56 = 0, machineWord57 = 0;
  std::uint32_t machineWord58 = 0, machineWord59 = 0, machineWord60 = 0, machineWord61 = 0;

  // since 71
  std::uint32_t machineWord62 = 0, machineWord63 = 0;

  // since 80
  std::uint32_t machineWord64 = 0;
  std::int32_t machineWord65 = -1, machineWord66 = -1;  // -1 below
  std::uint32_t machineWord67 = 0;
  std::int32_t machineWord68 = 1000;
  std::uint32_t machineWord69 = 0, machineWord70 = 0, machineWord71 = 0, machineWord72 = 0, machineWord73 = 0;
  std::uint32_t machineWord74 = 0, machineWord75 = 0, machineWord76 = 0;
  float machineWord77 = 2.0F;
  std::uint32_t machineWord78 = 0;
  std::uint32_t machineWord79 = 0;
  std::uint32_t machineWord80 = 0, machineWord81 = 0;
  float machineWord82 = 1.5F;

  // since 90
  std::uint32_t machineWord83 = 0, machineWord84 = 0, machineWord85 = 0, machineWord86 = 0;
  std::uint32_t machineWord87 = 0, machineWord88 = 0, machineWord89 = 0, machineWord90 = 0;

  // at every version
  std::uint32_t machineWord91 = 0, machineWord92 = 0;
  std::uint32_t machineWord93 = 0, machineWord94 = 0, machineWord95 = 0, machineWord96 = 0;
  float machineWord97 = 40.0F;  // since 62 stored twice; a load keeps the second
  std::uint32_t machineWord98 = 0, machineWord99 = 0, machineWord100 = 0, machineWord101 = 0, machineWord102 = 0;
  std::uint32_t machineWord103 = 0, machineWord104 = 0, machineWord105 = 0, machineWord106 = 0, machineWord107 = 0;

  // since 110
  std::uint32_t machineWord108 = 0, machineWord109 = 0, machineWord110 = 0, machineWord111 = 0;
  std::uint32_t machineWord112 = 0, machineWord113 = 0, machineWord114 = 0, machineWord115 = 0;
  std::uint32_t machineWord116 = 0, machineWord117 = 0, machineWord118 = 0, machineWord119 = 0;
  std::uint32_t machineWord120 = 0, machineWord121 = 0, machineWord122 = 0, machineWord123 = 0;

  // since 151; a save stores them at every version
  std::uint32_t machineWord124 = 0;  // 0 below
  float machineWord125 = 0;          // 1.5 below
  std::uint32_t machineWord126 = 0;  // 0 below
  float machineWord127 = 0;          // 1.5 below
  std::uint32_t machineWord128 = 0;
  std::int32_t machineWord129 = 0, machineWord130 = 0;  // 1 below
  std::uint32_t machineWord131 = 0, machineWord132 = 0;
};

}  // namespace oldtorvio
