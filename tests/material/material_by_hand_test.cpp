// Materials against stored forms typed row by row: their tables, rules, programs, body and files.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/records/record_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using Mat = OldMaterial;
#define S(n) &Mat::setting##n

// ---- the scalar settings -------------------------------------------------------------------------

using Field = std::variant<std::uint32_t Mat::*, std::int32_t Mat::*, float Mat::*, std::uint8_t Mat::*>;
struct Row {
  int from;
  Field field;
  double fresh;
};
// The four kinds of cell. That the members have these types is part of what is checked.
using Rows = std::vector<Row>;
template <class T>
void cells(Rows& rows, int from, double fresh, std::initializer_list<T Mat::*> members) {
  for (T Mat::*one : members) rows.push_back({from, one, fresh});
}

const Rows& rowsBeforeChoices() {
  static const Rows all = [] {
    Rows r;
    cells<std::uint32_t>(r, 0, 0, {S(1), S(2), S(3), S(4), S(5), S(6), S(7)});
    return r;
  }();
  return all;
}
const Rows& rowsBehindChoices() {
  static const Rows all = [] {
    Rows r;
    cells<std::uint32_t>(r, 0, 0, {S(8), S(9)});
    cells<std::int32_t>(r, 0, 1, {S(10), S(11)});
    cells<std::uint32_t>(r, 0, 0, {S(12)});
    return r;
  }();
  return all;
}
const Rows& lateRows() {
  static const Rows all = [] {
    Rows r;
    using u32 = std::uint32_t;
    using i32 = std::int32_t;
    using u8 = std::uint8_t;
    cells<u32>(r, 90, 0, {S(14)});
    cells<float>(r, 90, 0.02F, {S(15)});
    cells<float>(r, 90, 80.0F, {S(16), S(17)});
    cells<float>(r, 90, 12.0F, {S(18), S(19)});
    cells<u32>(
        r, 90, 0,
        {S(20), S(21), S(22), S(23), S(24), S(25), S(26), S(27), S(28), S(29), S(30), S(31), S(32), S(33), S(34)});
    cells<float>(r, 130, 0.02F, {S(35)});
    cells<float>(r, 130, 80.0F, {S(36)});
    cells<float>(r, 130, 12.0F, {S(37)});
    cells<float>(r, 130, 80.0F, {S(38)});
    cells<float>(r, 130, 12.0F, {S(39)});
    cells<u32>(r, 130, 0, {S(40)});
    cells<u32>(r, 141, 0, {S(41)});
    cells<u8>(r, 154, 0, {S(42)});
    cells<float>(r, 154, 0.5F, {S(43)});
    cells<u32>(r, 154, 0, {S(44)});
    cells<u32>(r, 159, 0, {S(45), S(46)});
    cells<float>(r, 159, 1.5F, {S(47), S(48)});
    cells<u32>(r, 159, 0, {S(49)});
    cells<i32>(r, 159, 1, {S(50), S(51)});
    cells<float>(r, 159, -0.125F, {S(52)});
    cells<float>(r, 159, 0.048F, {S(53)});
    cells<u8>(r, 159, 0, {S(54)});
    cells<u32>(r, 159, 0, {S(55)});
    cells<u8>(r, 161, 1, {S(56), S(57)});
    cells<float>(r, 161, 1.5F, {S(58), S(59)});
    cells<float>(r, 161, 0.5F, {S(60), S(61)});
    cells<float>(r, 161, 20.0F, {S(62), S(63), S(64), S(65), S(66), S(67)});
    cells<u8>(r, 161, 0, {S(68), S(69), S(70), S(71), S(72), S(73)});
    cells<u32>(r, 161, 0, {S(74), S(75), S(76), S(77), S(78), S(79)});
    cells<float>(r, 161, 0.85F, {S(80)});
    cells<float>(r, 161, 0.5F, {S(81)});
    cells<float>(r, 161, 0.25F, {S(82)});
    cells<float>(r, 161, 0.5F, {S(83)});
    cells<float>(r, 161, 0.02F, {S(84)});
    cells<float>(r, 161, 0.125F, {S(85)});
    cells<u8>(r, 161, 1, {S(86), S(87), S(88), S(89), S(90), S(91), S(92), S(93), S(94), S(95), S(96), S(97), S(98)});
    cells<u8>(r, 161, 0, {S(99)});
    cells<u8>(r, 161, 1, {S(100)});
    cells<u8>(r, 161, 0, {S(101)});
    cells<float>(r, 161, 0.5F, {S(102), S(103), S(104)});
    cells<float>(r, 161, 0.85F, {S(105)});
    cells<u8>(r, 162, 1, {S(106), S(107)});
    cells<float>(r, 162, 1.5F, {S(108), S(109)});
    cells<u32>(r, 170, 0, {S(110)});
    cells<float>(r, 170, 0.75F, {S(111)});
    cells<float>(r, 170, 3.0F, {S(112)});
    cells<u32>(r, 170, 0, {S(113)});
    cells<i32>(r, 170, 1, {S(114), S(115)});
    cells<float>(r, 170, 1.5F, {S(116)});
    cells<float>(r, 170, 20.0F, {S(117)});
    cells<u32>(r, 170, 0, {S(118)});
    cells<float>(r, 170, 20.0F, {S(119)});
    cells<u8>(r, 170, 0, {S(120), S(121), S(122), S(123), S(124), S(125), S(126), S(127), S(128)});
    cells<float>(r, 170, 0.01F, {S(163)});
    cells<float>(r, 170, 1.5F, {S(164)});
    cells<u32>(r, 170, 0, {S(165), S(166)});
    return r;
  }();
  return all;
}

#undef S

constexpr std::int32_t Mat::*kChoices[8] = {&Mat::choice1, &Mat::choice2, &Mat::choice3, &Mat::choice4,
                                            &Mat::choice5, &Mat::choice6, &Mat::choice7, &Mat::choice8};
constexpr std::int32_t kLimits[8] = {4, 8, 4, 6, 8, 4, 6, 8};
constexpr std::int32_t kKinds[8] = {5, 3, 5, 3, 1, 1, 0, 0};

// ---- stored forms --------------------------------------------------------------------------------

// How many of everything; `marks` receives places in the stored bytes.
struct Form {
  std::string name = "Steel 1.0";
  std::size_t entries = 2, settings = 2, rules = 6, pairs = 2, sizes = 2, programs = 2;
  int sets = 2, colours = 3, groups = 2, lists = 3;
  int angles = 3;
  std::array<std::int32_t, 8> choices{2, 3, 1001, 1003, 0, 1004, 6, 1008};
};
// Without any list element, so that every field stands at a fixed place.
Form bare() {
  Form f;
  f.name = "";
  f.entries = f.settings = f.rules = f.pairs = f.sizes = f.programs = 0;
  f.sets = f.colours = f.groups = f.lists = 0;
  return f;
}
struct Marks {
  std::size_t rulesReserved = 0, setting9 = 0, reserved = 0, modeA = 0, choices = 0;
};
template <class M>
void mark(M& m, std::size_t* place) {
  if constexpr (M::kMakes) {
    if (place != nullptr) *place = m.bytes.size();
  }
}
// A count that its reader presets: what a cut leaves in it is tested apart.
template <class M, class T>
void presetCount(M& m, T& field, int value) {
  if constexpr (M::kMakes)
    m.fixed(field, value);
  else
    m.zeros(sizeof(T));
}

