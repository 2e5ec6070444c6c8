// Members of a sheet and of the lists that only sheets have.
#pragma once
#include "OldTorvIO/sheet.h"
#include "OldTorvIO/sheet_lists.h"
#include "torvio/values/machine_members.h"
#include "torvio/values/material_members.h"
#include "torvio/values/members.h"
#include "torvio/values/part_members.h"
#include "torvio/values/shared_members.h"

namespace oldtorvio::values {

MEMBERS(SheetSetupEntry, entry, entryBlocks);
MEMBERS(SheetSetupList, entries, current, currentBlocks, tailBlock, tailWord1, tailWord2);
MEMBERS(SheetTextEntry, entryWord1, UNSTORED(entryWord2), entryWord3, entryText1, entryText2, entryText3,
        UNSTORED(entryText4), entryWord4, entryWord5, entryWord6, entryWord7, UNSTORED(entryWord8), entryWord9);
MEMBERS(NamedWorkList, listName, listWord1, listWord2, listWord3, entries);
MEMBERS(ShapeWorkBlock, blockValues, work, blockShapes, blockWords);
MEMBERS(RowTable, count, words, values);
MEMBERS(ClampRowTable, count, words, values);
MEMBERS(OldSheet, version, UNSTORED(sheetName), UNSTORED(sheetPath), width, height, thickness, partList, setupList,
        shapes, patternItems, marks, profiles, UNSTORED(transformKind), UNSTORED(transform), UNSTORED(scratchShapes),
        headerWord, stepTables, processSlotCount, UNSTORED(processSlotMode), processSlots, UNSTORED(auxiliaryList),
        UNSTORED(auxiliaryFlag), blocks, textWidth, sheetLabel, workList, rowTable, clampRowTable, clampInfo,
        paramTable, leadWords, machine, optionWord, textEntries, namedWorkLists, trailingWords, skeletonShapes,
        skeletonDosName, utilization, partTexts, partTextWord, materialGroup, materialType, materialText3,
        materialText4, materialText5, lateValue, lateText);

}  // namespace oldtorvio::values
