// The tables of a machine: frame, clamps, work area, grid, extension, units.
#pragma once
#include <algorithm>
#include <cstdint>
#include <vector>

namespace oldtorvio {

struct ClampInfo {
  std::uint32_t clampWord1 = 0, clampWord2 = 0, clampWord3 = 0, clampWord4 = 0;
  float clampPositions[8] = {5.5F, 11.0F, 16.5F, 22.0F, 27.5F, 33.0F, 38.5F, 44.0F};
  std::int32_t clampCount = 2;  // how many of clampPositions are stored, at most 8; below 1 none
  float clampSpacing = 5.5F;
};

struct MachineFrame {
  float frameValue1 = 15.75F, frameValue2 = 1.65F, frameValue3 = 31.5F;
  float frameValue4 = 0, frameValue5 = 10.0F, frameValue6 = 10.0F;  // since 60
  float frameValue7 = 0, frameValue8 = 0;                           // since 157
  float frameValue9 = 0, frameValue10 = 0.8F, frameValue11 = 0.8F;  // since 60
};

struct WorkArea {
  float areaValues[4] = {0, 0, 60.0F, 45.0F};
  std::uint8_t areaTail[12] = {};
};

struct MachineGrid {
  MachineGrid() { std::fill_n(gridCells, 10000, std::uint8_t{1}); }

  std::uint32_t gridHead1 = 0, gridHead2 = 0;
  std::uint8_t gridCells[40000] = {};  // the first 10000 are 1 in a fresh grid
  float cellSizeX = 5.0F, cellSizeY = 5.0F;
  std::int32_t gridWidth = 10;  // a load keeps the low 16 bits of the stored width
  std::int32_t gridValue1 = 8;
  float gridValue2 = 1.0F;
  float gridValue3 = 0.25F;            // memory only
  std::int32_t cellByteCount = 40000;  // stored bytes of gridCells, 1 to 40000
  std::int32_t gridIsNarrow = 1;       // set by a load: 1 if the stored width is below 65536, else 0
};

struct GridSegment {
  std::uint8_t segmentHead[8] = {};
  float segmentValue = 1.0F;
  std::uint32_t segmentWord = 0;
  std::int32_t segmentKind = 2;
};

// Stored in sheets only.
struct MachineExtensionEntry {
  std::uint8_t headBlock[16] = {};
  std::uint32_t words[4] = {};
};

// Fifty values, numbered in stored order.
struct MachineExtension {
  std::int32_t extensionValue1 = 2;
  float extensionValue2 = 0, extensionValue3 = 0, extensionValue4 = 0;
  std::int32_t extensionValue5 = 1, extensionValue6 = 1;
  float extensionValue7 = 0, extensionValue8 = 0;
  std::int32_t extensionValue9 = 1;
  std::int32_t extensionValue10 = 11;
  float extensionValue11 = 0.005F, extensionValue12 = 0.005F;
  float extensionValue13 = -26.0F, extensionValue14 = 0;
  float extensionValue15 = 31.5F, extensionValue16 = 31.5F;
  float extensionValue17 = -26.0F, extensionValue18 = 0, extensionValue19 = 72.4F, extensionValue20 = 50.9F;
  float extensionValue21 = -26.0F, extensionValue22 = 0, extensionValue23 = 72.4F, extensionValue24 = 50.9F;
  float extensionValue25 = 0, extensionValue26 = 0;
  float extensionValue27 = 1.85F;
  float extensionValue28 = 3.4F, extensionValue29 = 3.4F;
  float extensionValue30 = 26.0F;
  float extensionValue31 = 31.5F;
  float extensionValue32 = 23.62F, extensionValue33 = 23.62F;
  float extensionValue34 = 59.0F;
  float extensionValue35 = 31.5F;
  float extensionValue36 = 98.4F;
  float extensionValue37 = 49.2F;
  float extensionValue38 = 0.04F;
  float extensionValue39 = 0.394F;
  float extensionValue40 = 10.63F;
  float extensionValue41 = 68.11F;
  float extensionValue42 = 5.906F;
  float extensionValue43 = 0.005F;
  float extensionValue44 = 0, extensionValue45 = 0, extensionValue46 = 0;
  float extensionValue47 = 59.0F;
  float extensionValue48 = 31.5F;
  float extensionValue49 = 0.5F;
  std::int32_t extensionValue50 = 1;
  std::vector<std::int32_t> extensionWords = {1, 11};
  std::vector<MachineExtensionEntry> extensionEntries;  // stored in sheets only
};

struct MachineUnitEntry {
  std::uint32_t entryValue1 = 0;  // since 141, stored last
  std::uint32_t entryValue2 = 0, entryValue3 = 1, entryValue4 = 0;
  std::uint32_t entryValue5 = 0, entryValue6 = 0, entryValue7 = 0;
  std::uint32_t entryValue8 = 1;  // stored after entryValue3
};

struct MachineUnit {
  std::uint32_t unitKey1 = 0, unitKey2 = 0;
  std::vector<MachineUnitEntry> unitEntries;
};

struct MachineUnitTable {
  std::uint8_t unitFlag1 = 0, unitFlag2 = 0;
  std::uint32_t unitValue1 = 0, unitValue2 = 0, unitValue3 = 0, unitValue4 = 0, unitValue5 = 0, unitValue6 = 0;
  std::int32_t unitValue7 = 1;
  std::vector<MachineUnit> units;
  std::uint32_t unitValue8 = 0, unitValue9 = 0, unitValue10 = 0, unitValue11 = 0;    // since 121
  std::uint32_t unitValue12 = 0, unitValue13 = 0, unitValue14 = 0, unitValue15 = 0;  // since 121
  std::int32_t unitValue16 = 1;                                                      // since 121
  std::uint8_t unitFlag3 = 0;                                                        // memory only
  std::uint8_t unitFlag4 = 0;                                                        // since 141
  std::uint32_t unitValue17 = 0, unitValue18 = 0;                                    // since 141
  std::int32_t unitValue19 = 1;                                                      // since 141
  std::uint32_t unitValue20 = 0, unitValue21 = 0;                                    // since 141, after unitFlag5
  std::uint8_t unitFlag5 = 0;                                                        // since 141
  std::int32_t unitValue22 = 1;                                                      // since 154
};

}  // namespace oldtorvio