template <class M>
void storedSettings(M& m, std::size_t count, SettingList& list) {
  m.size(list, count);
  for (SettingEntry& e : list) {
    m.number(e.entryWord1);
    m.number(e.entryWord2);
    m.block(e.entryWide);
    m.block(e.entryText);
    m.number(e.entryWord3);
  }
}
template <class M>
void storedSets(M& m, int version, const Form& f, MaterialToolSetTable& t) {
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
constexpr std::uint8_t kRed[20] = {128, 255, 0, 0, 255, 0, 255};
constexpr std::uint8_t kGreen[20] = {0, 0, 255, 0, 255, 255, 0};
constexpr std::uint8_t kBlue[20] = {0, 0, 0, 255, 0, 255, 255};
template <class M>
void storedPalette(M& m, int version, const Form& f, MaterialPalette& p) {
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
  m.number(t.stageWord1);
  m.number(t.stageWord2);
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
  m.fixed(r.angleCount, count);
  const int n = paired ? 2 * count : count;
  for (int i = 0; i < n; ++i) {
    numberOr(m, r.ruleValues[i], 0.025F);
    m.number(r.ruleAngles[i]);
  }
  for (int i = n; i < 10; ++i) {
    m.absent(r.ruleValues[i], 0.025F);
    m.absent(r.ruleAngles[i], 0.0F);
  }
  m.number(r.sizeLimitX);
  m.number(r.sizeLimitY);
  m.zeros(10);
}

void expectDefaultRules(const std::vector<AngleRule>& rules, std::size_t from = 0) {
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
void expectDefaultSizes(const MaterialRuleLists& r) {
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
    EXPECT_EQ(s.sizeValue1, static_cast<std::uint32_t>(b[i][0]));  // a whole number, not a float's bits
    EXPECT_TRUE(s.sizeValue2 == b[i][1] && s.sizeValue3 == b[i][2] && s.sizeValue4 == b[i][3]) << i;
    EXPECT_TRUE(s.sizeValue5 == b[i][4] && s.sizeValue6 == b[i][5]) << i;
  }
}

template <class M>
void storedRules(M& m, int version, const Form& f, MaterialRuleLists& r, Marks* marks = nullptr) {
  numberOr(m, r.ruleFlag1, std::uint8_t{1});
  m.number(r.ruleWord1);
  numberOr(m, r.ruleAngle1, 1.5707964F);
  numberOr(m, r.ruleFlag2, std::uint8_t{1});
  m.number(r.ruleWord2);
  numberOr(m, r.ruleAngle2, 1.5707964F);
  if (f.rules == 6 || M::kMakes) {
    m.size(r.angleRules, f.rules);
    for (AngleRule& one : r.angleRules) storedRule(m, f.angles, false, one);
  } else {
    m.stored(0);  // the defaults come behind these, see the tests of the rules
  }
  mark(m, marks == nullptr ? nullptr : &marks->rulesReserved);
  m.zeros(10);
  numberOr(m, r.ruleFlag3, std::uint8_t{1});
  if (version >= 155) {
    m.size(r.pairRules, f.pairs);
    for (AngleRule& one : r.pairRules) storedRule(m, f.angles, true, one);
  } else if constexpr (!M::kMakes) {
    expectDefaultRules(r.pairRules);
  }
  if (version >= 161) {
    m.size(r.sizeRulesA, f.sizes);
    for (SizeRule& s : r.sizeRulesA) {
      m.number(s.sizeFlagA);
      m.number(s.sizeFlagB);
      m.number(s.sizeValue5);
      m.number(s.sizeValue1);
      m.number(s.sizeValue2);
      m.number(s.sizeValue3);
      m.number(s.sizeValue4);
    }
    m.number(r.ruleFlag4);
    m.size(r.sizeRulesB, f.sizes);
    for (SizeRule& s : r.sizeRulesB) {
      m.number(s.sizeValue1);
      for (float* v : {&s.sizeValue2, &s.sizeValue3, &s.sizeValue4, &s.sizeValue5, &s.sizeValue6}) m.number(*v);
    }
  } else if constexpr (!M::kMakes) {
    expectDefaultSizes(r);
    EXPECT_EQ(r.ruleFlag4, 0);
  }
}

template <class M>
void storedProgram(M& m, int version, std::size_t groups, std::int32_t freshWord3, ShapeProgram& p) {
  numberOr(m, p.programWord1, 1);
  numberOr(m, p.programWord2, 1);
  numberOr(m, p.programWord3, freshWord3);
  m.number(p.programWord4);
  numberOr(m, p.programWord5, 1);
  m.number(p.programWord6);
  numberOr(m, p.programValue1, 0.008F);
  numberOr(m, p.programValue2, 0.5F);
  numberOr(m, p.programValue3, 0.25F);
  numberOr(m, p.programValue4, 1.0F);
  m.size(p.programGroups, groups);
  for (ShapeProgramGroup& g : p.programGroups) {
    storedShapeList(m, version, someShapes(), g.groupShapes);
    m.size(g.groupQuads, 2);
    for (GroupQuad& q : g.groupQuads) each(m, q.quadWords);
    m.size(g.groupSteps, 3);
    for (StepTable& s : g.groupSteps) storedSteps(m, version, 2, s);
    m.size(g.groupSlots, 2);
    for (ProcessSlot& s : g.groupSlots) storedSlot(m, version, s);
  }
  if (version >= 158)
    m.number(p.programWord7);
  else
    m.absent(p.programWord7, 0U);
}
template <class M>
void storedProgramEx(M& m, int version, std::size_t groups, ShapeProgramEx& p) {
  storedProgram(m, version, groups, 0, p);
  m.number(p.extFlag1);
  numberOr(m, p.extValue1, 0.5F);
  numberOr(m, p.extValue2, 1.0F);
  numberOr(m, p.extFlag2, std::uint8_t{1});
  numberOr(m, p.extValue3, 1.5F);
  numberOr(m, p.extFlag3, std::uint8_t{1});
}
template <class M>
void storedHead(M& m, int version, const Form& f, MaterialHeadRecord& h) {
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
void storedEntries(M& m, std::size_t count, std::vector<MaterialEntry>& list) {
  m.size(list, count);
  for (MaterialEntry& e : list) {
    m.number(e.entryKey);
    m.block(e.entryText);
  }
}
template <class M>
void storedRows(M& m, int version, const Rows& rows, OldMaterial& o) {
  for (const Row& row : rows)
    std::visit(
        [&](auto member) {
          using T = std::remove_reference_t<decltype(o.*member)>;
          if (version >= row.from)
            numberOr(m, o.*member, static_cast<T>(row.fresh));
          else
            m.absent(o.*member, static_cast<T>(row.fresh));
        },
        row.field);
}
template <class M>
void storedBody(M& m, int version, const Form& f, OldMaterial& o, Marks* marks = nullptr) {
  m.text(o.name, f.name);
  storedEntries(m, f.entries, o.entryList);
  storedSets(m, version, f, o.toolSets);
  storedPalette(m, version, f, o.palette);
  storedStages(m, version, o.stages);
  storedRules(m, version, f, o.rules, marks);
  mark(m, marks == nullptr ? nullptr : &marks->modeA);
  m.number(o.modeA);
  m.number(o.modeB);
  m.number(o.modeC);
  storedRows(m, version, rowsBeforeChoices(), o);
  mark(m, marks == nullptr ? nullptr : &marks->choices);
  for (std::size_t i = 0; i < 8; ++i) fixedOr(m, o.*kChoices[i], f.choices[i], 1);
  mark(m, marks == nullptr ? nullptr : &marks->setting9);
  if (marks != nullptr) marks->setting9 += 4;
  storedRows(m, version, rowsBehindChoices(), o);
  fixedOr(m, o.settingListCount, f.lists, std::int16_t{6});
  for (int i = 0; i < f.lists; ++i) storedSettings(m, f.settings, o.settingLists[i]);
  storedHead(m, version, f, o.head);
  m.number(o.setting13);
  mark(m, marks == nullptr ? nullptr : &marks->reserved);
  m.zeros(500);
  storedRows(m, version, lateRows(), o);
}

std::unique_ptr<OldMaterial> fresh() { return std::make_unique<OldMaterial>(); }
Bytes madeBody(int version, const Form& f, Marks* marks = nullptr) {
  auto o = fresh();
  Maker m;
  storedBody(m, version, f, *o, marks);
  return m.bytes;
}
int readBody(const Bytes& b, int version, OldMaterial& o, std::size_t* used = nullptr) {
  return readFrom(
      b, [&](InStream& s) { return ReadOldMaterialBody(s, version, o); }, used);
}
Bytes patched(Bytes b, std::size_t at, const Bytes& with) {
  Bytes all = b.cut(at).add(with);
  const auto rest = b.span().subspan(at + with.size());
  return all.add(Bytes::of(rest));
}
constexpr std::int64_t kHuge = 2000000000;

// ---- tables --------------------------------------------------------------------------------------

// Through a checker that takes every field as cut off, which leaves the defaults to compare with.
TEST(MaterialTablesByHand, AFreshRecordHoldsItsDefaults) {
  auto o = fresh();
  Checker none(0);
  storedBody(none, 180, bare(), *o);
  auto p = fresh();
  expectDefaultRules(p->rules.angleRules);
  expectDefaultRules(p->rules.pairRules);
  expectDefaultSizes(p->rules);
  expectDefaultRules(MaterialRuleLists::defaultAngleRules());
  EXPECT_EQ(p->toolSets.setCount, 0);
  EXPECT_TRUE(p->palette.colourCount == 0 && p->palette.groupCount == 0 && p->settingListCount == 6);
  EXPECT_TRUE(p->version == 0 && p->path[0] == 0 && p->rules.ruleFlag4 == 0 && p->head.optionA.programWord3 == 1 &&
              p->head.optionB.programWord3 == 0);
  for (int v : {52, 180}) {
    Bytes sets;
    sets.f32(0.001F).f32(-0.001F).f32(0.001F).f32(-0.001F).i32(0);
    EXPECT_EQ(written([&](OutStream& s) { return WriteMaterialToolSetTable(s, v, p->toolSets); }), sets);
    EXPECT_EQ(written([&](OutStream& s) { return WriteMaterialPalette(s, v, p->palette); }),
              Bytes().i32(1).i16(0).i32(0).i32(0).i32(0).i16(0));
  }
}

TEST(MaterialTablesByHand, ASettingEntryTakes41BytesAndOneCutInTwoIsDropped) {
  SettingList made;
  Maker m;
  storedSettings(m, 3, made);
  ASSERT_EQ(m.bytes.size(), 4U + 3U * 41U);
  for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
    SettingList got(5);
    EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadSettingList(s, 90, got); }), 1) << cut;
    EXPECT_EQ(got.size(), cut < 4 ? 5U : (cut - 4) / 41) << cut;  // emptied behind a count that could be read
  }
  for (std::int64_t count : {0, -1, -2147483647}) {
    SettingList got(5);
    EXPECT_EQ(readFrom(Bytes().i32(count), [&](InStream& s) { return ReadSettingList(s, 90, got); }), 0);
    EXPECT_TRUE(got.empty());
  }
}

