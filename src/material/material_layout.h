// Stored form of a material: its tables and its body.
#pragma once
#include "OldTorvIO/material.h"
#include "src/frame/describe.h"
#include "src/material/param_layout.h"
#include "src/material/shape_program_layout.h"
#include "src/records/small_layouts.h"

namespace oldtorvio {

// Which of the two lists of size rules: they share a record, not a stored form.
enum class SizeRuleForm { a, b };

// A selector counts up to its limit in a low bank from 0 and in a high bank from 1000.
struct ChoiceLimit {
  std::int32_t OldMaterial::* choice;
  std::int32_t limit;
};
inline constexpr ChoiceLimit kChoiceLimits[] = {
    {&OldMaterial::choice1, 4}, {&OldMaterial::choice2, 8}, {&OldMaterial::choice3, 4}, {&OldMaterial::choice4, 6},
    {&OldMaterial::choice5, 8}, {&OldMaterial::choice6, 4}, {&OldMaterial::choice7, 6}, {&OldMaterial::choice8, 8},
};
// What a load makes of a value outside both banks. The gap between the banks is not looked at.
inline std::int32_t choiceAfterReading(std::int32_t value, std::int32_t limit) {
  if (value >= 0 && value < 1001 + limit) return value;
  return value < 1000 ? 1 : 1001;
}
inline std::int32_t choiceAfterWriting(std::int32_t value, std::int32_t limit) {
  return value > 1000 + limit ? 1000 + value % 10 : value;
}

namespace frame {

template <>
struct Layout<SettingEntry> {
  static constexpr std::size_t kLeast = 41;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& e) {
    return io.fields(F(e.entryWord1, e.entryWord2, e.entryWide, e.entryText, e.entryWord3));
  }
};

template <>
struct Layout<SettingGroup> {
  static bool describe(auto& io, auto& g) {
    // A group that the file ends in front of is left out, and so are all behind it.
    return io.skipUnless(F(g.groupWord), [&] { return io.countThenClear(F(g.groupList)); });
  }
};

template <>
struct Layout<MaterialToolSet> {
  static bool describe(auto& io, auto& s) {
    return io.fields(F(s.setWord1, s.setWord2, s.setWord3, s.setWord4, s.setWord5, s.setWord6))
        && io.record(F(s.stepsA))
        && io.record(F(s.stepsB));
  }
};

template <>
struct Layout<MaterialToolSetTable> {
  static bool describe(auto& io, auto& t) {
    return io.fields(F(t.toleranceA, t.toleranceB, t.toleranceC, t.toleranceD))
        && io.repair(t, [](auto& r) { r.setCount = 6; })
        && io.fields(F(t.setCount))
        && io.atMost(F(t.setCount), 6)
        && io.rows(t.setCount, [&](std::size_t i) { return io.record(F(t.sets[i])); });
  }
};

template <>
struct Layout<MaterialPalette> {
  static bool describe(auto& io, auto& p) {
    return io.fields(F(p.paletteMode))
        && io.repair(p, [](auto& r) { r.colourCount = 20; })
        && io.fields(F(p.colourCount))
        && io.atMost(F(p.colourCount), 20)
        && io.rows(p.colourCount, [&](std::size_t i) { return io.fields(F(p.red[i], p.green[i], p.blue[i])); })
        && io.countThenClear(F(p.listA))
        && io.countThenClear(F(p.listB))
        && io.countThenClear(F(p.listC))
        && io.repair(p, [](auto& r) { r.groupCount = 5; })
        && io.fields(F(p.groupCount))
        && io.atMost(F(p.groupCount), 5)
        && io.rows(p.groupCount, [&](std::size_t i) {
             return io.record(F(p.groupsE[i])) && io.record(F(p.groupsF[i]))
                 && io.record(F(p.groupsG[i])) && io.record(F(p.groupsH[i]));
           })
        && io.since(130, [&] {
             return io.rows(p.groupCount, [&](std::size_t i) {
               return io.record(F(p.groupsA[i])) && io.record(F(p.groupsB[i]))
                   && io.record(F(p.groupsC[i])) && io.record(F(p.groupsD[i]));
             });
           });
  }
};

template <>
struct Layout<MaterialStageTable> {
  static bool describe(auto& io, auto& t) {
    const auto block = [&](std::size_t i) { return io.record(F(t.blocks[i])); };
    return io.fields(F(t.stageWord1, t.stageWord2))
        && io.rows(4, block)
        && io.since(150, F(t.stageTail))
        && io.since(151, [&] { return io.record(F(t.blocks[4])) && io.record(F(t.blocks[5])); })
        && io.since(152, [&] { return io.record(F(t.blocks[6])) && io.record(F(t.blocks[7])); });
  }
};

template <>
struct Layout<MaterialEntry> {
  static constexpr std::size_t kLeast = 260;
  static bool describe(auto& io, auto& e) { return io.fields(F(e.entryKey, e.entryText)); }
};

template <>
struct Layout<AngleRule> {
  static constexpr std::size_t kLeast = 20;
  static bool describe(auto& io, auto& r, bool paired) {
    return io.fields(F(r.ruleCode, r.angleCount))
        && describeEntries(io, r, paired ? doubled(r.angleCount) : r.angleCount)
        && io.fields(F(r.sizeLimitX, r.sizeLimitY))
        && io.reserved(10)
        && io.repair(r, [paired](auto& rule) {
             if (paired) rule.angleCount = static_cast<std::int8_t>(doubled(rule.angleCount) / 2);
           });
  }

