// Members of a machine and its tables.
#pragma once
#include "OldTorvIO/machine.h"
#include "OldTorvIO/machine_parts.h"
#include "torvio/values/material_members.h"
#include "torvio/values/members.h"
#include "torvio/values/shared_members.h"

namespace oldtorvio::values {

MEMBERS(ClampInfo, clampWord1, clampWord2, clampWord3, clampWord4, clampPositions, clampCount, clampSpacing);
MEMBERS(MachineFrame, frameValue1, frameValue2, frameValue3, frameValue4, frameValue5, frameValue6, frameValue7,
        frameValue8, frameValue9, frameValue10, frameValue11);
MEMBERS(WorkArea, areaValues, areaTail);
MEMBERS(MachineGrid, gridHead1, gridHead2, gridCells, cellSizeX, cellSizeY, gridWidth, gridValue1, gridValue2,
        UNSTORED(gridValue3), cellByteCount, UNSTORED(gridIsNarrow));
MEMBERS(GridSegment, segmentHead, segmentValue, segmentWord, segmentKind);
MEMBERS(MachineExtensionEntry, headBlock, words);
MEMBERS(MachineExtension, extensionValue1, extensionValue2, extensionValue3, extensionValue4, extensionValue5,
        extensionValue6, extensionValue7, extensionValue8, extensionValue9, extensionValue10, extensionValue11,
        extensionValue12, extensionValue13, extensionValue14, extensionValue15, extensionValue16, extensionValue17,
        extensionValue18, extensionValue19, extensionValue20, extensionValue21, extensionValue22, extensionValue23,
        extensionValue24, extensionValue25, extensionValue26, extensionValue27, extensionValue28, extensionValue29,
        extensionValue30, extensionValue31, extensionValue32, extensionValue33, extensionValue34, extensionValue35,
        extensionValue36, extensionValue37, extensionValue38, extensionValue39, extensionValue40, extensionValue41,
        extensionValue42, extensionValue43, extensionValue44, extensionValue45, extensionValue46, extensionValue47,
        extensionValue48, extensionValue49, extensionValue50, extensionWords, extensionEntries);
MEMBERS(MachineUnitEntry, entryValue1, entryValue2, entryValue3, entryValue4, entryValue5, entryValue6, entryValue7,
        entryValue8);
MEMBERS(MachineUnit, unitKey1, unitKey2, unitEntries);
MEMBERS(MachineUnitTable, unitFlag1, unitFlag2, unitValue1, unitValue2, unitValue3, unitValue4, unitValue5, unitValue6,
        unitValue7, units, unitValue8, unitValue9, unitValue10, unitValue11, unitValue12, unitValue13, unitValue14,
        unitValue15, unitValue16, UNSTORED(unitFlag3), unitFlag4, unitValue17, unitValue18, unitValue19, unitValue20,
        unitValue21, unitFlag5, unitValue22);
MEMBERS(MachineSetup, sizeX, sizeY, clampInfo, clampValue1, clampValue2, machineWord91, machineWord92);
MEMBERS(OldMachine, version, path, textWidth, machineText1, machineKind, limitsPresent, limitA, limitB, limitC,
        limitWord, secondTextPresent, secondTextWidth, secondText, smallValue, shapesPresent, sizeX, sizeY, frame,
        clampInfo, clampValue1, clampValue2, clampWord, machineText2, machineText3, workArea, stationsA, stationWord,
        stationsB, stationsC, blockMode, blockA, blockB, gridMode, gridA, gridB, gridWord1, gridAngle, gridWord3,
        segmentBox, segments, gridFlag1, gridFlag2, hasExtension, extension, programMode, programA, programB,
        stepListPresent, stepTables, ncPath, ncExtension, programC, programD, wideValue1, wideValue2, material,
        lateByteA, lateWord8, flagTriple, triadWord1, triadWord2, triadCount, triads, unitWord, unitTable,
        numberColumns, textColumnA, textColumnB, displayName, displayTail, lateWord1, lateWord2, lateWord3, lateWord4,
        lateWord5, lateText1, lateWord6, lateText2, lateExtension, lateWord7, lateByteB, lateByteC, UNSTORED(setup2),
        setupWords, setup3, endText1, endWord, endText2, machineWord1, machineWord2, machineWord3, machineWord4,
        machineWord5, machineWord6, machineWord7, machineWord8, machineWord9, machineWord10, machineWord11,
        machineWord12, machineWord13, machineWord14, machineWord15, machineWord16, machineWord17, machineWord18,
        machineWord19, machineWord20, machineWord21, machineWord22, machineWord23, machineWord24, machineWord25,
        machineWord26, machineWord27, machineWord28, machineWord29, machineWord30, machineWord31, machineWord32,
        machineWord33, machineWord34, machineWord35, machineWord36, machineWord37, machineWord38, machineWord39,
        machineWord40, machineWord41, machineWord42, machineWord43, machineWord44, machineWord45, machineWord46,
        machineWord47, machineWord48, machineWord49, machineWord50, machineWord51, machineWord52, machineWord53,
        machineWord54, machineWord55, machineWord56, machineWord57, machineWord58, machineWord59, machineWord60,
        machineWord61, machineWord62, machineWord63, machineWord64, machineWord65, machineWord66, machineWord67,
        machineWord68, machineWord69, machineWord70, machineWord71, machineWord72, machineWord73, machineWord74,
        machineWord75, machineWord76, machineWord77, machineWord78, machineWord79, machineWord80, machineWord81,
        machineWord82, machineWord83, machineWord84, machineWord85, machineWord86, machineWord87, machineWord88,
        machineWord89, machineWord90, machineWord91, machineWord92, machineWord93, machineWord94, machineWord95,
        machineWord96, machineWord97, machineWord98, machineWord99, machineWord100, machineWord101, machineWord102,
        machineWord103, machineWord104, machineWord105, machineWord106, machineWord107, machineWord108, machineWord109,
        machineWord110, machineWord111, machineWord112, machineWord113, machineWord114, machineWord115, machineWord116,
        machineWord117, machineWord118, machineWord119, machineWord120, machineWord121, machineWord122, machineWord123,
        machineWord124, machineWord125, machineWord126, machineWord127, machineWord128, machineWord129, machineWord130,
        machineWord131, machineWord132);

}  // namespace oldtorvio::values