// What a table gives that is cut: 1, but inside the record that ends it what that record makes of it.
template <class Fn>
int statusOfLast(const Bytes& all, std::size_t cut, std::size_t lastSize, Fn&& readLast) {
  const std::size_t last = all.size() - lastSize;
  return cut < last ? 1 : readFrom(Bytes::of(all.span().subspan(last, cut - last)), readLast);
}

TEST(MaterialTablesByHand, AToolSetCountThatIsCutOffBecomesSix) {
  Maker m;
  MaterialToolSetTable made;
  storedSets(m, 90, Form(), made);
  for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
    MaterialToolSetTable got;
    EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadMaterialToolSetTable(s, 90, got); }),
              statusOfLast(m.bytes, cut, 44,
                           [](InStream& s) {
                             StepTable t;
                             return ReadStepTable(s, 90, t);
                           }))
        << cut;
    EXPECT_EQ(got.setCount, cut < 16 ? 0 : cut < 20 ? 6 : 2) << cut;
    Checker c(cut);
    storedSets(c, 90, Form(), got);
  }
}

// count -> status; what is negative is kept and stored again, what is too large is refused both ways.
template <class Record, class Count, class Read, class Write>
void expectBound(Count Record::*count, std::initializer_list<int> kept, int refused, const Bytes& front,
                 const Bytes& behind, Read&& read, Write&& write) {
  const auto stored = [&](int n) { return Bytes(front).add(sizeof(Count) == 2 ? Bytes().i16(n) : Bytes().i32(n)); };
  for (int n : kept) {
    auto r = std::make_unique<Record>();
    EXPECT_EQ(readFrom(stored(n).add(behind), [&](InStream& s) { return read(s, 120, *r); }), 0) << n;
    EXPECT_EQ((*r).*count, static_cast<Count>(n));
    EXPECT_EQ(written([&](OutStream& s) { return write(s, 120, *r); }), stored(n).add(behind)) << n;
  }
  for (int n : {refused, 32767}) {
    auto r = std::make_unique<Record>();
    EXPECT_EQ(readFrom(stored(n).zeros(9000), [&](InStream& s) { return read(s, 120, *r); }), 1) << n;
    bool ok = true;
    r = std::make_unique<Record>();
    (*r).*count = static_cast<Count>(n);
    written([&](OutStream& s) { return write(s, 120, *r); }, &ok);
    EXPECT_FALSE(ok) << n;
  }
}
TEST(MaterialTablesByHand, CountsBelowOneReadNothingAndStayAndCountsAboveTheTableAreRefused) {
  expectBound(&MaterialToolSetTable::setCount, {0, -1, -32768}, 7, Bytes().f32(1).f32(2).f32(3).f32(4), {},
              ReadMaterialToolSetTable, WriteMaterialToolSetTable);
  expectBound(&MaterialPalette::colourCount, {0, -1, -32768}, 21, Bytes().i32(4), Bytes().zeros(12).i16(0),
              ReadMaterialPalette, WriteMaterialPalette);
  expectBound(&MaterialPalette::groupCount, {0, -1, -32768}, 6, Bytes().i32(4).i16(0).zeros(12), {},
              ReadMaterialPalette, WriteMaterialPalette);
}

