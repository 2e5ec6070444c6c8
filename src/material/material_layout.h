// Stored form of a material: its tables and its body.
#pragma once
#include "OldTorvIO/material.h"
#include "src/frame/codec/describe.h"
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
// What a value outside both banks becomes in a load. Values between the banks are kept.
inline std::int32_t choiceAfterReading(std::int32_t value, std::int32_t limit) {
  if (value >= 0 && value < 1001 + limit) return value;
  return value < 1000 ? 1 : 1001;
}
inline std::int32_t choiceAfterWriting(std::int32_t value, std::int32_t limit) {
  return value > 1000 + limit ? 1000 + value % 10 : value;
}

namespace codec {

template <>
struct Layout<SettingEntry> {
  static constexpr std::size_t kMinStoredSize = 41;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& e) {
    return io.fields(FIELDS(e.entryWord1, e.entryWord2, e.entryWide, e.entryText, e.entryWord3));
  }
};

template <>
struct Layout<SettingGroup> {
  static bool describe(auto& io, auto& g) {
    // A file may end before a group: that group and all after it are then left out.
    return io.optionalTail(FIELDS(g.groupWord)) && io.list(FIELDS(g.groupList), kReplaced);
  }
};

template <>
struct Layout<MaterialToolSet> {
  static bool describe(auto& io, auto& s) {
    return io.fields(FIELDS(s.setWord1, s.setWord2, s.setWord3, s.setWord4, s.setWord5, s.setWord6))
        && io.record(FIELDS(s.stepsA))
        && io.record(FIELDS(s.stepsB));
  }
};

template <>
struct Layout<MaterialToolSetTable> {
  static bool describe(auto& io, auto& t) {
    return io.fields(FIELDS(t.toleranceA, t.toleranceB, t.toleranceC, t.toleranceD))
        && io.afterRead(t, "a file that ends here leaves setCount 6", [](auto& r) { r.setCount = 6; })
        && io.fields(FIELDS(t.setCount))
        && io.require(atMost(FIELDS(t.setCount), 6))
        && io.rows(t.setCount, [&](std::size_t i) { return io.record(FIELDS(t.sets[i])); });
  }
};

template <>
struct Layout<MaterialPalette> {
  static bool describe(auto& io, auto& p) {
    return io.fields(FIELDS(p.paletteMode))
        && io.afterRead(p, "a file that ends here leaves colourCount 20", [](auto& r) { r.colourCount = 20; })
        && io.fields(FIELDS(p.colourCount))
        && io.require(atMost(FIELDS(p.colourCount), 20))
        && io.rows(p.colourCount, [&](std::size_t i) { return io.fields(FIELDS(p.red[i], p.green[i], p.blue[i])); })
        && io.list(FIELDS(p.listA), kReplaced)
        && io.list(FIELDS(p.listB), kReplaced)
        && io.list(FIELDS(p.listC), kReplaced)
        && io.afterRead(p, "a file that ends here leaves groupCount 5", [](auto& r) { r.groupCount = 5; })
        && io.fields(FIELDS(p.groupCount))
        && io.require(atMost(FIELDS(p.groupCount), 5))
        && io.rows(p.groupCount, [&](std::size_t i) {
             return io.record(FIELDS(p.groupsE[i])) && io.record(FIELDS(p.groupsF[i]))
                 && io.record(FIELDS(p.groupsG[i])) && io.record(FIELDS(p.groupsH[i]));
           })
        && io.since(130, [&] {
             return io.rows(p.groupCount, [&](std::size_t i) {
               return io.record(FIELDS(p.groupsA[i])) && io.record(FIELDS(p.groupsB[i]))
                   && io.record(FIELDS(p.groupsC[i])) && io.record(FIELDS(p.groupsD[i]));
             });
           });
  }
};

template <>
struct Layout<MaterialStageTable> {
  static bool describe(auto& io, auto& t) {
    const auto block = [&](std::size_t i) { return io.record(FIELDS(t.blocks[i])); };
    return io.fields(FIELDS(t.stageWord1, t.stageWord2))
        && io.rows(4, block)
        && io.since(150, FIELDS(t.stageTail))
        && io.since(151, [&] { return io.record(FIELDS(t.blocks[4])) && io.record(FIELDS(t.blocks[5])); })
        && io.since(152, [&] { return io.record(FIELDS(t.blocks[6])) && io.record(FIELDS(t.blocks[7])); });
  }
};

