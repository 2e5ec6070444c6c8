// Members of tool inventories, macros and special tools.
#pragma once
#include "OldTorvIO/macro.h"
#include "OldTorvIO/special_tool.h"
#include "OldTorvIO/tool_inventory.h"
#include "torvio/values/members.h"
#include "torvio/values/shared_members.h"

namespace oldtorvio::values {

MEMBERS(InventoryEntry, entryWord, entrySteps, entryNameA, entryByteA, entryByteB, entryNameB, entryShortA, entryShortB,
        entryNameC, entryHead, entryLateWord, entryLateReals);
MEMBERS(OldToolInventory, tools, pairFirst, pairSecond, UNSTORED(path), entries, specialToolFiles, version);
MEMBERS(OldMacro, macroHead, macroHeadSecond, macroHeadWord, shapes, items, macroBlock, macroBlockLong, version,
        stationList, macroTailWords);
MEMBERS(OldSpecialTool, tool, specialValue, shapes, setupList);

}  // namespace oldtorvio::values