TEST(MaterialTablesByHand, APaletteThatEndsInsideAGroupWordCountsAsRead) {
  for (int v : {129, 130}) {
    Form f;
    f.settings = 0;  // every group takes 8 bytes: word, count
    MaterialPalette made;
    Maker m;
    storedPalette(m, v, f, made);
    const std::size_t groups = 4 + 2 + 9 + 12 + 2;
    for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
      MaterialPalette got;
      got.groupsH[1].groupList.resize(2);
      got.groupsD[1].groupList.resize(3);
      const int status = readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadMaterialPalette(s, v, got); });
      EXPECT_EQ(status, cut >= groups && (cut - groups) % 8 < 4 ? 0 : 1) << v << " " << cut;
      EXPECT_EQ(got.colourCount, cut < 4 ? 0 : cut < 6 ? 20 : 3) << cut;
      EXPECT_EQ(got.groupCount, cut < 27 ? 0 : cut < 29 ? 5 : 2) << cut;
      // the list of a group whose word is missing is left alone
      EXPECT_EQ(got.groupsH[1].groupList.size(), cut < groups + 8 * 8 ? 2U : 0U) << cut;
      EXPECT_EQ(got.groupsD[1].groupList.size(), 3U) << cut;
      got.groupsH[1].groupList.clear();
      got.groupsD[1].groupList.clear();
      Checker c(cut);
      storedPalette(c, v, f, got);
    }
  }
}

TEST(MaterialTablesByHand, StagesKeepWhatArrivedAndWhatTheirVersionLacks) {
  for (int v : {149, 150, 151, 152}) {
    MaterialStageTable made;
    MotionBlock one;
    Maker m, block;
    storedStages(m, v, made);
    storedMotion(block, v, 5, one);
    for (std::size_t cut = 0; cut <= m.bytes.size(); ++cut) {
      MaterialStageTable got;
      EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadMaterialStageTable(s, v, got); }),
                v == 150 ? (cut < m.bytes.size() ? 1 : 0)  // the tail is last
                         : statusOfLast(m.bytes, cut, block.bytes.size(),
                                        [&](InStream& s) {
                                          MotionBlock b;
                                          return ReadMotionBlock(s, v, b);
                                        }))
          << v << " " << cut;
      Checker c(cut);
      storedStages(c, v, got);
      const std::uint8_t none[16] = {};  // the tail arrives as one block
      EXPECT_TRUE(std::memcmp(got.stageTail, made.stageTail, 16) == 0 || std::memcmp(got.stageTail, none, 16) == 0);
    }
    MaterialStageTable used;
    for (MotionBlock& b : used.blocks) b.motionKind = 77;
    std::memset(used.stageTail, 9, 16);
    EXPECT_EQ(readFrom(m.bytes, [&](InStream& s) { return ReadMaterialStageTable(s, v, used); }), 0);
    EXPECT_EQ(used.stageTail[0] == 9, v < 150 || made.stageTail[0] == 9);
    for (int i : {4, 5}) EXPECT_EQ(used.blocks[i].motionKind == 77, v < 151);
    for (int i : {6, 7}) EXPECT_EQ(used.blocks[i].motionKind == 77, v < 152);
  }
}

TEST(MaterialTablesByHand, EntriesAreReplacedAndAClaimedCountIsRefused) {
  for (std::int64_t count : {std::int64_t{0}, std::int64_t{-4}, std::int64_t{1}, std::int64_t{3}, kHuge}) {
    std::vector<MaterialEntry> got(4);
    const Bytes b = Bytes().i32(count).i32(7).fill(256, 'x').i32(8).fill(256, 'y');
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMaterialEntryList(s, 90, got); }), count > 2 ? 1 : 0);
    if (count < 1) {
      EXPECT_TRUE(got.empty());
      continue;
    }
    ASSERT_FALSE(got.empty());
    EXPECT_EQ(got[0].entryKey, 7);
    EXPECT_EQ(got[0].entryText[255], 'x');
  }
}

TEST(MaterialTablesByHand, AProgramThatBreaksOffInsideAnExtendedOneEndsItWithSuccess) {
  for (int v : {89, 157, 158}) {
    Maker program, all;
    ShapeProgram plain;
    ShapeProgramEx made;
    storedProgram(program, v, 0, 1, plain);
    storedProgramEx(all, v, 0, made);
    for (std::size_t cut = 0; cut < all.bytes.size(); ++cut) {
      ShapeProgramEx ex;
      EXPECT_EQ(readFrom(all.bytes.cut(cut), [&](InStream& s) { return ReadShapeProgramEx(s, v, ex); }),
                cut < program.bytes.size() ? 0 : 1);
      Checker c(cut);
      storedProgramEx(c, v, 0, ex);
      if (cut >= program.bytes.size()) continue;
      ShapeProgram p;
      EXPECT_EQ(readFrom(all.bytes.cut(cut), [&](InStream& s) { return ReadShapeProgram(s, v, p); }), 1);
    }
  }
}

TEST(MaterialTablesByHand, AProgramKeepsItsWholeGroupsOnly) {
  ShapeProgram none, one, two;
  Maker m0, m1, m2;
  storedProgram(m0, 90, 0, 1, none);
  storedProgram(m1, 90, 1, 1, one);
  storedProgram(m2, 90, 2, 1, two);
  for (std::size_t cut = 0; cut < m2.bytes.size(); ++cut) {
    ShapeProgram got;
    got.programGroups.resize(7);
    EXPECT_EQ(readFrom(m2.bytes.cut(cut), [&](InStream& s) { return ReadShapeProgram(s, 90, got); }), 1);
    EXPECT_EQ(got.programGroups.size(), cut < m0.bytes.size() ? 7U : cut < m1.bytes.size() ? 0U : 1U) << cut;
  }
  const Bytes front = m0.bytes.cut(m0.bytes.size() - 4);
  const Bytes noShapes = Bytes().i32(-1).i32(1).i32(0);
  for (const Bytes& claim :
       {Bytes().i32(kHuge), Bytes().i32(1).add(noShapes).i32(kHuge), Bytes().i32(1).add(noShapes).i32(0).i32(kHuge),
        Bytes().i32(1).add(noShapes).i32(0).i32(0).i32(kHuge)}) {
    ShapeProgram got;
    EXPECT_EQ(readFrom(Bytes(front).add(claim).zeros(8), [&](InStream& s) { return ReadShapeProgram(s, 90, got); }), 1);
    EXPECT_TRUE(got.programGroups.empty());
  }
}

