// Materials against bytes put together row by row: their tables, rules, programs, body and files.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/records/record_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms/materials.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using Form = MaterialForm;

constexpr std::int32_t kLimits[8] = {4, 8, 4, 6, 8, 4, 6, 8};

std::unique_ptr<OldMaterial> fresh() { return std::make_unique<OldMaterial>(); }
Bytes madeBody(int version, const Form& f, Sections* sections = nullptr) {
  auto o = fresh();
  Maker m;
  storedMaterial(m, version, f, *o);
  if (sections != nullptr) *sections = m.sections;
  return m.bytes;
}
int readBody(const Bytes& b, int version, OldMaterial& o, std::size_t* used = nullptr) {
  return readFrom(
      b, [&](InStream& s) { return ReadOldMaterialBody(s, version, o); }, used);
}
constexpr std::int64_t kHuge = 2000000000;

// ---- tables --------------------------------------------------------------------------------------

// Through a checker that takes every field as cut off, which leaves the defaults to compare with.
TEST(MaterialTables, FreshRecordHasTheDefaults) {
  auto o = fresh();
  Checker none(0);
  storedMaterial(none, 180, Form::bare(), *o);
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

TEST(MaterialTables, SettingEntryHas41BytesAndAnIncompleteOneIsDropped) {
  SettingList made;
  Maker m;
  storedSettings(m, 3, made);
  ASSERT_EQ(m.bytes.size(), 4U + 3U * 41U);
  for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
    SettingList got(5);
    EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadSettingList(s, 90, got); }), 1) << cut;
    EXPECT_EQ(got.size(), cut < 4 ? 5U : (cut - 4) / 41) << cut;  // emptied after a count that could be read
  }
  for (std::int64_t count : {0, -1, -2147483647}) {
    SettingList got(5);
    EXPECT_EQ(readFrom(Bytes().i32(count), [&](InStream& s) { return ReadSettingList(s, 90, got); }), 0);
    EXPECT_TRUE(got.empty());
  }
}

// The status of a table that is cut: 1, but inside the record that ends it the status of that record.
template <class Fn>
int statusOfLast(const Bytes& all, std::size_t cut, std::size_t lastSize, Fn&& readLast) {
  const std::size_t last = all.size() - lastSize;
  return cut < last ? 1 : readFrom(Bytes::of(all.span().subspan(last, cut - last)), readLast);
}

TEST(MaterialTables, MissingToolSetCountBecomesSix) {
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
                 const Bytes& after, Read&& read, Write&& write) {
  const auto stored = [&](int n) { return Bytes(front).add(sizeof(Count) == 2 ? Bytes().i16(n) : Bytes().i32(n)); };
  for (int n : kept) {
    auto r = std::make_unique<Record>();
    EXPECT_EQ(readFrom(stored(n).add(after), [&](InStream& s) { return read(s, 120, *r); }), 0) << n;
    EXPECT_EQ((*r).*count, static_cast<Count>(n));
    EXPECT_EQ(written([&](OutStream& s) { return write(s, 120, *r); }), stored(n).add(after)) << n;
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
TEST(MaterialTables, CountsBelowOneAreKeptAndCountsAboveTheTableRefused) {
  expectBound(&MaterialToolSetTable::setCount, {0, -1, -32768}, 7, Bytes().f32(1).f32(2).f32(3).f32(4), {},
              ReadMaterialToolSetTable, WriteMaterialToolSetTable);
  expectBound(&MaterialPalette::colourCount, {0, -1, -32768}, 21, Bytes().i32(4), Bytes().zeros(12).i16(0),
              ReadMaterialPalette, WriteMaterialPalette);
  expectBound(&MaterialPalette::groupCount, {0, -1, -32768}, 6, Bytes().i32(4).i16(0).zeros(12), {},
              ReadMaterialPalette, WriteMaterialPalette);
}

TEST(MaterialTables, PaletteThatEndsInsideAGroupWordSucceeds) {
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
      // the list of a group whose word is missing is kept
      EXPECT_EQ(got.groupsH[1].groupList.size(), cut < groups + 8 * 8 ? 2U : 0U) << cut;
      EXPECT_EQ(got.groupsD[1].groupList.size(), 3U) << cut;
      got.groupsH[1].groupList.clear();
      got.groupsD[1].groupList.clear();
      Checker c(cut);
      storedPalette(c, v, f, got);
    }
  }
}

