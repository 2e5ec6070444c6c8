// The tables of a material: tool sets, palette, stages, entries, rules, head.
#pragma once
#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "OldTorvIO/profile.h"
#include "OldTorvIO/shape_program.h"
#include "OldTorvIO/step_table.h"

namespace oldtorvio {

struct SettingEntry {
  std::uint32_t entryWord1 = 0, entryWord2 = 0;
  std::uint8_t entryWide[8] = {};
  char entryText[21] = {};  // raw
  std::uint32_t entryWord3 = 0;
};

using SettingList = std::vector<SettingEntry>;

struct SettingGroup {
  std::uint32_t groupWord = 0;
  SettingList groupList;
};

struct MaterialToolSet {
  std::uint32_t setWord1 = 0, setWord2 = 0, setWord3 = 0, setWord4 = 0, setWord5 = 0, setWord6 = 0;
  StepTable stepsA, stepsB;
};

struct MaterialToolSetTable {
  float toleranceA = 0.001F, toleranceB = -0.001F, toleranceC = 0.001F, toleranceD = -0.001F;
  MaterialToolSet sets[6];
  std::int32_t setCount = 0;  // how many of sets are stored, at most 6; below 1 none
};

struct MaterialPalette {
  std::int32_t paletteMode = 1;
  std::uint8_t red[20] = {128, 255, 0, 0, 255, 0, 255};
  std::uint8_t green[20] = {0, 0, 255, 0, 255, 255, 0};
  std::uint8_t blue[20] = {0, 0, 0, 255, 0, 255, 255};
  SettingList listA, listB, listC;
  SettingGroup groupsA[5], groupsB[5], groupsC[5], groupsD[5];  // since 130, stored after the others
  SettingGroup groupsE[5], groupsF[5], groupsG[5], groupsH[5];
  std::int16_t colourCount = 0;  // how many colours are stored, at most 20; below 1 none
  std::int16_t groupCount = 0;   // how many entries of each groups array are stored, at most 5
};

struct MaterialStageTable {
  MaterialStageTable() {
    constexpr std::int32_t kKinds[8] = {5, 3, 5, 3, 1, 1, 0, 0};
    for (int i = 0; i < 8; ++i) blocks[i].motionKind = kKinds[i];
  }

  std::uint32_t stageWord1 = 0, stageWord2 = 0;
  MotionBlock blocks[8];            // [4] and [5] since 151, [6] and [7] since 152
  std::uint8_t stageTail[16] = {};  // since 150
};

struct MaterialEntry {
  std::int32_t entryKey = 0;
  char entryText[256] = {};  // raw
};

// A rule for one shape code. ruleValues[i] and ruleAngles[i] belong together.
struct AngleRule {
  std::uint8_t ruleCode = 0;
  // How many entries are stored, at most 10; in pairRules how many pairs, at most 5. Below 1: none.
  std::int8_t angleCount = 0;
  float ruleValues[10] = {0.025F, 0.025F, 0.025F, 0.025F, 0.025F, 0.025F, 0.025F, 0.025F, 0.025F, 0.025F};
  float ruleAngles[10] = {};  // radians
  float sizeLimitX = 0, sizeLimitY = 0;
};

struct SizeRule {
  std::uint32_t sizeValue1 = 0;  // in sizeRulesA the bits of a float, in sizeRulesB a key (1, 5, 7 or 9)
  float sizeValue2 = 0, sizeValue3 = 0, sizeValue4 = 0, sizeValue5 = 0;
  float sizeValue6 = 0;                       // sizeRulesB only
  std::uint8_t sizeFlagA = 0, sizeFlagB = 0;  // sizeRulesA only
};

// A new record has default rules. A list that a file stores replaces them; if the stored count of angleRules is not
// exactly six, a load appends the six default rules.
struct MaterialRuleLists {
  // Their angleCount is 0, although they have angles.
  static std::vector<AngleRule> defaultAngleRules() {
    return {
        angleRule(1, 20.5F, {0}),
        angleRule(5, 30.5F, {1.5707964F, 4.712389F}),
        angleRule(7, 50.5F, {0, 2.6179938F, 3.6651914F}),
        angleRule(16, 20.5F, {1.5707964F, 4.712389F}),
        angleRule(22, 30.5F, {0, 1.5707964F, 3.1415927F, 4.712389F}),
        angleRule(23, 60.5F, {1.5707964F, 2.3561945F, 3.1415927F, 4.712389F, 5.497787F, 0}),
    };
  }
  static std::vector<SizeRule> defaultSizeRulesA() {
    constexpr std::uint32_t kTen = 0x41200000;  // the bits of 10.0
    return {
        {kTen, 10.0F, 20.5F, 20.5F, 0.025F},
        {kTen, 10.0F, 30.5F, 30.5F, 0.025F},
        {kTen, 10.0F, 60.5F, 60.5F, 0.025F},
    };
  }
  static std::vector<SizeRule> defaultSizeRulesB() {
    return {
        {1, 0.025F, 0, 0, 12.0F, 12.0F},
        {5, 0.025F, 5.5F, 0, 35.0F, 35.0F},
        {7, 0.025F, 5.5F, 0, 59.0F, 59.0F},
        {9, 0.025F, 5.5F, 7.5F, 100.0F, 100.0F},
    };
  }

  std::vector<AngleRule> angleRules = defaultAngleRules();
  std::vector<AngleRule> pairRules = defaultAngleRules();  // since 155
  std::vector<SizeRule> sizeRulesA = defaultSizeRulesA();  // since 161
  std::vector<SizeRule> sizeRulesB = defaultSizeRulesB();  // since 161
  std::uint8_t ruleFlag1 = 1, ruleFlag2 = 1, ruleFlag3 = 1;
  std::uint8_t ruleFlag4 = 0;  // since 161
  std::uint32_t ruleWord1 = 0, ruleWord2 = 0;
  float ruleAngle1 = 1.5707964F, ruleAngle2 = 1.5707964F;  // radians

 private:
  static AngleRule angleRule(std::uint8_t code, float sizeLimit, std::initializer_list<float> angles) {
    AngleRule rule;
    rule.ruleCode = code;
    std::copy(angles.begin(), angles.end(), rule.ruleAngles);
    rule.sizeLimitX = rule.sizeLimitY = sizeLimit;
    return rule;
  }
};

struct MaterialHeadRecord {
  std::int32_t headWords[10] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
  std::uint32_t headWord11 = 0;
  ShapeProgram optionA;
  ShapeProgramEx optionB;
  std::uint32_t headTail1 = 0, headTail2 = 0, headTail3 = 0;  // since 92
};

}  // namespace oldtorvio