TEST(MaterialTablesByHand, TheHeadGoesOnWhereARefusedSecondOptionLeftTheStream) {
  // The step table of the group claims 21 steps: the words behind the count become the tail.
  const auto program = [](Bytes& b, int groups) {
    b.i32(1).i32(1).i32(1).i32(0).i32(1).i32(0).f32(1).f32(2).f32(3).f32(4).i32(groups);
  };
  for (int v : {90, 91, 92, 157}) {
    Bytes b;
    for (int i = 0; i < 11; ++i) b.i32(i);
    program(b, 0);
    program(b, 1);
    b.i32(-1).i32(1).i32(0).i32(0).i32(1);   // no shapes, no quads, one step table
    b.u32(0).zeros(8).u32(0).u32(0).i8(21);  // its head
    const std::size_t behindCount = b.size();
    b.u32(0xA1).u32(0xA2).u32(0xA3).zeros(40);
    MaterialHeadRecord got;
    std::size_t used = 0;
    EXPECT_EQ(readFrom(
                  b, [&](InStream& s) { return ReadMaterialHeadRecord(s, v, got); }, &used),
              0)
        << v;
    EXPECT_EQ(used, behindCount + (v >= 92 ? 12 : 0)) << v;
    EXPECT_EQ(got.headTail1, v >= 92 ? 0xA1U : 0U);
    EXPECT_EQ(got.headTail3, v >= 92 ? 0xA3U : 0U);
    EXPECT_TRUE(got.optionB.programGroups.empty());
    EXPECT_EQ(got.optionB.extValue3, 1.5F);
  }
}

TEST(MaterialTablesByHand, AHeadCutInItsFirstOptionFailsAndOneCutInTheProgramOfTheSecondDependsOnTheTail) {
  const Form f = bare();
  for (int v : {91, 92, 158}) {
    Maker m, plain;
    MaterialHeadRecord made;
    ShapeProgram p;
    storedHead(m, v, f, made);
    storedProgram(plain, v, 0, 1, p);
    const std::size_t second = 44 + plain.bytes.size(), ext = second + plain.bytes.size();
    for (std::size_t cut = 0; cut <= m.bytes.size(); ++cut) {
      MaterialHeadRecord got;
      const bool whole = cut == m.bytes.size() || (v < 92 && cut >= second && cut < ext);
      EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadMaterialHeadRecord(s, v, got); }),
                whole ? 0 : 1)
          << v << " " << cut;
      Checker c(cut);
      storedHead(c, v, f, got);
    }
  }
}

// ---- rules ---------------------------------------------------------------------------------------

TEST(MaterialRulesByHand, AnyStoredCountButSixIsFollowedByTheSixDefaults) {
  for (std::size_t count = 0; count <= 8; ++count)
    for (int v : {154, 155, 161}) {
      Form f;
      f.rules = count;
      MaterialRuleLists made, got;
      Maker m;
      storedRules(m, v, f, made);
      got.angleRules.resize(11);
      EXPECT_EQ(readFrom(m.bytes, [&](InStream& s) { return ReadMaterialRuleLists(s, v, got); }), 0);
      ASSERT_EQ(got.angleRules.size(), count == 6 ? 6 : count + 6) << count;
      if (count != 6) expectDefaultRules(got.angleRules, count);
      for (std::size_t i = 0; i < count; ++i) {
        EXPECT_EQ(got.angleRules[i].ruleCode, made.angleRules[i].ruleCode);
        EXPECT_EQ(got.angleRules[i].sizeLimitY, made.angleRules[i].sizeLimitY);
      }
    }
  MaterialRuleLists got;  // so does a negative one
  const Bytes b = Bytes().zeros(18).i32(-6).zeros(10).u8(4);
  EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMaterialRuleLists(s, 90, got); }), 0);
  expectDefaultRules(got.angleRules);
  EXPECT_EQ(got.ruleFlag3, 4);
}

TEST(MaterialRulesByHand, TheOtherListsTakeTheirCountAsItIs) {
  for (std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{6}})
    for (int v : {154, 155, 160, 161}) {
      Form f;
      f.pairs = f.sizes = n;
      MaterialRuleLists made, got;
      Maker m;
      storedRules(m, v, f, made);
      EXPECT_EQ(readFrom(m.bytes, [&](InStream& s) { return ReadMaterialRuleLists(s, v, got); }), 0);
      Checker c;
      storedRules(c, v, f, got);
      EXPECT_EQ(got.pairRules.size(), v < 155 ? 6 : n);
      EXPECT_EQ(got.sizeRulesA.size(), v < 161 ? 3 : n);
      EXPECT_EQ(got.sizeRulesB.size(), v < 161 ? 4 : n);
    }
}

TEST(MaterialRulesByHand, CutsFailExceptInTheReservedBytesWhichEndTheReader) {
  for (int v : {90, 155, 161}) {
    Form f;
    f.rules = 1;
    Marks marks;
    MaterialRuleLists made;
    Maker m;
    storedRules(m, v, f, made, &marks);
    for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
      MaterialRuleLists got;
      const bool reserved = cut >= marks.rulesReserved && cut < marks.rulesReserved + 10;
      EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadMaterialRuleLists(s, v, got); }),
                reserved ? 0 : 1)
          << v << " " << cut;
      if (reserved) {
        EXPECT_EQ(got.angleRules.size(), 1U) << cut;  // without the six defaults
      }
      if (cut <= 18 + 3) expectDefaultRules(got.angleRules);  // a count that is cut off empties nothing
      if (cut < marks.rulesReserved + 11) {
        expectDefaultRules(got.pairRules);
        expectDefaultSizes(got);
        EXPECT_EQ(got.ruleFlag3, 1);
      }
    }
  }
}

TEST(MaterialRulesByHand, ReservedBytesAreIgnored) {
  Bytes b = Bytes().u8(1).u32(2).f32(3).u8(4).u32(5).f32(6).i32(1);
  b.u8(22).i8(1).f32(0.5F).f32(0.75F).f32(8).f32(9).fill(10, 0xEE).fill(10, 0xEE).u8(3);
  b.i32(1).u8(23).i8(1).f32(1).f32(2).f32(3).f32(4).f32(10).f32(11).fill(10, 0xEE);
  MaterialRuleLists got;
  EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMaterialRuleLists(s, 155, got); }), 0);
  EXPECT_EQ(got.ruleFlag3, 3);
  EXPECT_EQ(got.angleRules[0].sizeLimitX, 8.0F);
  ASSERT_EQ(got.pairRules.size(), 1U);
  const AngleRule& pair = got.pairRules[0];
  EXPECT_EQ(pair.angleCount, 1);
  EXPECT_TRUE(pair.ruleValues[0] == 1 && pair.ruleAngles[0] == 2 && pair.ruleValues[1] == 3 && pair.ruleAngles[1] == 4);
}

