// Members of the records that several kinds of files embed.
#pragma once
#include "OldTorvIO/mark.h"
#include "OldTorvIO/pattern_item.h"
#include "OldTorvIO/process_slot.h"
#include "OldTorvIO/profile.h"
#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/step_table.h"
#include "OldTorvIO/tool.h"
#include "OldTorvIO/tool_station.h"
#include "OldTorvIO/work_list.h"
#include "torvio/values/members.h"

namespace oldtorvio::values {

MEMBERS(MarkEntry, markWord1, markShort, markWord2, markWord3);
MEMBERS(WorkEntry, workWord1, workByte, workValue1, workValue2, workValue3, workValue4, workValue5, workWord2,
        workWord3, workWord4, workWord5, workWord6, workWord7, workWord8, workWord9, workBlock);
MEMBERS(ProcessSlot, slotWord1, slotWord2, slotBlock, slotWord3, slotWord4, firstLength, firstAngle, secondLength,
        secondAngle, toolUse, toolActive, slotByte, toolChoice, firstToolNumber, secondToolNumber, slotKind);
MEMBERS(StepTable, tableFlag, tableWord1, tableBlock, tableWord2, tableWord3, stepCount, stepByteA, stepWord, stepByteB,
        stepByteC, UNSTORED(memoryFlag1), UNSTORED(memoryFlag2), UNSTORED(memoryWords), lateFlag);
MEMBERS(SetupEntry, setupShort1, setupShort2, setupByte1, UNSTORED(memoryByte1), setupShort3, setupByte2,
        UNSTORED(memoryByte2), setupShort4, setupByte3, UNSTORED(memoryBytes), setupBlock, setupWord1, setupByte4,
        setupWord2, setupShort5, setupWord3, setupReal1, setupReal2, UNSTORED(memoryWord));
MEMBERS(SetupList, entries, current, tailBlock, tailWord1, tailWord2);
MEMBERS(MotionBlock, motionKind, motionWord, motionValue, motionLength1, motionAngle1, motionAngle2, motionLength2,
        lateWord1, lateWord2, lateWord3, lateWord4, lateWord5, steps);
MEMBERS(ProfileRecord, profileHead, profileIndex, profileWord1, profileWord2, profileWord3, profileCondition1,
        profileBlock, profileCondition2, profileWord4, profileWord5, profileLink, profileWords, firstBlock, secondBlock,
        tailWord1, tailWord2, tailWord3, tailByte1, tailByte2, tailByte3, tailWord4, tailByte4, tailByte5, tailWord5);
MEMBERS(Shape, type, auxWord, flags, x, y, values, linkIndex, auxValue1, extraValues, textFlag, auxValue2, auxValue3,
        auxValue4, trailerValue, valueCount, extraCount, rangeValue, lateByte1, lateByte2, lateByte3, lateWord1,
        lateByte4, lateWord2, note, tailPair, text);
MEMBERS(ShapeList, shapes, listKind, listTag);
MEMBERS(PatternItem, itemWord1, toolNumber, UNSTORED(memoryWord1), itemWord2, itemPair1, itemPair2, itemShort1,
        itemShort2, itemWord3, itemWord4, UNSTORED(memoryWord2), lateWord);
MEMBERS(OldTool, orientation, shapeCode, UNSTORED(name), specialToolIndex, auxWord1, dimension1, dimension2, dimension3,
        firstValueCount, firstValues, secondValueCount, secondValues, auxWord2, auxWord3, symmetryFlags,
        UNSTORED(runtimeIndexA), UNSTORED(runtimeIndexB), extraValues, specialBlock, fileVersion, specialToolPath,
        UNSTORED(lateFlag), UNSTORED(lateFlag2), lateWords, tailBlock, tailText);
MEMBERS(ToolStation, placeValue, placeWord, stationNumber, orientation, stationType, toolCount, stationValue, limits,
        valueCount, values, offsets, byteA, byteB, byteC, wordA, realA, realB, byteD, byteE, realC, wordB, realD,
        wordsC, realsE, byteF, byteG, byteH, stationText, wordD, pairValues, wordE, wordF, realF, wordG, wordH, wordI,
        wordJ);
MEMBERS(ToolStationList, stations, headerWord, secondHeaderWord, stationModeWord, UNSTORED(spareWord), tools,
        extraWords, UNSTORED(stationModeCode));

}  // namespace oldtorvio::values