template <>
struct Layout<MaterialEntry> {
  static constexpr std::size_t kMinStoredSize = 260;
  static bool describe(auto& io, auto& e) { return io.fields(FIELDS(e.entryKey, e.entryText)); }
};

template <>
struct Layout<AngleRule> {
  static constexpr std::size_t kMinStoredSize = 20;
  static bool describe(auto& io, auto& r, bool paired) {
    return io.fields(FIELDS(r.ruleCode, r.angleCount))
        && describeEntries(io, r, paired ? doubled(r.angleCount) : r.angleCount)
        && io.fields(FIELDS(r.sizeLimitX, r.sizeLimitY))
        && io.reserved(10)
        && io.when(custom("in pairRules", paired), [&] {
             return io.afterRead(r, "angleCount becomes half of the count that was walked", [](auto& rule) {
             rule.angleCount = static_cast<std::int8_t>(doubled(rule.angleCount) / 2);
             });
           });
  }

 private:
  // The count is one signed byte, doubled as well: above 63 the double wraps.
  static std::int8_t doubled(std::int8_t count) { return static_cast<std::int8_t>(static_cast<std::uint8_t>(count * 2)); }

  static bool describeEntries(auto& io, auto& r, std::int8_t entryCount) {
    return io.require(atMost(FIELDS(entryCount), 10))
        && io.rows(computed("of entryCount", entryCount), [&](std::size_t i) { return io.fields(FIELDS(r.ruleValues[i], r.ruleAngles[i])); });
  }
};

template <>
struct Layout<SizeRule> {
  static constexpr std::size_t kMinStoredSize = 22;
  static bool describe(auto& io, auto& r, SizeRuleForm form) {
    return io.when(chosen(form == SizeRuleForm::a), FIELDS(r.sizeFlagA, r.sizeFlagB, r.sizeValue5, r.sizeValue1,
                                                           r.sizeValue2, r.sizeValue3, r.sizeValue4))
        && io.when(chosen(form == SizeRuleForm::b), FIELDS(r.sizeValue1, r.sizeValue2, r.sizeValue3, r.sizeValue4,
                                                           r.sizeValue5, r.sizeValue6));
  }
};

template <>
struct Layout<MaterialRuleLists> {
  static bool describe(auto& io, auto& l) {
    std::int32_t angleRuleCount = io.countOf(l.angleRules);
    return io.fields(FIELDS(l.ruleFlag1, l.ruleWord1, l.ruleAngle1, l.ruleFlag2, l.ruleWord2, l.ruleAngle2,
                            angleRuleCount))
        && io.clear(FIELDS(l.angleRules))
        && io.list(FIELDS(l.angleRules), appended(angleRuleCount), false)
        && io.optionalTail([&] { return io.reserved(10); })
        && io.afterRead(l, "unless there are 6 angleRules, the 6 default rules are added", [&](auto& r) {
             if (angleRuleCount == 6) return;
             for (const AngleRule& rule : MaterialRuleLists::defaultAngleRules()) r.angleRules.push_back(rule);
           })
        && io.fields(FIELDS(l.ruleFlag3))
        && io.since(155, [&] { return io.list(FIELDS(l.pairRules), kReplaced, true); })
        && io.since(161, [&] {
             return io.list(FIELDS(l.sizeRulesA), kReplaced, SizeRuleForm::a)
                 && io.fields(FIELDS(l.ruleFlag4))
                 && io.list(FIELDS(l.sizeRulesB), kReplaced, SizeRuleForm::b);
           });
  }
};

template <>
struct Layout<MaterialHeadRecord> {
  static bool describe(auto& io, auto& h) {
    return io.fields(FIELDS(h.headWords, h.headWord11))
        && io.record(FIELDS(h.optionA))
        && io.record(FIELDS(h.optionB))
        && io.since(92, FIELDS(h.headTail1, h.headTail2, h.headTail3));
  }
};