TEST(MaterialRulesByHand, AngleCountsUpToTheTableGoBothWaysAndLargerOnesAreRefused) {
  const Bytes plainFront = Bytes().zeros(18).i32(1), pairFront = Bytes().zeros(18).i32(0).zeros(11).i32(1);
  for (bool paired : {false, true})
    for (int count = -64; count <= (paired ? 63 : 127); ++count) {
      const int n = count < 1 ? 0 : paired ? 2 * count : count;
      Bytes rule = Bytes().u8(5).i8(count).zeros(static_cast<std::size_t>(8 * n)).f32(1).f32(2).zeros(10);
      const Bytes b = Bytes(paired ? pairFront : plainFront).add(rule).zeros(11 + 4);
      MaterialRuleLists got;
      const int status = readFrom(b, [&](InStream& s) { return ReadMaterialRuleLists(s, 155, got); });
      EXPECT_EQ(status, n > 10 ? 1 : 0) << paired << " " << count;
      MaterialRuleLists made;
      made.angleRules.assign(paired ? 6 : 1, AngleRule());
      made.pairRules.assign(paired ? 1 : 0, AngleRule());
      AngleRule& r = paired ? made.pairRules[0] : made.angleRules[0];
      r.angleCount = static_cast<std::int8_t>(count);
      bool ok = false;
      written([&](OutStream& s) { return WriteMaterialRuleLists(s, 155, made); }, &ok);
      EXPECT_EQ(ok, n <= 10) << paired << " " << count;
      EXPECT_EQ(r.angleCount, count);
      if (status == 0) {
        const AngleRule& back = paired ? got.pairRules.at(0) : got.angleRules.at(0);
        EXPECT_EQ(back.angleCount, count);
        EXPECT_EQ(back.sizeLimitY, 2.0F);
      }
    }
}

// The count of a pair rule is doubled and halved in its signed byte.
TEST(MaterialRulesByHand, APairCountThatWrapsWhenDoubledIsHalvedFromThere) {
  for (auto [stored, entries, kept] : {std::array{64, 0, -64}, std::array{100, 0, -28}, std::array{127, 0, -1},
                                       std::array{-128, 0, 0}, std::array{-124, 8, 4}, std::array{-123, 10, 5}}) {
    const Bytes b = Bytes()
                        .zeros(18)
                        .i32(0)
                        .zeros(11)
                        .i32(1)
                        .u8(5)
                        .i8(stored)
                        .zeros(static_cast<std::size_t>(8 * entries))
                        .f32(1)
                        .f32(2)
                        .zeros(10);
    MaterialRuleLists got;
    std::size_t used = 0;
    EXPECT_EQ(readFrom(
                  b, [&](InStream& s) { return ReadMaterialRuleLists(s, 155, got); }, &used),
              0)
        << stored;
    EXPECT_EQ(used, b.size()) << stored;
    EXPECT_EQ(got.pairRules.at(0).angleCount, kept) << stored;
    EXPECT_EQ(got.pairRules.at(0).sizeLimitY, 2.0F) << stored;
  }
}

TEST(MaterialRulesByHand, ClaimedCountsAreRefused) {
  const Bytes front = Bytes().zeros(18);
  for (const Bytes& b : {Bytes(front).i32(kHuge), Bytes(front).i32(0).zeros(11).i32(kHuge),
                         Bytes(front).i32(0).zeros(11).i32(0).i32(kHuge),
                         Bytes(front).i32(0).zeros(11).i32(0).i32(0).u8(0).i32(kHuge)}) {
    MaterialRuleLists got;
    EXPECT_EQ(readFrom(Bytes(b).zeros(60), [&](InStream& s) { return ReadMaterialRuleLists(s, 161, got); }), 1);
  }
}

// ---- body ----------------------------------------------------------------------------------------

TEST(MaterialBodyByHand, EveryVersionIsStoredRowByRow) {
  Form full;
  full.sets = full.lists = 6, full.colours = 20, full.groups = full.angles = 5, full.pairs = 0, full.sizes = 7;
  for (const Form& f : {Form(), full})
    for (int v : allVersions()) {
      SCOPED_TRACE(v);
      auto made = fresh(), got = fresh();
      Maker m;
      storedBody(m, v, f, *made);
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, v, *made); }, &ok) == m.bytes, true);
      EXPECT_TRUE(ok);
      std::size_t used = 0;
      EXPECT_EQ(readBody(m.bytes, v, *got, &used), 0);
      EXPECT_EQ(used, m.bytes.size());
      Checker c;
      storedBody(c, v, f, *got);
      EXPECT_EQ(got->toolSets.setCount, f.sets);
      EXPECT_EQ(got->palette.colourCount, f.colours);
      EXPECT_EQ(got->palette.groupCount, f.groups);
      EXPECT_TRUE(got->version == 0 && got->params.version == 0);  // not the body's
    }
}

TEST(MaterialBodyByHand, CutsFailExceptInTheReservedBytesAndKeepWhatArrived) {
  const Form f = bare();
  for (int v : {89, 90, 161, 180}) {
    Marks marks;
    const Bytes b = madeBody(v, f, &marks);
    for (std::size_t cut = 0; cut <= b.size(); ++cut) {
      auto got = fresh();
      const bool fine = (cut >= marks.reserved && cut < marks.reserved + 500) || cut == b.size();
      ASSERT_EQ(readBody(b.cut(cut), v, *got), fine ? 0 : 1) << v << " " << cut;
      Checker c(cut);
      storedBody(c, v, f, *got);
      if (HasFailure()) FAIL() << v << " " << cut;
    }
  }
  Marks marks;
  const Bytes full = madeBody(180, Form(), &marks);
  for (std::size_t cut = 0; cut < full.size(); cut += 7) {
    auto got = fresh();
    const bool fine = cut >= marks.reserved && cut < marks.reserved + 500;
    ASSERT_EQ(readBody(full.cut(cut), 180, *got), fine ? 0 : 1) << cut;
  }
}

TEST(MaterialBodyByHand, ABodyOfVersion89EndsBehindTheReservedBytesWhichAreIgnored) {
  Marks marks;
  const Bytes b = madeBody(89, Form(), &marks);
  EXPECT_EQ(b.size(), marks.reserved + 500);
  auto got = fresh();
  EXPECT_EQ(readBody(patched(b, marks.reserved, Bytes().fill(500, 0xAB)), 89, *got), 0);
  Checker c;
  storedBody(c, 89, Form(), *got);
  EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, 89, *got); }), b);
}

TEST(MaterialBodyByHand, AReloadLeavesWhatItsVersionLacks) {
  auto got = fresh();
  EXPECT_EQ(readBody(madeBody(180, Form()), 180, *got), 0);
  auto before = std::make_unique<OldMaterial>(*got);
  EXPECT_EQ(readBody(madeBody(61, bare()), 61, *got), 0);
  for (const Row& row : lateRows())
    std::visit([&](auto member) { EXPECT_EQ((*got).*member, (*before).*member); }, row.field);
  EXPECT_EQ(got->rules.pairRules.size(), 2U);
  EXPECT_EQ(got->head.headTail2, before->head.headTail2);
  EXPECT_EQ(got->head.optionA.programWord7, before->head.optionA.programWord7);
  EXPECT_EQ(got->stages.blocks[7].motionWord, before->stages.blocks[7].motionWord);
  EXPECT_EQ(got->palette.groupsA[1].groupList.size(), 2U);
  EXPECT_EQ(got->settingLists[2].size(), 2U);  // behind the count: left alone
  EXPECT_TRUE(got->name.empty() && got->entryList.empty() && got->head.optionA.programGroups.empty());
  expectDefaultRules(got->rules.angleRules);
}

