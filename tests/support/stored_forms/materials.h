// Materials and their tables.
#pragma once
#include <array>
#include <bit>
#include <concepts>
#include <string>
#include <vector>

#include "tests/support/stored_forms/programs.h"

namespace testing_support {

// How many of everything.
struct MaterialForm {
  std::string name = "Steel 1.0";
  std::size_t entries = 2, settings = 2, rules = 6, pairs = 2, sizes = 2, programs = 2;
  int sets = 2, colours = 3, groups = 2, lists = 3;
  int angles = 3;
  std::array<std::int32_t, 8> choices{2, 3, 1001, 1003, 0, 1004, 6, 1008};

  // Without any list element, so that every field is at a fixed place.
  static MaterialForm bare() {
    MaterialForm f;
    f.name = "";
    f.entries = f.settings = f.rules = f.pairs = f.sizes = f.programs = 0;
    f.sets = f.colours = f.groups = f.lists = 0;
    return f;
  }
};

inline constexpr std::int32_t OldMaterial::*kMaterialChoices[8] = {
    &OldMaterial::choice1, &OldMaterial::choice2, &OldMaterial::choice3, &OldMaterial::choice4,
    &OldMaterial::choice5, &OldMaterial::choice6, &OldMaterial::choice7, &OldMaterial::choice8};

// Sections of a body that tests change.
enum MaterialSection { kRulesReserved = 101, kModes, kChoices, kSetting9, kReserved };

// A count that its reader presets: what a cut leaves in it is tested apart.
template <class M, class T>
void presetCount(M& m, T& field, int value) {
  if constexpr (M::kChecks)
    m.zeros(sizeof(T));
  else
    m.fixed(field, value);
}

template <class M>
void storedSettings(M& m, std::size_t count, SettingList& l) {
  list(m, l, count, [](auto& n, SettingEntry& e, std::size_t) {
    numbers(n, e.entryWord1, e.entryWord2);
    n.block(e.entryWide);
    n.block(e.entryText);
    n.number(e.entryWord3);
  });
}

template <class M>
void storedSets(M& m, int version, const MaterialForm& f, MaterialToolSetTable& t) {
  numberOr(m, t.toleranceA, 0.001F);
  numberOr(m, t.toleranceB, -0.001F);
  numberOr(m, t.toleranceC, 0.001F);
  numberOr(m, t.toleranceD, -0.001F);
  presetCount(m, t.setCount, f.sets);
  for (int i = 0; i < f.sets; ++i) {
    MaterialToolSet& s = t.sets[i];
    for (auto* w : {&s.setWord1, &s.setWord2, &s.setWord3, &s.setWord4, &s.setWord5, &s.setWord6}) m.number(*w);
    storedSteps(m, version, 2, s.stepsA);
    storedSteps(m, version, 3, s.stepsB);
  }
}

inline constexpr std::uint8_t kRed[20] = {128, 255, 0, 0, 255, 0, 255};
inline constexpr std::uint8_t kGreen[20] = {0, 0, 255, 0, 255, 255, 0};
inline constexpr std::uint8_t kBlue[20] = {0, 0, 0, 255, 0, 255, 255};

template <class M>
void storedPalette(M& m, int version, const MaterialForm& f, MaterialPalette& p) {
  numberOr(m, p.paletteMode, 1);
  presetCount(m, p.colourCount, f.colours);
  for (int i = 0; i < f.colours; ++i) {
    numberOr(m, p.red[i], kRed[i]);
    numberOr(m, p.green[i], kGreen[i]);
    numberOr(m, p.blue[i], kBlue[i]);
  }
  for (int i = f.colours; i < 7; ++i) {
    m.absent(p.red[i], kRed[i]);
    m.absent(p.green[i], kGreen[i]);
    m.absent(p.blue[i], kBlue[i]);
  }
  for (SettingList* l : {&p.listA, &p.listB, &p.listC}) storedSettings(m, f.settings, *l);
  presetCount(m, p.groupCount, f.groups);
  const auto groups = [&](std::initializer_list<SettingGroup*> columns) {
    for (int i = 0; i < f.groups; ++i)
      for (SettingGroup* column : columns) {
        m.number(column[i].groupWord);
        storedSettings(m, f.settings, column[i].groupList);
      }
  };
  groups({p.groupsE, p.groupsF, p.groupsG, p.groupsH});
  if (version >= 130)
    groups({p.groupsA, p.groupsB, p.groupsC, p.groupsD});
  else
    for (SettingGroup* column : {p.groupsA, p.groupsB, p.groupsC, p.groupsD})
      for (int i = 0; i < 5; ++i) {
        m.absent(column[i].groupWord, 0U);
        m.absent(column[i].groupList.size(), std::size_t{0});
      }
}

template <class M>
void storedStages(M& m, int version, MaterialStageTable& t) {
  constexpr std::int32_t kKinds[8] = {5, 3, 5, 3, 1, 1, 0, 0};
  numbers(m, t.stageWord1, t.stageWord2);
  const auto blocks = [&](int from, int to, bool there) {
    for (int i = from; i <= to; ++i) {
      if (there)
        storedMotion(m, version, kKinds[i], t.blocks[i]);
      else
        m.absent(t.blocks[i].motionKind, kKinds[i]);
    }
  };
  blocks(0, 3, true);
  if (version >= 150)
    m.block(t.stageTail);
  else
    for (std::uint8_t one : t.stageTail) m.absent(one, std::uint8_t{0});
  blocks(4, 5, version >= 151);
  blocks(6, 7, version >= 152);
}

template <class M>
void storedRule(M& m, int count, bool paired, AngleRule& r) {
  m.number(r.ruleCode);
  count = countIn(m, r.angleCount, count);
  const int n = paired ? 2 * count : count;
  for (int i = 0; i < n; ++i) {
    numberOr(m, r.ruleValues[i], 0.025F);
    m.number(r.ruleAngles[i]);
  }
  for (int i = n; i < 10; ++i) {
    m.absent(r.ruleValues[i], 0.025F);
    m.absent(r.ruleAngles[i], 0.0F);
  }
  numbers(m, r.sizeLimitX, r.sizeLimitY);
  m.zeros(10);
}

inline void expectDefaultRules(const std::vector<AngleRule>& rules, std::size_t from = 0) {
  struct Default {
    int code;
    std::vector<float> angles;
    float limit;
  };
  const float quarter = 1.5707964F, half = 3.1415927F, threeQuarters = 4.712389F;
  const Default all[6] = {{1, {0}, 20.5F},
                          {5, {quarter, threeQuarters}, 30.5F},
                          {7, {0, 2.6179938F, 3.6651914F}, 50.5F},
                          {16, {quarter, threeQuarters}, 20.5F},
                          {22, {0, quarter, half, threeQuarters}, 30.5F},
                          {23, {quarter, 2.3561945F, half, threeQuarters, 5.497787F, 0}, 60.5F}};
  ASSERT_EQ(rules.size(), from + 6);
  for (const Default& d : all) {
    const AngleRule& r = rules[from++];
    EXPECT_EQ(r.ruleCode, d.code);
    EXPECT_EQ(r.angleCount, 0);
    for (std::size_t i = 0; i < 10; ++i) {
      EXPECT_EQ(r.ruleValues[i], 0.025F);
      EXPECT_EQ(r.ruleAngles[i], i < d.angles.size() ? d.angles[i] : 0.0F) << d.code << " angle " << i;
    }
    EXPECT_EQ(r.sizeLimitX, d.limit);
    EXPECT_EQ(r.sizeLimitY, d.limit);
  }
}

inline void expectDefaultSizes(const MaterialRuleLists& r) {
  const float a[3][5] = {
      {10, 10, 20.5F, 20.5F, 0.025F}, {10, 10, 30.5F, 30.5F, 0.025F}, {10, 10, 60.5F, 60.5F, 0.025F}};
  ASSERT_EQ(r.sizeRulesA.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    const SizeRule& s = r.sizeRulesA[i];
    EXPECT_EQ(s.sizeValue1, std::bit_cast<std::uint32_t>(a[i][0]));
    EXPECT_TRUE(s.sizeValue2 == a[i][1] && s.sizeValue3 == a[i][2] && s.sizeValue4 == a[i][3]) << i;
    EXPECT_TRUE(s.sizeValue5 == a[i][4] && s.sizeFlagA == 0 && s.sizeFlagB == 0) << i;
  }
  const float b[4][6] = {{1, 0.025F, 0, 0, 12, 12},
                         {5, 0.025F, 5.5F, 0, 35, 35},
                         {7, 0.025F, 5.5F, 0, 59, 59},
                         {9, 0.025F, 5.5F, 7.5F, 100, 100}};
  ASSERT_EQ(r.sizeRulesB.size(), 4U);
  for (std::size_t i = 0; i < 4; ++i) {
    const SizeRule& s = r.sizeRulesB[i];
    EXPECT_EQ(s.sizeValue1, static_cast<std::uint32_t>(b[i][0]));  // an integer, not the bits of a float
    EXPECT_TRUE(s.sizeValue2 == b[i][1] && s.sizeValue3 == b[i][2] && s.sizeValue4 == b[i][3]) << i;
    EXPECT_TRUE(s.sizeValue5 == b[i][4] && s.sizeValue6 == b[i][5]) << i;
  }
}

template <class M>
void storedRules(M& m, int version, const MaterialForm& f, MaterialRuleLists& r) {
  numbersOr(m, 1, r.ruleFlag1);
  m.number(r.ruleWord1);
  numberOr(m, r.ruleAngle1, 1.5707964F);
  numbersOr(m, 1, r.ruleFlag2);
  m.number(r.ruleWord2);
  numberOr(m, r.ruleAngle2, 1.5707964F);
  // Any other number of rules is followed by the defaults of a new record in memory.
  if (f.rules == 6 || !M::kChecks)
    list(
        m, r.angleRules, f.rules, [&](auto& n, AngleRule& one, std::size_t) { storedRule(n, f.angles, false, one); },
        6);
  else
    m.stored(0);
  if constexpr (M::kLoads) {
    const std::vector<AngleRule> defaults = MaterialRuleLists().angleRules;
    if (f.rules != 6) r.angleRules.insert(r.angleRules.end(), defaults.begin(), defaults.end());
  }
  m.section(kRulesReserved);
  m.zeros(10);
  numbersOr(m, 1, r.ruleFlag3);
  if (version >= 155) {
    list(
        m, r.pairRules, f.pairs, [&](auto& n, AngleRule& one, std::size_t) { storedRule(n, f.angles, true, one); }, 6);
  } else if constexpr (M::kChecks) {
    expectDefaultRules(r.pairRules);
  }
  if (version >= 161) {
    list(
        m, r.sizeRulesA, f.sizes,
        [](auto& n, SizeRule& s, std::size_t) {
          numbers(n, s.sizeFlagA, s.sizeFlagB, s.sizeValue5, s.sizeValue1, s.sizeValue2, s.sizeValue3, s.sizeValue4);
        },
        3);
    m.number(r.ruleFlag4);
    list(
        m, r.sizeRulesB, f.sizes,
        [](auto& n, SizeRule& s, std::size_t) {
          numbers(n, s.sizeValue1, s.sizeValue2, s.sizeValue3, s.sizeValue4, s.sizeValue5, s.sizeValue6);
        },
        4);
  } else if constexpr (M::kChecks) {
    expectDefaultSizes(r);
    EXPECT_EQ(r.ruleFlag4, 0);
  }
}

template <class M>
void storedHead(M& m, int version, const MaterialForm& f, MaterialHeadRecord& h) {
  for (std::int32_t& w : h.headWords) numberOr(m, w, -1);
  m.number(h.headWord11);
  storedProgram(m, version, f.programs, 1, h.optionA);
  storedProgramEx(m, version, f.programs, h.optionB);
  for (auto* w : {&h.headTail1, &h.headTail2, &h.headTail3}) {
    if (version >= 92)
      m.number(*w);
    else
      m.absent(*w, 0U);
  }
}

template <class M>
void storedEntries(M& m, std::size_t count, std::vector<MaterialEntry>& l) {
  list(m, l, count, [](auto& n, MaterialEntry& e, std::size_t) {
    n.number(e.entryKey);
    n.block(e.entryText);
  });
}

// That the settings have these types is part of what is checked.
template <class T, class M, std::same_as<T>... F>
void numbersOf(M& m, double fresh, F&... fields) {
  (m.number(fields, static_cast<T>(fresh)), ...);
}
// The settings after the reserved bytes.
template <class M>
void storedLateSettings(M& m, int version, OldMaterial& o) {
  since(m, version >= 90, [&](auto& n) {
    numbersOf<std::uint32_t>(n, 0, o.setting14);
    numbersOf<float>(n, 0.02F, o.setting15);
    numbersOf<float>(n, 80.0F, o.setting16, o.setting17);
    numbersOf<float>(n, 12.0F, o.setting18, o.setting19);
    numbersOf<std::uint32_t>(n, 0, o.setting20, o.setting21, o.setting22, o.setting23, o.setting24, o.setting25,
                             o.setting26, o.setting27, o.setting28, o.setting29, o.setting30, o.setting31, o.setting32,
                             o.setting33, o.setting34);
  });
  since(m, version >= 130, [&](auto& n) {
    numbersOf<float>(n, 0.02F, o.setting35);
    numbersOf<float>(n, 80.0F, o.setting36);
    numbersOf<float>(n, 12.0F, o.setting37);
    numbersOf<float>(n, 80.0F, o.setting38);
    numbersOf<float>(n, 12.0F, o.setting39);
    numbersOf<std::uint32_t>(n, 0, o.setting40);
  });
  since(m, version >= 141, [&](auto& n) { numbersOf<std::uint32_t>(n, 0, o.setting41); });
  since(m, version >= 154, [&](auto& n) {
    numbersOf<std::uint8_t>(n, 0, o.setting42);
    numbersOf<float>(n, 0.5F, o.setting43);
    numbersOf<std::uint32_t>(n, 0, o.setting44);
  });
  since(m, version >= 159, [&](auto& n) {
    numbersOf<std::uint32_t>(n, 0, o.setting45, o.setting46);
    numbersOf<float>(n, 1.5F, o.setting47, o.setting48);
    numbersOf<std::uint32_t>(n, 0, o.setting49);
    numbersOf<std::int32_t>(n, 1, o.setting50, o.setting51);
    numbersOf<float>(n, -0.125F, o.setting52);
    numbersOf<float>(n, 0.048F, o.setting53);
    numbersOf<std::uint8_t>(n, 0, o.setting54);
    numbersOf<std::uint32_t>(n, 0, o.setting55);
  });
  since(m, version >= 161, [&](auto& n) {
    numbersOf<std::uint8_t>(n, 1, o.setting56, o.setting57);
    numbersOf<float>(n, 1.5F, o.setting58, o.setting59);
    numbersOf<float>(n, 0.5F, o.setting60, o.setting61);
    numbersOf<float>(n, 20.0F, o.setting62, o.setting63, o.setting64, o.setting65, o.setting66, o.setting67);
    numbersOf<std::uint8_t>(n, 0, o.setting68, o.setting69, o.setting70, o.setting71, o.setting72, o.setting73);
    numbersOf<std::uint32_t>(n, 0, o.setting74, o.setting75, o.setting76, o.setting77, o.setting78, o.setting79);
    numbersOf<float>(n, 0.85F, o.setting80);
    numbersOf<float>(n, 0.5F, o.setting81);
    numbersOf<float>(n, 0.25F, o.setting82);
    numbersOf<float>(n, 0.5F, o.setting83);
    numbersOf<float>(n, 0.02F, o.setting84);
    numbersOf<float>(n, 0.125F, o.setting85);
    numbersOf<std::uint8_t>(n, 1, o.setting86, o.setting87, o.setting88, o.setting89, o.setting90, o.setting91,
                            o.setting92, o.setting93, o.setting94, o.setting95, o.setting96, o.setting97, o.setting98);
    numbersOf<std::uint8_t>(n, 0, o.setting99);
    numbersOf<std::uint8_t>(n, 1, o.setting100);
    numbersOf<std::uint8_t>(n, 0, o.setting101);
    numbersOf<float>(n, 0.5F, o.setting102, o.setting103, o.setting104);
    numbersOf<float>(n, 0.85F, o.setting105);
  });
  since(m, version >= 162, [&](auto& n) {
    numbersOf<std::uint8_t>(n, 1, o.setting106, o.setting107);
    numbersOf<float>(n, 1.5F, o.setting108, o.setting109);
  });
  since(m, version >= 170, [&](auto& n) {
    numbersOf<std::uint32_t>(n, 0, o.setting110);
    numbersOf<float>(n, 0.75F, o.setting111);
    numbersOf<float>(n, 3.0F, o.setting112);
    numbersOf<std::uint32_t>(n, 0, o.setting113);
    numbersOf<std::int32_t>(n, 1, o.setting114, o.setting115);
    numbersOf<float>(n, 1.5F, o.setting116);
    numbersOf<float>(n, 20.0F, o.setting117);
    numbersOf<std::uint32_t>(n, 0, o.setting118);
    numbersOf<float>(n, 20.0F, o.setting119);
    numbersOf<std::uint8_t>(n, 0, o.setting120, o.setting121, o.setting122, o.setting123, o.setting124, o.setting125,
                            o.setting126, o.setting127, o.setting128);
    numbersOf<float>(n, 0.01F, o.setting163);
    numbersOf<float>(n, 1.5F, o.setting164);
    numbersOf<std::uint32_t>(n, 0, o.setting165, o.setting166);
  });
}

template <class M>
void storedMaterial(M& m, int version, const MaterialForm& f, OldMaterial& o) {
  m.text(o.name, f.name);
  storedEntries(m, f.entries, o.entryList);
  storedSets(m, version, f, o.toolSets);
  storedPalette(m, version, f, o.palette);
  storedStages(m, version, o.stages);
  storedRules(m, version, f, o.rules);
  m.section(kModes);
  numbers(m, o.modeA, o.modeB, o.modeC);
  numbersOf<std::uint32_t>(m, 0, o.setting1, o.setting2, o.setting3, o.setting4, o.setting5, o.setting6, o.setting7);
  m.section(kChoices);
  for (std::size_t i = 0; i < 8; ++i) m.fixed(o.*kMaterialChoices[i], f.choices[i], 1);
  numbersOf<std::uint32_t>(m, 0, o.setting8);
  m.section(kSetting9);
  numbersOf<std::uint32_t>(m, 0, o.setting9);
  numbersOf<std::int32_t>(m, 1, o.setting10, o.setting11);
  numbersOf<std::uint32_t>(m, 0, o.setting12);
  const int lists = countIn(m, o.settingListCount, f.lists, std::int16_t{6});
  for (int i = 0; i < lists; ++i) storedSettings(m, f.settings, o.settingLists[i]);
  storedHead(m, version, f, o.head);
  m.number(o.setting13);
  m.section(kReserved);
  m.zeros(500);
  storedLateSettings(m, version, o);
}

}  // namespace testing_support
