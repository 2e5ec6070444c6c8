// The tools that a shop owns.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "OldTorvIO/step_table.h"
#include "OldTorvIO/tool.h"

namespace oldtorvio {

struct InventoryEntry {
  std::uint32_t entryWord = 0;
  StepTable entrySteps;
  char entryNameA[256] = {};
  std::uint8_t entryByteA = 0, entryByteB = 0;
  char entryNameB[256] = {};
  std::uint16_t entryShortA = 0, entryShortB = 0;
  char entryNameC[256] = "0";       // since 130
  std::uint16_t entryHead = 256;    // stored first
  std::uint32_t entryLateWord = 0;  // since 150
  float entryLateReals[2] = {};     // since 150
};

struct OldToolInventory {
  std::vector<OldTool> tools;  // emptied when a load reaches it
  std::uint32_t pairFirst[20] = {}, pairSecond[20] = {};
  char path[256] = {};                  // of the loaded file, its first 255 characters
  std::vector<InventoryEntry> entries;  // a load of a file without entries keeps them
  // The files of the special tools: specialToolIndex of a tool is a 1-based position in it. Emptied when a load reaches
  // it.
  std::vector<std::array<char, 256>> specialToolFiles;
  std::int16_t version = 0;  // version word of the file, even if it is refused
};

}  // namespace oldtorvio