// The body: everything but path, version and params.
template <>
struct Layout<OldMaterial> {
  static bool describe(auto& io, auto& s) {
    constexpr std::int32_t kLongestName = 10000;
    return io.lengthText(FIELDS(s.name), kLongestName)
        && io.list(FIELDS(s.entryList), kReplaced)
        && io.record(FIELDS(s.toolSets))
        && io.record(FIELDS(s.palette))
        && io.record(FIELDS(s.stages))
        && io.record(FIELDS(s.rules))
        && io.fields(FIELDS(s.modeA, s.modeB))
        && io.afterRead(s, "modeB 6 becomes 10", [](auto& r) { if (r.modeB == 6) r.modeB = 10; })
        && io.fields(FIELDS(s.modeC, s.setting1, s.setting2, s.setting3, s.setting4, s.setting5, s.setting6,
                            s.setting7))
        && io.fields(FIELDS(s.choice1, s.choice2, s.choice3, s.choice4, s.choice5, s.choice6, s.choice7, s.choice8))
        && io.fields(FIELDS(s.setting8, s.setting9))
        && io.afterRead(s, "a choice below 0 becomes 1, one above its high bank 1001", [](auto& r) {
             for (const auto& [choice, limit] : kChoiceLimits) r.*choice = choiceAfterReading(r.*choice, limit);
           })
        // Too late for what has just been stored: only the next save stores it.
        && io.beforeWrite(s, "a choice above its high bank becomes 1000 plus its last digit", [](auto& r) {
             for (const auto& [choice, limit] : kChoiceLimits) r.*choice = choiceAfterWriting(r.*choice, limit);
           })
        && io.fields(FIELDS(s.setting10, s.setting11, s.setting12, s.settingListCount))
        && io.require(atMost(FIELDS(s.settingListCount), 6))
        && io.rows(s.settingListCount, [&](std::size_t i) { return io.list(FIELDS(s.settingLists[i]), kReplaced); })
        && io.record(FIELDS(s.head))
        && io.fields(FIELDS(s.setting13))
        && io.optionalTail([&] { return io.reserved(500); })
        && io.since(90, FIELDS(s.setting14, s.setting15, s.setting16, s.setting17, s.setting18, s.setting19,
                               s.setting20, s.setting21, s.setting22, s.setting23, s.setting24, s.setting25,
                               s.setting26, s.setting27, s.setting28, s.setting29, s.setting30, s.setting31,
                               s.setting32, s.setting33, s.setting34))
        && io.since(130, FIELDS(s.setting35, s.setting36, s.setting37, s.setting38, s.setting39, s.setting40))
        && io.since(141, FIELDS(s.setting41))
        && io.since(154, FIELDS(s.setting42, s.setting43, s.setting44))
        && io.since(159, FIELDS(s.setting45, s.setting46, s.setting47, s.setting48, s.setting49, s.setting50,
                                s.setting51, s.setting52, s.setting53, s.setting54, s.setting55))
        && io.since(161, FIELDS(s.setting56, s.setting57, s.setting58, s.setting59, s.setting60, s.setting61,
                                s.setting62, s.setting63, s.setting64, s.setting65, s.setting66, s.setting67,
                                s.setting68, s.setting69, s.setting70, s.setting71, s.setting72, s.setting73,
                                s.setting74, s.setting75, s.setting76, s.setting77, s.setting78, s.setting79,
                                s.setting80, s.setting81, s.setting82, s.setting83, s.setting84, s.setting85,
                                s.setting86, s.setting87, s.setting88, s.setting89, s.setting90, s.setting91,
                                s.setting92, s.setting93, s.setting94, s.setting95, s.setting96, s.setting97,
                                s.setting98, s.setting99, s.setting100, s.setting101, s.setting102, s.setting103,
                                s.setting104, s.setting105))
        && io.since(162, FIELDS(s.setting106, s.setting107, s.setting108, s.setting109))
        && io.since(170, FIELDS(s.setting110, s.setting111, s.setting112, s.setting113, s.setting114, s.setting115,
                                s.setting116, s.setting117, s.setting118, s.setting119, s.setting120, s.setting121,
                                s.setting122, s.setting123, s.setting124, s.setting125, s.setting126, s.setting127,
                                s.setting128, s.setting163, s.setting164, s.setting165, s.setting166));
  }
};

}  // namespace codec
}  // namespace oldtorvio