 private:
  // The count is one signed byte, doubled as well: above 63 the double wraps.
  static std::int8_t doubled(std::int8_t count) { return static_cast<std::int8_t>(static_cast<std::uint8_t>(count * 2)); }

  static bool describeEntries(auto& io, auto& r, std::int8_t entryCount) {
    return io.atMost(F(entryCount), 10)
        && io.rows(entryCount, [&](std::size_t i) { return io.fields(F(r.ruleValues[i], r.ruleAngles[i])); });
  }
};

template <>
struct Layout<SizeRule> {
  static constexpr std::size_t kLeast = 22;
  static bool describe(auto& io, auto& r, SizeRuleForm form) {
    return io.when(form == SizeRuleForm::a, F(r.sizeFlagA, r.sizeFlagB, r.sizeValue5, r.sizeValue1, r.sizeValue2,
                                              r.sizeValue3, r.sizeValue4))
        && io.when(form == SizeRuleForm::b, F(r.sizeValue1, r.sizeValue2, r.sizeValue3, r.sizeValue4, r.sizeValue5,
                                              r.sizeValue6));
  }
};

template <>
struct Layout<MaterialRuleLists> {
  static bool describe(auto& io, auto& l) {
    std::int32_t angleRuleCount = io.countOf(l.angleRules);
    return io.fields(F(l.ruleFlag1, l.ruleWord1, l.ruleAngle1, l.ruleFlag2, l.ruleWord2, l.ruleAngle2, angleRuleCount))
        && io.clear(F(l.angleRules))
        && io.appendRun(angleRuleCount, F(l.angleRules), false)
        && io.tail([&] { return io.reserved(10); })
        && io.repair(l, [&](auto& r) {
             if (angleRuleCount == 6) return;
             for (const AngleRule& rule : MaterialRuleLists::defaultAngleRules()) r.angleRules.push_back(rule);
           })
        && io.fields(F(l.ruleFlag3))
        && io.since(155, [&] { return io.countThenClear(F(l.pairRules), true); })
        && io.since(161, [&] {
             return io.countThenClear(F(l.sizeRulesA), SizeRuleForm::a)
                 && io.fields(F(l.ruleFlag4))
                 && io.countThenClear(F(l.sizeRulesB), SizeRuleForm::b);
           });
  }
};

template <>
struct Layout<MaterialHeadRecord> {
  static bool describe(auto& io, auto& h) {
    return io.fields(F(h.headWords, h.headWord11))
        && io.record(F(h.optionA))
        && io.record(F(h.optionB))
        && io.since(92, F(h.headTail1, h.headTail2, h.headTail3));
  }
};

// The body: everything but path, version and params.
template <>
struct Layout<OldMaterial> {
  static bool describe(auto& io, auto& s) {
    constexpr std::int32_t kLongestName = 10000;
    return io.lengthTextOrEmpty(F(s.name), kLongestName)
        && io.countThenClear(F(s.entryList))
        && io.record(F(s.toolSets))
        && io.record(F(s.palette))
        && io.record(F(s.stages))
        && io.record(F(s.rules))
        && io.fields(F(s.modeA, s.modeB))
        && io.repair(s, [](auto& r) { if (r.modeB == 6) r.modeB = 10; })
        && io.fields(F(s.modeC, s.setting1, s.setting2, s.setting3, s.setting4, s.setting5, s.setting6, s.setting7))
        && io.fields(F(s.choice1, s.choice2, s.choice3, s.choice4, s.choice5, s.choice6, s.choice7, s.choice8))
        && io.fields(F(s.setting8, s.setting9))
        && io.repair(s, [](auto& r) {
             for (const auto& [choice, limit] : kChoiceLimits) r.*choice = choiceAfterReading(r.*choice, limit);
           })
        // Too late for what has just been stored: it reaches the next file alone.
        && io.rewrite(s, [](auto& r) {
             for (const auto& [choice, limit] : kChoiceLimits) r.*choice = choiceAfterWriting(r.*choice, limit);
           })
        && io.fields(F(s.setting10, s.setting11, s.setting12, s.settingListCount))
        && io.atMost(F(s.settingListCount), 6)
        && io.rows(s.settingListCount, [&](std::size_t i) { return io.countThenClear(F(s.settingLists[i])); })
        && io.record(F(s.head))
        && io.fields(F(s.setting13))
        && io.tail([&] { return io.reserved(500); })
        && io.since(90, F(s.setting14, s.setting15, s.setting16, s.setting17, s.setting18, s.setting19, s.setting20,
                          s.setting21, s.setting22, s.setting23, s.setting24, s.setting25, s.setting26, s.setting27,
                          s.setting28, s.setting29, s.setting30, s.setting31, s.setting32, s.setting33, s.setting34))
        && io.since(130, F(s.setting35, s.setting36, s.setting37, s.setting38, s.setting39, s.setting40))
        && io.since(141, F(s.setting41))
        && io.since(154, F(s.setting42, s.setting43, s.setting44))
        && io.since(159, F(s.setting45, s.setting46, s.setting47, s.setting48, s.setting49, s.setting50, s.setting51,
                           s.setting52, s.setting53, s.setting54, s.setting55))
        && io.since(161, F(s.setting56, s.setting57, s.setting58, s.setting59, s.setting60, s.setting61, s.setting62,
                           s.setting63, s.setting64, s.setting65, s.setting66, s.setting67, s.setting68, s.setting69,
                           s.setting70, s.setting71, s.setting72, s.setting73, s.setting74, s.setting75, s.setting76,
                           s.setting77, s.setting78, s.setting79, s.setting80, s.setting81, s.setting82, s.setting83,
                           s.setting84, s.setting85, s.setting86, s.setting87, s.setting88, s.setting89, s.setting90,
                           s.setting91, s.setting92, s.setting93, s.setting94, s.setting95, s.setting96, s.setting97,
                           s.setting98, s.setting99, s.setting100, s.setting101, s.setting102, s.setting103,
                           s.setting104, s.setting105))
        && io.since(162, F(s.setting106, s.setting107, s.setting108, s.setting109))
        && io.since(170, F(s.setting110, s.setting111, s.setting112, s.setting113, s.setting114, s.setting115,
                           s.setting116, s.setting117, s.setting118, s.setting119, s.setting120, s.setting121,
                           s.setting122, s.setting123, s.setting124, s.setting125, s.setting126, s.setting127,
                           s.setting128, s.setting163, s.setting164, s.setting165, s.setting166));
  }
};

}  // namespace frame
}  // namespace oldtorvio