TEST(MaterialTables, StagesKeepWhatArrivedAndWhatTheirVersionDoesNotStore) {
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

TEST(MaterialTables, EntriesAreReplacedAndACountBeyondTheFileIsRefused) {
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

TEST(MaterialTables, ProgramCutInsideAnExtendedOneEndsItWithSuccess) {
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

TEST(MaterialTables, ProgramKeepsOnlyItsCompleteGroups) {
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

TEST(MaterialTables, HeadContinuesWhereARefusedSecondOptionStopped) {
  // The step table of the group claims 21 steps: the words after the count become the tail.
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
    const std::size_t sizeBefore = b.size();
    b.u32(0xA1).u32(0xA2).u32(0xA3).zeros(40);
    MaterialHeadRecord got;
    std::size_t used = 0;
    EXPECT_EQ(readFrom(
                  b, [&](InStream& s) { return ReadMaterialHeadRecord(s, v, got); }, &used),
              0)
        << v;
    EXPECT_EQ(used, sizeBefore + (v >= 92 ? 12 : 0)) << v;
    EXPECT_EQ(got.headTail1, v >= 92 ? 0xA1U : 0U);
    EXPECT_EQ(got.headTail3, v >= 92 ? 0xA3U : 0U);
    EXPECT_TRUE(got.optionB.programGroups.empty());
    EXPECT_EQ(got.optionB.extValue3, 1.5F);
  }
}

TEST(MaterialTables, HeadCutInItsSecondProgramSucceedsOnlyWithoutATail) {
  const Form f = Form::bare();
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

TEST(MaterialRules, AnyCountOtherThanSixIsFollowedByTheSixDefaults) {
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

TEST(MaterialRules, OtherListsGetNoDefaults) {
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

TEST(MaterialRules, CutsFailExceptInTheReservedBytesWhichEndTheReader) {
  for (int v : {90, 155, 161}) {
    Form f;
    f.rules = 1;
    Sections at;
    MaterialRuleLists made;
    Maker m;
    storedRules(m, v, f, made);
    at = m.sections;
    for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
      MaterialRuleLists got;
      const bool reserved = cut >= at.at(kRulesReserved) && cut < at.at(kRulesReserved) + 10;
      EXPECT_EQ(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadMaterialRuleLists(s, v, got); }),
                reserved ? 0 : 1)
          << v << " " << cut;
      if (reserved) {
        EXPECT_EQ(got.angleRules.size(), 1U) << cut;  // without the six defaults
      }
      if (cut <= 18 + 3) expectDefaultRules(got.angleRules);  // a count that is cut off empties nothing
      if (cut < at.at(kRulesReserved) + 11) {
        expectDefaultRules(got.pairRules);
        expectDefaultSizes(got);
        EXPECT_EQ(got.ruleFlag3, 1);
      }
    }
  }
}

TEST(MaterialRules, ReservedBytesAreIgnored) {
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

TEST(MaterialRules, AngleCountsAboveTheTableAreRefusedByLoadAndSave) {
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
TEST(MaterialRules, PairCountThatWrapsWhenDoubledIsHalvedAfterwards) {
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

TEST(MaterialRules, CountsBeyondTheFileAreRefused) {
  const Bytes front = Bytes().zeros(18);
  for (const Bytes& b : {Bytes(front).i32(kHuge), Bytes(front).i32(0).zeros(11).i32(kHuge),
                         Bytes(front).i32(0).zeros(11).i32(0).i32(kHuge),
                         Bytes(front).i32(0).zeros(11).i32(0).i32(0).u8(0).i32(kHuge)}) {
    MaterialRuleLists got;
    EXPECT_EQ(readFrom(Bytes(b).zeros(60), [&](InStream& s) { return ReadMaterialRuleLists(s, 161, got); }), 1);
  }
}

// ---- body ----------------------------------------------------------------------------------------

// With other values, longer lists and fields that the body does not have.
std::unique_ptr<OldMaterial> usedMaterial() {
  Form form;
  form.sets = form.lists = 6, form.colours = 20, form.groups = 5, form.settings = 3;
  auto o = fresh();
  Maker m = Maker::ofEveryField(1);
  storedMaterial(m, 180, form, *o);
  o->version = o->params.version = 77;
  return o;
}

TEST(MaterialBody, EveryVersionStoresItsFields) {
  Form full, bare = Form::bare();
  bare.name = "bare";

  full.sets = full.lists = 6, full.colours = 20, full.groups = full.angles = 5, full.pairs = 0, full.sizes = 7;
  for (const Form& f : {Form(), full, bare})
    for (int v : allVersions()) {
      SCOPED_TRACE(v);
      auto made = fresh();
      Maker m;
      storedMaterial(m, v, f, *made);
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, v, *made); }, &ok) == m.bytes, true);
      EXPECT_TRUE(ok);
      for (const auto& before : {fresh(), usedMaterial()}) {
        auto got = std::make_unique<OldMaterial>(*before);
        std::size_t used = 0;
        EXPECT_EQ(readBody(m.bytes, v, *got, &used), 0);
        EXPECT_EQ(used, m.bytes.size());
        expectLoaded(*got, *before, [&](auto& l, OldMaterial& o) { storedMaterial(l, v, f, o); });
      }
    }
}

TEST(MaterialBody, CutsFailExceptInTheReservedBytesAndKeepWhatArrived) {
  const Form f = Form::bare();
  for (int v : {89, 90, 161, 180}) {
    Sections at;
    const Bytes b = madeBody(v, f, &at);
    for (std::size_t cut = 0; cut <= b.size(); ++cut) {
      auto got = fresh();
      const bool fine = (cut >= at.at(kReserved) && cut < at.at(kReserved) + 500) || cut == b.size();
      ASSERT_EQ(readBody(b.cut(cut), v, *got), fine ? 0 : 1) << v << " " << cut;
      Checker c(cut);
      storedMaterial(c, v, f, *got);
      if (HasFailure()) FAIL() << v << " " << cut;
    }
  }
  Sections at;
  const Bytes full = madeBody(180, Form(), &at);
  for (std::size_t cut = 0; cut < full.size(); cut += 7) {
    auto got = fresh();
    const bool fine = cut >= at.at(kReserved) && cut < at.at(kReserved) + 500;
    ASSERT_EQ(readBody(full.cut(cut), 180, *got), fine ? 0 : 1) << cut;
  }
}

TEST(MaterialBody, BodyOfVersion89EndsAfterTheReservedBytesWhichAreIgnored) {
  Sections at;
  const Bytes b = madeBody(89, Form(), &at);
  EXPECT_EQ(b.size(), at.at(kReserved) + 500);
  auto got = fresh();
  EXPECT_EQ(readBody(patched(b, at.at(kReserved), Bytes().fill(500, 0xAB)), 89, *got), 0);
  Checker c;
  storedMaterial(c, 89, Form(), *got);
  EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, 89, *got); }), b);
}

