// Members of a material, its tables and the shape programs, which machines have, too.
#pragma once
#include "OldTorvIO/material.h"
#include "OldTorvIO/material_parts.h"
#include "OldTorvIO/param_table.h"
#include "OldTorvIO/shape_program.h"
#include "torvio/values/members.h"
#include "torvio/values/shared_members.h"

namespace oldtorvio::values {

MEMBERS(GroupQuad, quadWords);
MEMBERS(ShapeProgramGroup, groupShapes, groupQuads, groupSlots, groupSteps);
MEMBERS(ShapeProgram, programWord1, programWord2, programWord3, programWord4, programWord5, programWord6, programValue1,
        programValue2, programValue3, programValue4, programGroups, programWord7);
MEMBERS_BEYOND(ShapeProgram, ShapeProgramEx, record.extFlag1, record.extValue1, record.extValue2, record.extFlag2,
               record.extValue3, record.extFlag3);
MEMBERS(ParamTable, version, title, intParams, realParams, textParams, nameLength, name);
MEMBERS(SettingEntry, entryWord1, entryWord2, entryWide, entryText, entryWord3);
MEMBERS(SettingGroup, groupWord, groupList);
MEMBERS(MaterialToolSet, setWord1, setWord2, setWord3, setWord4, setWord5, setWord6, stepsA, stepsB);
MEMBERS(MaterialToolSetTable, toleranceA, toleranceB, toleranceC, toleranceD, sets, setCount);
MEMBERS(MaterialPalette, paletteMode, red, green, blue, listA, listB, listC, groupsA, groupsB, groupsC, groupsD,
        groupsE, groupsF, groupsG, groupsH, colourCount, groupCount);
MEMBERS(MaterialStageTable, stageWord1, stageWord2, blocks, stageTail);
MEMBERS(MaterialEntry, entryKey, entryText);
MEMBERS(AngleRule, ruleCode, angleCount, ruleValues, ruleAngles, sizeLimitX, sizeLimitY);
MEMBERS(SizeRule, sizeValue1, sizeValue2, sizeValue3, sizeValue4, sizeValue5, sizeValue6, sizeFlagA, sizeFlagB);
MEMBERS(MaterialRuleLists, angleRules, pairRules, sizeRulesA, sizeRulesB, ruleFlag1, ruleFlag2, ruleFlag3, ruleFlag4,
        ruleWord1, ruleWord2, ruleAngle1, ruleAngle2);
MEMBERS(MaterialHeadRecord, headWords, headWord11, optionA, optionB, headTail1, headTail2, headTail3);
MEMBERS(OldMaterial, UNSTORED(path), name, entryList, toolSets, palette, stages, rules, modeA, modeB, modeC,
        settingLists, setting1, setting2, setting3, setting4, setting5, setting6, setting7, setting8, setting9,
        setting10, setting11, setting12, setting13, setting14, setting15, setting16, setting17, setting18, setting19,
        setting20, setting21, setting22, setting23, setting24, setting25, setting26, setting27, setting28, setting29,
        setting30, setting31, setting32, setting33, setting34, setting35, setting36, setting37, setting38, setting39,
        setting40, setting41, setting42, setting43, setting44, setting45, setting46, setting47, setting48, setting49,
        setting50, setting51, setting52, setting53, setting54, setting55, setting56, setting57, setting58, setting59,
        setting60, setting61, setting62, setting63, setting64, setting65, setting66, setting67, setting68, setting69,
        setting70, setting71, setting72, setting73, setting74, setting75, setting76, setting77, setting78, setting79,
        setting80, setting81, setting82, setting83, setting84, setting85, setting86, setting87, setting88, setting89,
        setting90, setting91, setting92, setting93, setting94, setting95, setting96, setting97, setting98, setting99,
        setting100, setting101, setting102, setting103, setting104, setting105, setting106, setting107, setting108,
        setting109, setting110, setting111, setting112, setting113, setting114, setting115, setting116, setting117,
        setting118, setting119, setting120, setting121, setting122, setting123, setting124, setting125, setting126,
        setting127, setting128, setting163, setting164, setting165, setting166, choice1, choice2, choice3, choice4,
        choice5, choice6, choice7, choice8, version, settingListCount, params, head);

}  // namespace oldtorvio::values