TEST(MaterialBodyByHand, TheNameHasItsLengthInFrontAndAtMost10000Bytes) {
  const Bytes rest = Bytes::of(madeBody(90, bare()).span().subspan(4));
  for (std::size_t n : {std::size_t{1}, std::size_t{255}, std::size_t{256}, std::size_t{9999}, std::size_t{10000}}) {
    const std::string name(n, 'n');
    auto o = fresh();
    EXPECT_EQ(readBody(Bytes().lengthText(name).add(rest), 90, *o), 0) << n;
    EXPECT_EQ(o->name, name);
    const Bytes out = written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *o); });
    EXPECT_EQ(out.cut(4 + n), Bytes().lengthText(name));
  }
  for (std::int64_t n : {std::int64_t{10001}, kHuge}) {
    auto o = fresh();
    o->name = "held";
    EXPECT_EQ(readBody(Bytes().i32(n).fill(20000, 'n').add(rest), 90, *o), 1) << n;
  }
  for (std::int64_t n : {0, -1, -2147483647}) {
    auto o = fresh();
    o->name = "held";
    EXPECT_EQ(readBody(Bytes().i32(n).add(rest), 90, *o), 0) << n;
    EXPECT_EQ(o->name, "");
  }
  auto o = fresh();
  o->name = "held";
  EXPECT_EQ(readBody(Bytes().i32(5).text(4, "abcd"), 90, *o), 1);  // cut in two
  EXPECT_EQ(o->name, "held");
  EXPECT_EQ(readBody(Bytes().lengthText(std::string("ab\0cd", 5)).add(rest), 90, *o), 0);
  EXPECT_EQ(o->name, "ab");
  o->name.assign(10001, 'n');
  bool ok = true;
  written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *o); }, &ok);
  EXPECT_FALSE(ok);
}

TEST(MaterialBodyByHand, ModeBOfSixIsReadAsTenAndWrittenAsSix) {
  Marks marks;
  const Bytes b = madeBody(90, bare(), &marks);
  for (std::uint32_t mode : {0U, 5U, 6U, 7U, 10U, 0xFFFFFFFFU}) {
    auto o = fresh();
    EXPECT_EQ(readBody(patched(b, marks.modeA, Bytes().u32(mode).u32(mode).u32(mode)), 90, *o), 0);
    EXPECT_EQ(o->modeA, mode);
    EXPECT_EQ(o->modeB, mode == 6 ? 10 : mode);
    EXPECT_EQ(o->modeC, mode);
    o->modeB = mode;
    const Bytes out = written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *o); });
    // the six default angle rules that the load appended stand in front of the modes
    const std::size_t shift = 6 * 20;
    EXPECT_EQ(Bytes::of(out.span().subspan(marks.modeA + shift, 12)), Bytes().u32(mode).u32(mode).u32(mode));
  }
}

TEST(MaterialBodyByHand, ALoadBringsChoicesOutsideBothBanksBack) {
  Marks marks;
  const Bytes b = madeBody(90, bare(), &marks);
  const auto read = [](std::int32_t v, std::int32_t limit) {
    if (v < 0) return 1;
    return v >= 1001 + limit ? 1001 : v;
  };
  for (std::size_t i = 0; i < 8; ++i) {
    const std::int32_t l = kLimits[i];
    for (std::int32_t v :
         {INT32_MIN, -1001, -3, -1, 0, 1, l, l + 1, 999, 1000, 1001, 1000 + l, 1001 + l, 1002 + l, 1234, INT32_MAX}) {
      const Bytes with = patched(b, marks.choices + 4 * i, Bytes().i32(v));
      auto o = fresh();
      EXPECT_EQ(readBody(with, 90, *o), 0);
      for (std::size_t k = 0; k < 8; ++k)
        EXPECT_EQ((*o).*kChoices[k], k == i ? read(v, l) : bare().choices[k]) << "choice " << k + 1 << " of " << v;
      // not before setting9 is read
      for (std::size_t behind : {std::size_t{0}, std::size_t{3}, std::size_t{4}}) {
        auto cut = fresh();
        EXPECT_EQ(readBody(with.cut(marks.setting9 + behind), 90, *cut), 1);
        EXPECT_EQ((*cut).*kChoices[i], behind < 4 ? v : read(v, l)) << v;
      }
    }
  }
}

TEST(MaterialBodyByHand, ASaveStoresChoicesAsTheyStandAndThenReducesTheRecord) {
  Marks marks;
  const Form f = bare();
  auto made = fresh();
  Maker m;
  storedBody(m, 90, f, *made, &marks);
  for (std::size_t i = 0; i < 8; ++i) {
    const std::int32_t l = kLimits[i];
    for (std::int32_t v :
         {INT32_MIN, -3, 0, l + 1, 999, 1000, 1000 + l, 1001 + l, 1009, 1010, 1234, 5000, 2147483647}) {
      auto o = std::make_unique<OldMaterial>(*made);
      (*o).*kChoices[i] = v;
      const std::int32_t after = v > 1000 + l ? 1000 + v % 10 : v;
      for (std::int32_t stored : {v, after}) {
        EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *o); }),
                  patched(m.bytes, marks.choices + 4 * i, Bytes().i32(stored)));
        EXPECT_EQ((*o).*kChoices[i], stored == v ? after : after > 1000 + l ? 1000 + after % 10 : after) << v;
      }
    }
  }
}

TEST(MaterialBodyByHand, SettingListsAreStoredAsFarAsTheirCountGoes) {
  for (int n = 0; n <= 6; ++n) {
    Form f = bare();
    f.lists = n, f.settings = 1;
    auto made = fresh(), got = fresh();
    Maker m;
    storedBody(m, 90, f, *made);
    for (SettingList& l : got->settingLists) l.resize(4);
    EXPECT_EQ(readBody(m.bytes, 90, *got), 0);
    EXPECT_EQ(got->settingListCount, n);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got->settingLists[i].size(), i < n ? 1U : 4U) << n << " " << i;
    EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *made); }), m.bytes);
  }
  Marks marks;
  const Bytes b = madeBody(90, bare(), &marks);
  const std::size_t at = marks.setting9 + 4 + 12;
  for (int n : {-1, -32768, 7, 32767}) {
    auto o = fresh();
    EXPECT_EQ(readBody(patched(b, at, Bytes().i16(n)), 90, *o), n < 0 ? 0 : 1) << n;
    if (n < 0) {
      EXPECT_EQ(o->settingListCount, n);
    }
    auto w = fresh();
    Maker m;
    storedBody(m, 90, bare(), *w);
    w->settingListCount = static_cast<std::int16_t>(n);
    bool ok = false;
    const Bytes out = written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *w); }, &ok);
    EXPECT_EQ(ok, n < 0) << n;
    if (ok) {
      EXPECT_EQ(Bytes::of(out.span().subspan(at, 2)), Bytes().i16(n));
    }
  }
}

// ---- files ---------------------------------------------------------------------------------------

const std::set<int> kShort{52, 60, 500, 501, 502};
const std::set<int> kLong{61,  62,  71,  80,  90,  91,  92,  101, 102, 110, 111, 112, 120, 121, 130, 140,
                          141, 150, 151, 152, 153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 170, 180};