TEST(MaterialBody, NameHasItsLengthBeforeItAndAtMost10000Bytes) {
  const Bytes rest = Bytes::of(madeBody(90, Form::bare()).span().subspan(4));
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

TEST(MaterialBody, ModeBOfSixIsReadAsTenAndWrittenAsSix) {
  Sections at;
  const Bytes b = madeBody(90, Form::bare(), &at);
  for (std::uint32_t mode : {0U, 5U, 6U, 7U, 10U, 0xFFFFFFFFU}) {
    auto o = fresh();
    EXPECT_EQ(readBody(patched(b, at.at(kModes), Bytes().u32(mode).u32(mode).u32(mode)), 90, *o), 0);
    EXPECT_EQ(o->modeA, mode);
    EXPECT_EQ(o->modeB, mode == 6 ? 10 : mode);
    EXPECT_EQ(o->modeC, mode);
    o->modeB = mode;
    const Bytes out = written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *o); });
    // the six default angle rules that the load appended come before the modes
    const std::size_t shift = 6 * 20;
    EXPECT_EQ(Bytes::of(out.span().subspan(at.at(kModes) + shift, 12)), Bytes().u32(mode).u32(mode).u32(mode));
  }
}

TEST(MaterialBody, LoadReplacesChoicesOutsideBothBanks) {
  Sections at;
  const Bytes b = madeBody(90, Form::bare(), &at);
  const auto read = [](std::int32_t v, std::int32_t limit) {
    if (v < 0) return 1;
    return v >= 1001 + limit ? 1001 : v;
  };
  for (std::size_t i = 0; i < 8; ++i) {
    const std::int32_t l = kLimits[i];
    for (std::int32_t v :
         {INT32_MIN, -1001, -3, -1, 0, 1, l, l + 1, 999, 1000, 1001, 1000 + l, 1001 + l, 1002 + l, 1234, INT32_MAX}) {
      const Bytes with = patched(b, at.at(kChoices) + 4 * i, Bytes().i32(v));
      auto o = fresh();
      EXPECT_EQ(readBody(with, 90, *o), 0);
      for (std::size_t k = 0; k < 8; ++k)
        EXPECT_EQ((*o).*kMaterialChoices[k], k == i ? read(v, l) : Form::bare().choices[k])
            << "choice " << k + 1 << " of " << v;
      // not before setting9 is read
      for (std::size_t after : {std::size_t{0}, std::size_t{3}, std::size_t{4}}) {
        auto cut = fresh();
        EXPECT_EQ(readBody(with.cut(at.at(kSetting9) + after), 90, *cut), 1);
        EXPECT_EQ((*cut).*kMaterialChoices[i], after < 4 ? v : read(v, l)) << v;
      }
    }
  }
}

