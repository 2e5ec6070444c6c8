// Members of a part and of its lists.
#pragma once
#include "OldTorvIO/part.h"
#include "OldTorvIO/part_extensions.h"
#include "OldTorvIO/part_list.h"
#include "OldTorvIO/pattern.h"
#include "torvio/values/members.h"
#include "torvio/values/shared_members.h"

namespace oldtorvio::values {

MEMBERS(Pattern, headWord, gridCount1, gridCount2, gridStep1, gridStep2, originX, originY, rotationCos, rotationSin,
        items, patternWord, groupBlock, groupKind, groupWords, profiles, UNSTORED(transformKind), UNSTORED(transform),
        UNSTORED(scratchShapes), stepTables, bindWord1, bindWord2, bindWord3, lateWord1, bindByte, bindWord4,
        bindShorts, lateWord2, lateWord3, bindFirst, bindSecond, bindThird, bindFourth, bindFifth);
MEMBERS(PlacedShapeList, placedBlock, shapes);
MEMBERS(ShapeGroup, shapes, groupWord, groupByte);
MEMBERS(ContourGroup, shapes, contourWord1, contourWord2, contourWord3, contourByte);
MEMBERS(BindingEntry, entryWord1, entryWord2, shape);
MEMBERS(BindingSet, numbers, entries, setWord);
MEMBERS(TorvPart, UNSTORED(recordWord), partName, partFullDosName, width, height, productName, assemblyName,
        materialName, partKind, partWord1, thickness, descriptionA, descriptionB, revision, materialType, descriptionC,
        lateIndex, version, shapes, setupList, patterns, marks, profiles, UNSTORED(transformKind), UNSTORED(transform),
        UNSTORED(scratchShapes), stepTables, workList, processSlotCount, processSlots, UNSTORED(memoryWord1), partWord2,
        UNSTORED(memoryWord2), workKind, headFlag, optionWord, optionReal, optionCount, optionValue, optionText,
        noteText, hasOptions, toolStations, tailWord1, tailWord2, placedShapes, customTextA, customTextB,
        UNSTORED(memoryWord3), customWord1, customWord2, customText1, customText2, customText3, customWord3,
        customWord4, customTextC, customTextD, customTextE, lateBlock1, lateBlock2, lateWords, woNumber,
        nestShapeGroups, contourGroups, bindingSets, finalTextA, finalTextB, finalTextC, finalTextD, finalWord1,
        finalWord2);
MEMBERS(SheetPartList, parts, nameWidth);

}  // namespace oldtorvio::values