// The layouts of parameter tables are not this file's concern: all that is used here is that a table of
// zeros is as long as its reader takes it, and that nameLength and name stand last below version 500.
// Tables from 500 on have no name here.
Bytes tableBytes(int version, const std::string& name) {
  const Bytes word = Bytes().u16(static_cast<std::uint16_t>(version));
  std::size_t used = 0;
  auto t = std::make_unique<ParamTable>();
  readFrom(
      Bytes(word).zeros(100000), [&](InStream& s) { return ReadParamTable(s, *t); }, &used);
  if (version >= 500) return Bytes(word).zeros(used - 2);
  const std::size_t stored = std::min<std::size_t>(name.size() + 1, 256);
  return Bytes(word).zeros(used - 6).i32(static_cast<std::int64_t>(stored)).text(stored, name);
}
TEST(LoadOldMaterialByHand, ALongFileIsAWordATableAndABody) {
  TempFolder folder;
  const Form f;
  for (int word : kLong)
    for (int tableVersion : {52, 60, 61, 180, 500, 501, 502}) {
      const Bytes file = Bytes().u16(static_cast<std::uint16_t>(word)).add(tableBytes(tableVersion, "table"));
      const std::string path = folder.write("m", Bytes(file).add(madeBody(word, f)));
      auto o = fresh();
      const auto open = openFiles();
      ASSERT_EQ(LoadOldMaterial(path.c_str(), o.get()), 0) << word << " " << tableVersion;
      EXPECT_EQ(openFiles(), open);
      EXPECT_STREQ(o->path, path.c_str());
      EXPECT_EQ(o->version, word);
      EXPECT_EQ(o->params.version, tableVersion);
      EXPECT_STREQ(o->params.name, tableVersion < 500 ? "table" : "");
      EXPECT_EQ(o->name, f.name);
      Checker c;
      storedBody(c, word, f, *o);
    }
}

TEST(LoadOldMaterialByHand, OnlyTheListedWordsAreAccepted) {
  TempFolder folder;
  std::vector<int> words;
  for (int w = 0; w <= 700; ++w) words.push_back(w);
  words.insert(words.end(), {0x3C00, 0x3400, 0x8034, 32767, 65535});
  const auto open = openFiles();
  for (int word : words) {
    auto o = fresh();
    o->name = "held";
    const std::string path = folder.write("m", Bytes().u16(static_cast<std::uint16_t>(word)));
    // an accepted file of two bytes ends inside its table
    EXPECT_EQ(LoadOldMaterial(path.c_str(), o.get()), kShort.contains(word) || kLong.contains(word) ? 1 : -1) << word;
    EXPECT_EQ(o->version, word);
    EXPECT_STREQ(o->path, path.c_str());
    EXPECT_EQ(o->name, "held");
  }
  EXPECT_EQ(openFiles(), open);
}

TEST(LoadOldMaterialByHand, MissingShortAndRefusedFilesSetOnlyWhatTheyReached) {
  TempFolder folder;
  auto o = fresh();
  o->version = 9;
  const auto open = openFiles();
  EXPECT_EQ(LoadOldMaterial(folder.path("none").c_str(), o.get()), -2);
  EXPECT_EQ(LoadOldMaterial(folder.write("m0", {}).c_str(), o.get()), 1);
  EXPECT_EQ(LoadOldMaterial(folder.write("m1", Bytes().u8(90)).c_str(), o.get()), 1);
  EXPECT_TRUE(o->version == 9 && o->path[0] == 0);
  // a table without a layout: the body is not read
  o->name = "held";
  const Bytes body = madeBody(90, Form());
  EXPECT_EQ(LoadOldMaterial(folder.write("m2", Bytes().u16(90).u16(0).add(body)).c_str(), o.get()), -1);
  EXPECT_EQ(o->version, 90);
  EXPECT_EQ(o->name, "held");
  EXPECT_TRUE(o->entryList.empty());
  // a body that ends in its reserved bytes counts as loaded, one that ends elsewhere does not
  Marks marks;
  const Bytes whole = madeBody(90, bare(), &marks), table = tableBytes(60, "t");
  const std::size_t front = 2 + table.size();
  const Bytes file = Bytes().u16(90).add(table).add(whole);
  for (auto [cut, status] : {std::pair{front, 1},
                             {front + marks.reserved - 1, 1},
                             {front + marks.reserved, 0},
                             {front + marks.reserved + 499, 0},
                             {front + marks.reserved + 500, 1},
                             {front + whole.size() - 1, 1},
                             {front + whole.size(), 0}}) {
    auto p = fresh();
    EXPECT_EQ(LoadOldMaterial(folder.write("c", file.cut(cut)).c_str(), p.get()), status) << cut;
  }
  EXPECT_EQ(openFiles(), open);
}

TEST(LoadOldMaterialByHand, AShortFileIsATableThatGivesTheNameIfItHasOne) {
  TempFolder folder;
  for (int word : kShort)
    for (std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{5}, std::size_t{254}, std::size_t{255}, std::size_t{256}}) {
      if (word >= 500 && length > 0) continue;
      const std::string name(length, 'k');
      const std::string path = folder.write("m", tableBytes(word, name));
      auto o = fresh();
      EXPECT_EQ(readBody(madeBody(180, Form()), 180, *o), 0);
      ASSERT_EQ(LoadOldMaterial(path.c_str(), o.get()), 0) << word << " " << length;
      EXPECT_EQ(o->version, word);
      EXPECT_EQ(o->params.version, word);
      EXPECT_EQ(std::string(o->params.name, strnlen(o->params.name, 256)), name);
      EXPECT_STREQ(o->path, path.c_str());
      EXPECT_EQ(o->name, length == 0 || length == 256 ? Form().name : name);
      o->name = Form().name;  // and nothing else of the record is touched
      Checker c;
      storedBody(c, 180, Form(), *o);
    }
}

TEST(LoadOldMaterialByHand, APathIsKeptUpTo263Characters) {
  TempFolder folder;
  folder.write("m", Bytes().u16(63));
  for (unsigned extra : {0U, 50U, 100U, 101U, 130U, 200U}) {
    std::string path = folder.path();
    for (unsigned i = 0; i < extra; ++i) path += "/.";
    path += "/m";
    auto o = fresh();
    EXPECT_EQ(LoadOldMaterial(path.c_str(), o.get()), -1);
    EXPECT_EQ(std::string(o->path), path.substr(0, 263));
  }
}

TEST(LoadOldMaterialByHand, SavedMaterialsHaveTheFormThatIsLoaded) {
  TempFolder folder;
  for (int word = 50; word <= 510; ++word) {
    auto o = fresh();
    Maker m;
    const bool isShort = kShort.contains(word);
    storedBody(m, word, Form(), *o);
    o->params.version = static_cast<std::uint16_t>(isShort ? word : 60);
    o->params.nameLength = 2;
    o->params.name[0] = 't';
    const std::string path = folder.path("s" + std::to_string(word));
    const std::int64_t status = SaveMaterial(path.c_str(), *o, word);
    if (!isShort && !kLong.contains(word)) {
      EXPECT_EQ(status, -1) << word;
      continue;
    }
    EXPECT_EQ(status, 0) << word;
    Bytes expected = written([&](OutStream& s) { return WriteParamTable(s, o->params); });
    if (!isShort) expected = Bytes().u16(static_cast<std::uint16_t>(word)).add(expected).add(m.bytes);
    EXPECT_EQ(TempFolder::read(path) == expected, true) << word;
  }
}

}  // namespace