TEST(MaterialBody, SaveStoresChoicesAsTheyAreAndThenReducesThoseOfTheRecord) {
  Sections at;
  const Form f = Form::bare();
  auto made = fresh();
  Maker m;
  storedMaterial(m, 90, f, *made);
  at = m.sections;
  for (std::size_t i = 0; i < 8; ++i) {
    const std::int32_t l = kLimits[i];
    for (std::int32_t v :
         {INT32_MIN, -3, 0, l + 1, 999, 1000, 1000 + l, 1001 + l, 1009, 1010, 1234, 5000, 2147483647}) {
      auto o = std::make_unique<OldMaterial>(*made);
      (*o).*kMaterialChoices[i] = v;
      const std::int32_t after = v > 1000 + l ? 1000 + v % 10 : v;
      for (std::int32_t stored : {v, after}) {
        EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *o); }),
                  patched(m.bytes, at.at(kChoices) + 4 * i, Bytes().i32(stored)));
        EXPECT_EQ((*o).*kMaterialChoices[i], stored == v ? after : after > 1000 + l ? 1000 + after % 10 : after) << v;
      }
    }
  }
}

TEST(MaterialBody, SettingListsAreStoredUpToTheirCount) {
  for (int n = 0; n <= 6; ++n) {
    Form f = Form::bare();
    f.lists = n, f.settings = 1;
    auto made = fresh(), got = fresh();
    Maker m;
    storedMaterial(m, 90, f, *made);
    for (SettingList& l : got->settingLists) l.resize(4);
    EXPECT_EQ(readBody(m.bytes, 90, *got), 0);
    EXPECT_EQ(got->settingListCount, n);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(got->settingLists[i].size(), i < n ? 1U : 4U) << n << " " << i;
    EXPECT_EQ(written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *made); }), m.bytes);
  }
  Sections at;
  const Bytes b = madeBody(90, Form::bare(), &at);
  const std::size_t countAt = at.at(kSetting9) + 4 + 12;
  for (int n : {-1, -32768, 7, 32767}) {
    auto o = fresh();
    EXPECT_EQ(readBody(patched(b, countAt, Bytes().i16(n)), 90, *o), n < 0 ? 0 : 1) << n;
    if (n < 0) {
      EXPECT_EQ(o->settingListCount, n);
    }
    auto w = fresh();
    Maker m;
    storedMaterial(m, 90, Form::bare(), *w);
    w->settingListCount = static_cast<std::int16_t>(n);
    bool ok = false;
    const Bytes out = written([&](OutStream& s) { return WriteOldMaterialBody(s, 90, *w); }, &ok);
    EXPECT_EQ(ok, n < 0) << n;
    if (ok) {
      EXPECT_EQ(Bytes::of(out.span().subspan(countAt, 2)), Bytes().i16(n));
    }
  }
}

