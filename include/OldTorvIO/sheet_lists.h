// The lists and tables that only sheets have.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/work_list.h"

namespace oldtorvio {

struct SheetSetupEntry {
  SetupEntry entry;
  std::uint8_t entryBlocks[3][8] = {};
};

// A list without entries is stored as its count only. A load fails only if one of the three tail fields is missing. An
// entry that cannot be read completely stays in the list with what was read; of the entries for which the file has no
// bytes, at most 1024 stay.
struct SheetSetupList {
  std::vector<SheetSetupEntry> entries;
  SetupEntry current;
  std::uint8_t currentBlocks[3][8] = {};
  std::uint8_t tailBlock[8] = {};
  std::uint32_t tailWord1 = 0, tailWord2 = 0;
};

struct SheetTextEntry {
  std::uint32_t entryWord1 = 0;
  std::uint32_t entryWord2 = 0;  // memory only
  std::uint32_t entryWord3 = 0;
  char entryText1[256] = {}, entryText2[256] = {}, entryText3[256] = {};  // raw
  char entryText4[256] = {};                                              // memory only
  std::uint32_t entryWord4 = 0, entryWord5 = 0, entryWord6 = 0;
  std::int32_t entryWord7 = -1;
  std::uint32_t entryWord8 = 0;  // memory only
  std::uint32_t entryWord9 = 0;  // since 180
};

struct NamedWorkList {
  char listName[256] = {};  // raw
  std::uint32_t listWord1 = 0, listWord2 = 0;
  std::int32_t listWord3 = -1;
  WorkList entries;  // a sequence of its own
};

// Stored in the order blockWords, blockValues, blockShapes, work. See `blocks` of OldSheet for what a load keeps.
struct ShapeWorkBlock {
  std::uint8_t blockValues[4][8] = {};
  WorkList work;
  ShapeList blockShapes;
  std::uint32_t blockWords[5] = {};  // stored first
};

// Each row is a word and an 8-byte value.
struct RowTable {
  std::int32_t count = 0;  // stored rows, at most 25; below 1 none
  std::uint32_t words[25] = {};
  std::uint8_t values[25][8] = {};
};

// Each row is stored as its first words, as many as the clampInfo of the sheet has clamps, and its value.
struct ClampRowTable {
  std::int32_t count = 0;  // stored rows, at most 25; below 1 none
  std::uint32_t words[25][8] = {};
  std::uint8_t values[25][8] = {};
};

}  // namespace oldtorvio