// ---- files ---------------------------------------------------------------------------------------

const std::set<int> kShort{52, 60, 500, 501, 502};
const std::set<int> kLong(longMaterialVersions().begin(), longMaterialVersions().end());

TEST(LoadOldMaterial, LongFileIsAVersionATableAndABody) {
  TempFolder folder;
  const Form f;
  for (int word : kLong)
    for (int tableVersion : {52, 60, 61, 180, 500, 501, 502}) {
      const Bytes file = Bytes().u16(static_cast<std::uint16_t>(word)).add(zeroParamBytes(tableVersion, "table"));
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
      storedMaterial(c, word, f, *o);
    }
}

TEST(LoadOldMaterial, OnlyTheListedWordsAreAccepted) {
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

TEST(LoadOldMaterial, MissingShortAndRefusedFilesSetOnlyWhatWasReached) {
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
  // a body that ends in its reserved bytes loads with success, one that ends elsewhere does not
  Sections at;
  const Bytes whole = madeBody(90, Form::bare(), &at), table = zeroParamBytes(60, "t");
  const std::size_t front = 2 + table.size();
  const Bytes file = Bytes().u16(90).add(table).add(whole);
  for (auto [cut, status] : {std::pair{front, 1},
                             {front + at.at(kReserved) - 1, 1},
                             {front + at.at(kReserved), 0},
                             {front + at.at(kReserved) + 499, 0},
                             {front + at.at(kReserved) + 500, 1},
                             {front + whole.size() - 1, 1},
                             {front + whole.size(), 0}}) {
    auto p = fresh();
    EXPECT_EQ(LoadOldMaterial(folder.write("c", file.cut(cut)).c_str(), p.get()), status) << cut;
  }
  EXPECT_EQ(openFiles(), open);
}

TEST(LoadOldMaterial, ShortFileIsATableWhoseNameNamesTheMaterial) {
  TempFolder folder;
  for (int word : kShort)
    for (std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{5}, std::size_t{254}, std::size_t{255}, std::size_t{256}}) {
      if (word >= 500 && length > 0) continue;
      const std::string name(length, 'k');
      const std::string path = folder.write("m", zeroParamBytes(word, name));
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
      storedMaterial(c, 180, Form(), *o);
    }
}

TEST(LoadOldMaterial, APathIsKeptUpTo263Characters) {
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

TEST(LoadOldMaterial, SavedFilesHaveTheFormThatIsLoaded) {
  TempFolder folder;
  for (int word = 50; word <= 510; ++word) {
    auto o = fresh();
    Maker m;
    const bool isShort = kShort.contains(word);
    storedMaterial(m, word, Form(), *o);
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
