// The machine body and its tables against bytes put together row by row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/records/record_io.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms/machines.h"
#include "torvio/values/equal.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();
using Form = MachineForm;

// ---- helpers -------------------------------------------------------------------------------------

std::unique_ptr<OldMachine> fresh() { return std::make_unique<OldMachine>(); }
ShapeList twoShapes() {
  ShapeList list;
  list.shapes.resize(2);
  return list;
}

struct Made {
  std::unique_ptr<OldMachine> machine = fresh();
  ShapeList shapes = twoShapes();
  Maker m;
  Made(int version, const Form& form) { storedMachine(m, version, form, *machine, shapes); }
  std::size_t at(int section) const { return m.sections.at(section); }
  // The bytes with others in the place of those from `at` on.
  Bytes with(std::size_t at, const Bytes& others) const { return patched(m.bytes, at, others); }
};

int read(const Bytes& bytes, int version, OldMachine& x, ShapeList* shapes = nullptr, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadOldMachine(s, version, shapes, x); }, consumed);
}
bool write(OldMachine& x, int version, Bytes* bytes = nullptr, const ShapeList* shapes = nullptr, bool flag = false) {
  bool ok = false;
  const Bytes all = written([&](OutStream& s) { return WriteOldMachine(s, version, shapes, x, flag); }, &ok);
  if (bytes != nullptr) *bytes = all;
  return ok;
}
MachineSetup firstSetup(const OldMachine& x) {
  return {x.sizeX, x.sizeY, x.clampInfo, x.clampValue1, x.clampValue2, x.machineWord91, x.machineWord92};
}
const MachineSetup kFreshSetup{0, 0, {}, 3.189F, 0.3937F, 0, 0};
void expectSame(const MachineSetup& got, const MachineSetup& want) {
  EXPECT_EQ(values::firstDifference(got, want), std::nullopt);
}

const std::vector<Form>& forms() {
  static const std::vector<Form> all = [] {
    std::vector<Form> f(8);
    f[1].limits = f[1].second = false;
    f[1].width = 13;
    f[2].secondWidth = 9;
    f[2].width = 200;
    f[3].gridMode = -1;
    f[4].gridMode = f[4].blockMode = f[4].programMode = 3;
    f[5].gridMode = f[5].blockMode = 1;
    f[5].programMode = 2;
    f[5].extension = f[5].steps = false;
    f[6].segments = 0;
    f[7].shapes = true;
    return f;
  }();
  return all;
}

// ---- tables --------------------------------------------------------------------------------------

// Stored field by field, read back completely, and 1 at every cut.
template <class T, class Stored, class Read, class Write>
void expectRows(Stored stored, Read readOne, Write writeOne) {
  auto made = std::make_unique<T>(), got = std::make_unique<T>(), used = std::make_unique<T>();
  Maker m;
  stored(m, *made);
  bool ok = false;
  EXPECT_EQ(written([&](OutStream& s) { return writeOne(s, *made); }, &ok), m.bytes);
  EXPECT_TRUE(ok);
  std::size_t consumed = 0;
  EXPECT_EQ(readFrom(
                m.bytes, [&](InStream& s) { return readOne(s, *got); }, &consumed),
            0);
  EXPECT_EQ(consumed, m.bytes.size());
  Checker whole, none(0);
  stored(whole, *got);
  stored(none, *used);
  for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
    const Bytes part = m.bytes.cut(cut);
    EXPECT_EQ(readFrom(part, [&](InStream& s) { return readOne(s, *got); }), 1) << cut;
  }
}

TEST(MachineTables, EachTableIsStoredFieldByFieldAndAnyCutFails) {
  for (int count : {0, 1, 3, 8, -2}) {
    SCOPED_TRACE(count);
    expectRows<ClampInfo>([&](auto& m, ClampInfo& c) { storedClamp(m, count, 50, c); }, ReadClampInfo, WriteClampInfo);
  }
  expectRows<WorkArea>([](auto& m, WorkArea& a) { storedArea(m, a); }, ReadWorkArea, WriteWorkArea);
  expectRows<GridSegment>([](auto& m, GridSegment& s) { storedSegment(m, s); }, ReadGridSegment, WriteGridSegment);
  expectRows<MachineGrid>([](auto& m, MachineGrid& g) { storedGrid(m, 100, g); }, ReadMachineGrid, WriteMachineGrid);
  expectRows<MachineExtension>([](auto& m, MachineExtension& e) { storedExtension(m, e); }, ReadMachineExtension,
                               WriteMachineExtension);
  for (int version : {52, 59, 60, 156, 157, 180}) {
    SCOPED_TRACE(version);
    const auto readOne = [&](InStream& s, MachineFrame& f) { return ReadMachineFrame(s, version, f); };
    const auto writeOne = [&](OutStream& s, MachineFrame& f) { return WriteMachineFrame(s, version, f); };
    expectRows<MachineFrame>([&](auto& m, MachineFrame& f) { storedFrame(m, version, f); }, readOne, writeOne);
  }
  for (int version : {52, 79, 80, 89, 90, 112, 121, 151, 157, 158, 160, 161, 180}) {
    SCOPED_TRACE(version);
    const auto readOne = [&](InStream& s, ShapeProgram& p) { return ReadShapeProgram(s, version, p); };
    const auto writeOne = [&](OutStream& s, ShapeProgram& p) { return WriteShapeProgram(s, version, p); };
    // Up to 157 the last slot ends the program, and its late fields may be short (see ProcessSlot).
    if (version >= 158 || version < 90)
      expectRows<ShapeProgram>([&](auto& m, ShapeProgram& p) { storedProgram(m, version, 2, 1, p); }, readOne,
                               writeOne);
  }
  for (int version : {110, 120, 121, 140, 141, 153, 154, 180}) {
    SCOPED_TRACE(version);
    const auto readOne = [&](InStream& s, MachineUnitTable& t) { return ReadMachineUnitTable(s, version, t); };
    const auto writeOne = [&](OutStream& s, MachineUnitTable& t) { return WriteMachineUnitTable(s, version, t); };
    for (std::size_t units : {0U, 2U})  // what follows the list also follows an empty one
      expectRows<MachineUnitTable>([&](auto& m, MachineUnitTable& t) { storedUnits(m, version, units, t); }, readOne,
                                   writeOne);
  }
}

TEST(MachineTables, ExtendedProgramWhoseFirstPartFailsSucceedsWithoutItsOwnFields) {
  for (int version : {79, 158, 180}) {
    Maker m, head;
    ShapeProgramEx made, got;
    storedProgram(head, version, 2, 0, made);
    storedProgramEx(m, version, 2, made);
    EXPECT_EQ(written([&](OutStream& s) { return WriteShapeProgramEx(s, version, made); }), m.bytes);
    for (std::size_t cut = 0; cut <= m.bytes.size(); ++cut) {
      ShapeProgramEx p;
      const Bytes part = m.bytes.cut(cut);
      const int wanted = cut < head.bytes.size() || cut == m.bytes.size() ? 0 : 1;
      EXPECT_EQ(readFrom(part, [&](InStream& s) { return ReadShapeProgramEx(s, version, p); }), wanted) << cut;
      if (cut <= head.bytes.size()) {
        EXPECT_TRUE(p.extFlag1 == 0 && p.extValue1 == 0.5F && p.extValue2 == 1.0F);
        EXPECT_TRUE(p.extFlag2 == 1 && p.extValue3 == 1.5F && p.extFlag3 == 1);
      } else if (cut == m.bytes.size()) {
        Checker c;
        storedProgramEx(c, version, 2, p);
      }
    }
  }
  // A refused value ends the program part; reading continues from there.
  Maker m;
  ShapeProgramEx p;
  storedProgram(m, 80, 2, 0, p);
  const std::size_t groups = 10 * 4;  // where the group count is
  const Bytes claims = m.bytes.cut(groups).i32(2000000000);
  EXPECT_EQ(readFrom(claims, [&](InStream& s) { return ReadShapeProgram(s, 80, p); }), 1);
  EXPECT_EQ(readFrom(claims, [&](InStream& s) { return ReadShapeProgramEx(s, 80, p); }), 0);
}

TEST(MachineTables, ProgramIsEmptiedAfterItsCountAndDropsTheGroupThatFails) {
  Maker m;
  ShapeProgram made;
  storedProgram(m, 180, 2, 1, made);
  ShapeProgram p;
  p.programGroups.resize(5);
  EXPECT_EQ(readFrom(m.bytes.cut(40), [&](InStream& s) { return ReadShapeProgram(s, 180, p); }), 1);
  EXPECT_EQ(p.programGroups.size(), 5U) << "no count, no emptying";
  EXPECT_EQ(readFrom(m.bytes.cut(44 + 10), [&](InStream& s) { return ReadShapeProgram(s, 180, p); }), 1);
  EXPECT_TRUE(p.programGroups.empty()) << "a partly read group is released";
  for (int count : {0, -4}) {
    p.programGroups.resize(5);
    p.programWord7 = 0;
    const Bytes none = m.bytes.cut(40).i32(count).u32(99);
    EXPECT_EQ(readFrom(none, [&](InStream& s) { return ReadShapeProgram(s, 158, p); }), 0);
    EXPECT_TRUE(p.programGroups.empty());
    EXPECT_EQ(p.programWord7, 99U);
  }
}

TEST(MachineTables, CountsOutsideTheTablesAreRefusedBothWays) {
  for (int count : {9, 10, 2000000000}) {
    ClampInfo c;
    const Bytes b = Bytes().zeros(16).i32(count).fill(80, 1);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadClampInfo(s, c); }), 1);
    EXPECT_EQ(c.clampPositions[0], 5.5F);
    EXPECT_EQ(c.clampSpacing, 5.5F);
    c.clampCount = count;
    EXPECT_FALSE(WriteClampInfo(*std::make_unique<OutStream>(), c));
  }
  for (int count : {0, -1, 40001, 2000000000}) {
    auto g = std::make_unique<MachineGrid>();
    const Bytes b = Bytes().zeros(8).i32(count).fill(40040, 9);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 1) << count;
    EXPECT_EQ(g->gridCells[0], 1);
    EXPECT_EQ(g->cellSizeX, 5.0F);
    g->cellByteCount = count;
    EXPECT_FALSE(WriteMachineGrid(*std::make_unique<OutStream>(), *g)) << count;
  }
}

TEST(MachineTables, GridHas40000CellsOfWhichTheFirst10000AreOne) {
  const auto g = std::make_unique<MachineGrid>();
  EXPECT_EQ(std::size(g->gridCells), 40000U);
  EXPECT_TRUE(g->gridCells[0] == 1 && g->gridCells[9999] == 1 && g->gridCells[10000] == 0);
  EXPECT_EQ(g->gridValue3, 0.25F);
  EXPECT_EQ(g->gridIsNarrow, 1);
  Checker c(0);
  storedGrid(c, 40000, *g);
  // All of them are stored; fewer keep the others.
  Maker m;
  auto made = std::make_unique<MachineGrid>();
  storedGrid(m, 40000, *made);
  EXPECT_EQ(m.bytes.size(), 8U + 4 + 40000 + 8 + 4 + 8);
  EXPECT_EQ(written([&](OutStream& s) { return WriteMachineGrid(s, *made); }), m.bytes);
  Maker few;
  storedGrid(few, 100, *made);
  EXPECT_EQ(readFrom(m.bytes, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
  EXPECT_EQ(readFrom(few.bytes, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
  EXPECT_EQ(g->gridCells[100], (100 * 7 + 3) & 0xFF);
  // The count is 40000 before it is read.
  EXPECT_EQ(readFrom(few.bytes.cut(10), [&](InStream& s) { return ReadMachineGrid(s, *g); }), 1);
  EXPECT_EQ(g->cellByteCount, 40000);
}

TEST(MachineTables, GridKeepsTheLowHalfOfItsWidth) {
  const struct {
    std::uint32_t stored;
    std::int32_t width, narrow;
  } rows[] = {{10, 10, 1}, {65535, 65535, 1}, {65536, 0, 0}, {70000, 4464, 0}, {0xFFFFFFFFU, 65535, 0}};
  for (const auto& row : rows) {
    auto g = std::make_unique<MachineGrid>();
    const Bytes b = Bytes().zeros(8).i32(1).u8(4).f32(1).f32(2).u32(row.stored).i32(6).f32(7);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
    EXPECT_EQ(g->gridWidth, row.width) << row.stored;
    EXPECT_EQ(g->gridIsNarrow, row.narrow) << row.stored;
    const Bytes again = written([&](OutStream& s) { return WriteMachineGrid(s, *g); });
    EXPECT_EQ(again, Bytes().zeros(8).i32(1).u8(4).f32(1).f32(2).i32(row.width).i32(6).f32(7));
    EXPECT_EQ(readFrom(again, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
    EXPECT_EQ(g->gridIsNarrow, 1);
  }
}

TEST(MachineTables, ExtensionWordsAndUnitsAreEmptiedAfterTheirCount) {
  const MachineExtension plain;
  EXPECT_EQ(plain.extensionWords, (std::vector<std::int32_t>{1, 11}));
  for (int count : {0, -1}) {
    MachineExtension e;
    const Bytes b = Bytes().fill(200, 3).i32(count);
    EXPECT_EQ(readFrom(b.cut(203), [&](InStream& s) { return ReadMachineExtension(s, e); }), 1);
    EXPECT_EQ(e.extensionWords.size(), 2U);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMachineExtension(s, e); }), 0);
    EXPECT_TRUE(e.extensionWords.empty());
    for (int version : {110, 120}) {
      MachineUnitTable t;
      t.units.resize(3);
      const Bytes u = Bytes().fill(30, 1).i32(count);
      EXPECT_EQ(readFrom(u.cut(33), [&](InStream& s) { return ReadMachineUnitTable(s, version, t); }), 1);
      EXPECT_EQ(t.units.size(), 3U);
      EXPECT_EQ(readFrom(u, [&](InStream& s) { return ReadMachineUnitTable(s, version, t); }), 0);
      EXPECT_TRUE(t.units.empty());
    }
  }
  MachineExtension e;
  MachineUnitTable t;
  EXPECT_EQ(
      readFrom(Bytes().zeros(200).i32(2000000000).zeros(9), [&](InStream& s) { return ReadMachineExtension(s, e); }),
      1);
  EXPECT_EQ(readFrom(Bytes().zeros(30).i32(2000000000), [&](InStream& s) { return ReadMachineUnitTable(s, 110, t); }),
            1);
  EXPECT_EQ(readFrom(Bytes().zeros(30).i32(1).zeros(8).i32(2000000000).zeros(20),
                     [&](InStream& s) { return ReadMachineUnitTable(s, 110, t); }),
            1);
  EXPECT_TRUE(t.units.empty()) << "a partly read unit is released";
}

// ---- the body ------------------------------------------------------------------------------------

// With other values and lists, also in what most forms leave out.
std::unique_ptr<OldMachine> usedMachine() {
  auto x = fresh();
  for (const int programMode : {1, 2}) {
    Form form;
    form.segments = 3;
    form.programMode = programMode;
    ShapeList none;
    Maker m = Maker::ofEveryField(1);
    storedMachine(m, 180, form, *x, none);
  }
  x->setup2.machineWord92 = 4711;
  x->extension.extensionEntries.resize(2);
  return x;
}

float larger(const OldMachine& x) { return std::max(x.workArea.areaValues[0], x.workArea.areaValues[1]); }

TEST(MachineBody, EverySectionIsReadFromItsVersionOnInEveryForm) {
  for (int version : allVersions()) {
    for (std::size_t i = 0; i < forms().size(); ++i) {
      SCOPED_TRACE("version " + std::to_string(version) + ", form " + std::to_string(i));
      Made made(version, forms()[i]);
      for (const auto& before : {fresh(), usedMachine()}) {
        auto x = std::make_unique<OldMachine>(*before);
        ShapeList shapes = twoShapes(), wantedShapes = twoShapes();
        std::size_t consumed = 0;
        ASSERT_EQ(read(made.m.bytes, version, *x, &shapes, &consumed), 0);
        EXPECT_EQ(consumed, made.m.bytes.size());
        const auto stored = [&](auto& m, OldMachine& one) { storedMachine(m, version, forms()[i], one, wantedShapes); };
        expectLoaded(*x, *before, stored);
        EXPECT_EQ(values::firstDifference(shapes, wantedShapes), std::nullopt);
        EXPECT_GT(larger(*x), 9.0F);
        EXPECT_TRUE(x->limitA == larger(*x) && x->limitB == larger(*x));
        if (HasFailure()) return;
      }
    }
  }
}

TEST(MachineBody, SaveStoresTheSameSectionsWithItsOwnHeaderAndAnUnversionedEnd) {
  for (int version : allVersions()) {
    for (std::size_t i = 0; i < forms().size(); ++i) {
      Form form = forms()[i];
      form.writer = true;
      SCOPED_TRACE("version " + std::to_string(version) + ", form " + std::to_string(i));
      Made made(version, form);
      Bytes got;
      ASSERT_TRUE(write(*made.machine, version, &got, &made.shapes, form.shapes));
      ASSERT_EQ(got.size(), made.m.bytes.size());
      // The fill has no meaning.
      const std::size_t fill = made.at(10), body = made.at(11);
      EXPECT_EQ(got.cut(fill), made.m.bytes.cut(fill));
      EXPECT_TRUE(from(got, body) == from(made.m.bytes, body));
      EXPECT_EQ(made.machine->gridMode, form.gridMode);
      if (HasFailure()) return;
    }
  }
}

TEST(MachineBody, FreshRecordHasTheDefaults) {
  Made made(180, Form());
  auto x = fresh();
  ShapeList shapes = twoShapes();
  Checker none(0, &made.m.sections);
  storedMachine(none, 180, Form(), *x, shapes);
  x = fresh();
  EXPECT_EQ(x->version, 0);
  EXPECT_STREQ(x->path, "");
  EXPECT_STREQ(x->ncExtension, "nc");
  EXPECT_TRUE(x->segments.empty() && x->stepTables.empty() && x->unitTable.units.empty());
  for (const auto* block : {&x->blockA, &x->blockB, &x->segmentBox})
    for (std::uint8_t one : *block) EXPECT_EQ(one, 0);
  EXPECT_EQ(x->programA.programWord3, 1);
  EXPECT_EQ(x->programC.programWord3, 1);
  EXPECT_EQ(x->programB.programWord3, 0);
  EXPECT_EQ(x->programD.programWord3, 0);
  const MachineUnit unit;
  EXPECT_TRUE(unit.unitKey1 == 0 && unit.unitKey2 == 0 && unit.unitEntries.empty());
  const MachineUnitEntry entry;
  EXPECT_TRUE(entry.entryValue3 == 1 && entry.entryValue8 == 1);
  for (const std::uint32_t zero : {entry.entryValue1, entry.entryValue2, entry.entryValue4, entry.entryValue5,
                                   entry.entryValue6, entry.entryValue7})
    EXPECT_EQ(zero, 0U);
  EXPECT_TRUE(x->unitTable.unitFlag3 == 0 && x->unitTable.unitValue16 == 1 && x->unitTable.unitValue22 == 1);
  expectSame(x->setup2, kFreshSetup);
  expectSame(x->setup3, kFreshSetup);
}

// The section that the first missing byte belongs to.
int sectionAt(const Sections& sections, std::size_t cut) {
  int found = 0;
  for (const auto& [n, start] : sections)
    if (start <= cut && n < 100) found = n;  // those of the material have higher numbers
  return found;
}

TEST(MachineBody, CutFailsExceptInTheSectionsThatTolerateIt) {
  for (int version : {52, 60, 62, 90, 101, 110, 112, 130, 141, 152, 157, 180}) {
    Made made(version, Form());
    const std::size_t size = made.m.bytes.size();
    auto x = fresh();
    int forgiven = 0;
    for (std::size_t cut = 0; cut < size; ++cut) {
      const int section = sectionAt(made.m.sections, cut);
      bool forgives = (section == 5 && cut >= made.at(5) + 8) || section == 25 || (section >= 54 && section <= 57) ||
                      (section >= 67 && section <= 72);
      if (section == 36 && version < 60) {  // nothing after the step tables: what their own reader says
        StepTableList tables;
        const Bytes rest = Bytes::of(made.m.bytes.cut(cut).span().subspan(made.at(36)));
        forgives = readFrom(rest, [&](InStream& s) { return ReadStepTableList(s, version, tables); }) == 0;
      }
      forgiven += forgives ? 1 : 0;
      std::size_t consumed = 0;
      ASSERT_EQ(read(made.m.bytes.cut(cut), version, *x, nullptr, &consumed), forgives ? 0 : 1)
          << "version " << version << " cut at " << cut << " in section " << section;
      ASSERT_EQ(consumed, cut) << "the stream is at its end";
    }
    EXPECT_GE(forgiven, 12);
  }
}

TEST(MachineBody, CompleteFieldsAreKeptAndAToleratedCutSkipsTheFinalSteps) {
  Made made(180, Form());
  // Inside these a cut meets lists and records that arrive completely or not at all.
  const std::vector<int> lists{13, 18, 19, 26, 28, 30, 33, 36, 44, 45, 50, 60, 75};
  for (std::size_t cut = 0; cut < made.m.bytes.size(); ++cut) {
    const int section = sectionAt(made.m.sections, cut);
    const bool atStart = made.at(section) == cut;
    if (std::find(lists.begin(), lists.end(), section) != lists.end() && !atStart) continue;
    if (!atStart && cut % 23 != 0) continue;
    SCOPED_TRACE("cut at " + std::to_string(cut) + " in section " + std::to_string(section));
    auto x = fresh();
    ShapeList shapes = twoShapes();
    read(made.m.bytes.cut(cut), 180, *x, &shapes);
    if (cut > made.at(13) && cut < made.at(28) + 32) {
      EXPECT_TRUE(x->clampInfo.clampWord1 == 100 && x->clampInfo.clampCount == 3);
      EXPECT_EQ(x->clampInfo.clampPositions[2], 106.0F) << "the first copy";
    }
    if (cut < made.at(73)) {
      expectSame(x->setup2, kFreshSetup);
      expectSame(x->setup3, kFreshSetup);
    } else {
      expectSame(x->setup2, firstSetup(*x));
      EXPECT_TRUE(x->limitA == larger(*x) && x->limitB == larger(*x));
    }
    Checker c(cut, &made.m.sections);
    storedMachine(c, 180, Form(), *x, shapes);
    if (HasFailure()) return;
  }
}

TEST(MachineBody, DiscardsAsManyLateBytesAsTheirLengthSays) {
  for (const int version : {130, 140, 141, 152, 180})
    for (const std::int32_t length : {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 2, 300, 50000}) {
      Form form;
      form.lateLength = length;
      const Made made(version, form);
      auto x = fresh();
      std::size_t consumed = 0;
      ASSERT_EQ(read(made.m.bytes, version, *x, nullptr, &consumed), 0) << version << " " << length;
      EXPECT_EQ(consumed, made.m.bytes.size()) << version << " " << length;
      EXPECT_EQ(x->lateByteB, version < 141 ? fresh()->lateByteB : made.machine->lateByteB) << version << " " << length;
      EXPECT_EQ(x->stepTables.size(), made.machine->stepTables.size()) << version << " " << length;
    }
}

TEST(MachineBody, DefaultsBelowAVersionAreSetWhereTheItemWouldBe) {
  const struct {
    int version, section;  // a cut directly before the next item that is stored
    bool late, word151;
  } rows[] = {{110, 64, false, false}, {111, 65, false, false}, {130, 67, true, false}, {150, 70, true, false}};
  for (const auto& row : rows) {
    auto x = fresh();
    x->lateWord3 = 55;
    x->machineWord125 = 55;
    Made made(row.version, Form());
    read(made.m.bytes.cut(made.at(row.section)), row.version, *x);
    EXPECT_EQ(x->lateWord3 == 55, !row.late) << row.version;
    EXPECT_EQ(x->machineWord125, 55.0F) << row.version;
    ASSERT_EQ(read(made.m.bytes, row.version, *x), 0);
    EXPECT_EQ(x->machineWord125, 1.5F);
    if (row.version < 112) {
      EXPECT_EQ(x->lateWord3, 1);
    }
  }
}

TEST(MachineBody, NearlyZeroFirstWordBecomesTheSizeAfterItsRow) {
  const float above = std::nextafter(0.0001F, 1.0F);
  const struct {
    float stored;
    bool replaced;
  } rows[] = {{0.00005F, true}, {-0.00005F, true}, {0, true},       {-0.0F, true},  {0.0001F, true},
              {-0.0001F, true}, {above, false},    {-above, false}, {-0.5F, false}, {1e30F, false}};
  for (int version : {60, 62, 180}) {
    Made made(version, Form());
    for (const auto& row : rows) {
      const Bytes bytes = made.with(made.at(37), Bytes().f32(row.stored));
      auto x = fresh();
      ASSERT_EQ(read(bytes, version, *x), 0);
      EXPECT_EQ(x->machineWord1, row.replaced ? made.machine->sizeX : row.stored) << row.stored;
      x = fresh();
      if (version > 60) {
        EXPECT_EQ(read(bytes.cut(made.at(38)), version, *x), 1);
        EXPECT_EQ(x->machineWord1, row.replaced ? made.machine->sizeX : row.stored) << "before section 38";
      }
    }
    auto x = fresh();
    ASSERT_EQ(read(made.with(made.at(37), Bytes().f32(std::nanf(""))), version, *x), 0);
    EXPECT_TRUE(std::isnan(x->machineWord1));
  }
}

TEST(MachineBody, LoadRaisesTheSecondLimitAndCopiesItIntoTheFirst) {
  const struct {
    bool stored;
    float b, area0, area1, wanted;
  } rows[] = {{false, 0, 5, 7, 7},      {false, 0, 7, 5, 7},   {false, 0, -1, -2, -0.125F}, {true, 9, 5, 7, 9},
              {true, 9, 5, 9.5F, 9.5F}, {true, 9, 10, -3, 10}, {true, -9, -7, -8, -7},      {true, 9, 9, 9, 9}};
  for (int version : {52, 90, 154, 180}) {
    for (const auto& row : rows) {
      Form form;
      form.limits = row.stored;
      Made made(version, form);
      Bytes bytes = made.with(made.at(17), Bytes().f32(row.area0).f32(row.area1));
      if (row.stored) {
        const Bytes rest = from(bytes, made.at(5) + 8);
        bytes = bytes.cut(made.at(5) + 4).f32(row.b).add(rest);
      }
      auto x = fresh();
      ASSERT_EQ(read(bytes, version, *x), 0);
      EXPECT_TRUE(x->limitA == row.wanted && x->limitB == row.wanted) << row.wanted << " " << x->limitB;
      if (!row.stored) {  // before the last steps
        x = fresh();
        EXPECT_EQ(read(bytes.cut(made.at(25)), version, *x), 0);
        EXPECT_TRUE(x->limitA == -0.125F && x->limitB == -0.125F && x->limitC == 0.048F && x->limitWord == 0);
      }
    }
  }
}

TEST(MachineBody, HeaderLoadsASignedByteWhereASaveStoresFour) {
  for (std::int32_t value : {0, 5, -3, 127, 128, 255, 256, 300, 511, 512, 65536, -200}) {
    for (int version : {79, 80, 180}) {
      auto x = fresh();
      x->textWidth = 256;
      x->smallValue = value;
      x->shapesPresent = 1;
      Bytes bytes;
      ASSERT_TRUE(write(*x, version, &bytes));
      EXPECT_EQ(Bytes::of(bytes.span().subspan(266, 4)), Bytes().i32(value));
      auto got = fresh();
      const bool present = ((static_cast<std::uint32_t>(value) >> 8U) & 0xFFU) == 1;
      const int status = read(bytes, version, *got);
      EXPECT_EQ(status, present && version >= 80 ? 1 : 0) << value << " at " << version;
      EXPECT_EQ(got->smallValue, static_cast<std::int8_t>(value));
      EXPECT_EQ(got->shapesPresent, (static_cast<std::uint32_t>(value) >> 8U) & 0xFFU);
      EXPECT_EQ(x->shapesPresent, 1) << "not changed";
    }
  }
  auto x = fresh();
  x->textWidth = 256;
  Bytes bytes;
  ShapeList shapes = twoShapes();
  ASSERT_TRUE(write(*x, 180, &bytes, &shapes, true));
  EXPECT_EQ(x->shapesPresent, 1) << "set by the writer";
  EXPECT_EQ(Bytes::of(bytes.span().subspan(270, 1)), Bytes().u8(1));
}

TEST(MachineBody, TrailerValuesNeedTheListOfTheCaller) {
  Form form;
  form.shapes = true;
  for (int version : {79, 80, 180}) {
    Made made(version, form);
    auto x = fresh();
    std::size_t consumed = 0;
    EXPECT_EQ(read(made.m.bytes, version, *x, nullptr, &consumed), version >= 80 ? 1 : 0);
    EXPECT_EQ(consumed, version >= 80 ? made.at(52) : made.m.bytes.size());
    // A list without shapes takes nothing.
    ShapeList none;
    EXPECT_EQ(read(made.m.bytes.cut(version >= 80 ? made.at(52) : kWhole), version, *x, &none), version < 90 ? 0 : 1);
    ShapeList three;
    three.shapes.resize(3);
    if (version == 80) {
      EXPECT_EQ(read(made.m.bytes, version, *x, &three), 1);
    }
  }
}

TEST(MachineBody, FlagOtherThanOneStoresNothing) {
  Form form;
  form.limits = form.second = false;
  Made made(80, form);
  for (int flag : {2, 128, 255}) {
    Bytes bytes = made.with(made.at(4), Bytes().i8(flag).i8(flag).u8(0).i8(flag));
    auto x = fresh();
    ShapeList shapes = twoShapes();
    std::size_t consumed = 0;
    ASSERT_EQ(read(bytes, 80, *x, &shapes, &consumed), 0) << flag;
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_TRUE(x->limitsPresent == flag && x->secondTextPresent == flag && x->shapesPresent == flag);
    EXPECT_TRUE(x->limitC == 0.048F && x->secondTextWidth == 0);
    EXPECT_EQ(x->machineWord81, made.machine->machineWord81);
  }
}

TEST(MachineBody, WidthsOfTextsAreOneToTwoHundredFiftySix) {
  for (int width : {-1, 0, 257, 2000000000}) {
    auto x = fresh();
    EXPECT_EQ(read(Bytes().i32(width).fill(3000, 1), 52, *x), 1) << width;
    EXPECT_EQ(x->machineText1[0], 0);
    const Bytes second = Bytes().i32(3).fill(3, 65).i32(1).u8(0).u8(1).i32(width).fill(3000, 1);
    EXPECT_EQ(read(second, 52, *x), 1) << width;
    EXPECT_EQ(x->secondText[0], 0);
    x->textWidth = width;
    x->secondTextPresent = 0;
    EXPECT_FALSE(write(*x, 180)) << width;
    x->textWidth = 256;
    EXPECT_TRUE(write(*x, 180));
    x->secondTextWidth = width;
    EXPECT_TRUE(write(*x, 180)) << "not stored";
    x->secondTextPresent = 1;
    EXPECT_FALSE(write(*x, 180)) << width;
    x->secondTextWidth = 256;
    EXPECT_TRUE(write(*x, 180));
  }
}

TEST(MachineBody, WritersRefuseCountsThatNoFieldHolds) {
  auto x = fresh();
  x->textWidth = 256;
  ASSERT_TRUE(write(*x, 180));
  x->triadCount = 256;
  EXPECT_FALSE(write(*x, 101));
  EXPECT_TRUE(write(*x, 100)) << "not stored";
  x->triadCount = 255;
  EXPECT_TRUE(write(*x, 180));
  x->clampInfo.clampCount = 9;
  EXPECT_FALSE(write(*x, 52));
  x->clampInfo.clampCount = 8;
  x->setup3.clampInfo.clampCount = 9;
  EXPECT_TRUE(write(*x, 153));
  EXPECT_FALSE(write(*x, 154));
  x->setup3.clampInfo.clampCount = 0;
  x->gridA.cellByteCount = 40001;
  EXPECT_TRUE(write(*x, 180));
  x->gridMode = 1;
  EXPECT_FALSE(write(*x, 180));
}

TEST(MachineBody, TriadsAreBoundedAndANegativeCountIsKept) {
  Made made(101, Form());
  const Bytes head = made.m.bytes.cut(made.at(57) + 8);
  for (int count : {-7, 0, 1, 255}) {
    auto x = fresh();
    Bytes bytes = head;
    bytes.i32(count).fill(static_cast<std::size_t>(std::max(0, count)) * 7, 0xAB);
    std::size_t consumed = 0;
    EXPECT_EQ(read(bytes, 101, *x, nullptr, &consumed), 0) << count;
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(x->triadCount, count);
    EXPECT_EQ(x->triads[0][6], count > 0 ? 0xAB : 0);
    EXPECT_EQ(x->triads[254][6], count == 255 ? 0xAB : 0);
    x->textWidth = 256;
    Bytes again;
    EXPECT_TRUE(write(*x, 101, &again));
    // After the triads: the nine words and the byte that the writer stores at every version.
    const std::size_t size = bytes.size() - made.at(57);
    EXPECT_EQ(Bytes::of(again.span().subspan(again.size() - 37 - size, size)), from(bytes, made.at(57)));
  }
  for (int count : {256, 2000000000}) {
    auto x = fresh();
    Bytes bytes = head;
    EXPECT_EQ(read(bytes.i32(count).fill(2000, 0xAB), 101, *x), 1);
    EXPECT_EQ(x->triads[0][0], 0);
  }
}

TEST(MachineBody, ColumnsHaveStoredCountsOfAtMostThree) {
  Made made(110, Form());
  const Bytes head = made.m.bytes.cut(made.at(62));
  for (int count : {-1, 0, 1, 2, 3, 4, 2000000000}) {
    const auto n = static_cast<std::size_t>(count < 0 || count > 3 ? 0 : count);
    Bytes numbersOnly = head, texts = head;
    numbersOnly.i32(count).fill(4 * n, 2);
    for (int k = 1; k < 6; ++k) numbersOnly.i32(0);
    numbersOnly.i32(0).i32(0);
    for (int k = 0; k < 6; ++k) texts.i32(0);
    texts.i32(count).fill(256 * n, 'q').i32(count);
    for (std::size_t k = 0; k < n; ++k) texts.text(256, std::string("ab\0cd", 5));
    auto x = fresh();
    x->numberColumns[0][2] = 9;
    x->textColumnA[2] = "old";
    EXPECT_EQ(read(numbersOnly, 110, *x), count > 3 ? 1 : 0) << count;
    EXPECT_EQ(x->numberColumns[0][0], n > 0 ? 0x02020202U : 0U);
    EXPECT_EQ(x->numberColumns[0][2], n > 2 ? 0x02020202U : 9U);
    EXPECT_EQ(read(texts, 110, *x), count > 3 ? 1 : 0) << count;
    EXPECT_EQ(x->textColumnA[0], n > 0 ? std::string(256, 'q') : "");
    EXPECT_EQ(x->textColumnA[2], n > 2 ? std::string(256, 'q') : "old");
    EXPECT_EQ(x->textColumnB[0], n > 0 ? "ab" : "") << "up to its NUL";
  }
  // A text that holds a NUL is stored up to it.
  Form form;
  form.writer = true;
  Made whole(110, form);
  whole.machine->textColumnA[1] = std::string("xy\0z", 4);
  Bytes got;
  ASSERT_TRUE(write(*whole.machine, 110, &got));
  EXPECT_EQ(Bytes::of(got.span().subspan(whole.at(63) + 4 + 256, 256)), Bytes().text(256, "xy"));
}

TEST(MachineBody, SegmentCountEmptiesTheListUnlessItIsZero) {
  Made made(52, Form());
  const Bytes rest = from(made.m.bytes, made.at(27));
  for (int count : {0, -1}) {
    auto x = fresh();
    x->segments.resize(4);
    Bytes bytes = made.m.bytes.cut(made.at(25));
    bytes.i32(count).fill(count == 0 ? 0 : 16, 0x77).add(rest);
    EXPECT_EQ(read(bytes, 52, *x), 0);
    EXPECT_EQ(x->segments.size(), count == 0 ? 4U : 0U);
    EXPECT_EQ(x->segmentBox[15], count == 0 ? 0 : 0x77);
    EXPECT_EQ(x->machineWord107, made.machine->machineWord107);
  }
  auto x = fresh();
  EXPECT_EQ(read(made.m.bytes.cut(made.at(25)).i32(2000000000).fill(30, 1), 52, *x), 1);
}

TEST(MachineBody, NegativeGridModeOmitsTheMiddle) {
  for (int mode : {-1, -2, std::numeric_limits<int>::min()}) {
    for (int version : {52, 62, 180}) {
      Form form;
      form.gridMode = mode;
      Made made(version, form);
      auto x = fresh();
      x->machineWord107 = 5;
      x->hasExtension = 6;
      ASSERT_EQ(read(made.m.bytes, version, *x), 0);
      EXPECT_TRUE(x->gridMode == 0 && x->machineWord107 == 5 && x->hasExtension == 6);
    }
  }
}

TEST(MachineBody, DiscardedRunLongerThanTheFileIsTolerated) {
  Made made(150, Form());
  auto x = fresh();
  std::size_t consumed = 0;
  const Bytes bytes = made.m.bytes.cut(made.at(69)).i32(2000000000).fill(10, 1);
  EXPECT_EQ(read(bytes, 150, *x, nullptr, &consumed), 0);
  EXPECT_EQ(consumed, bytes.size());
  EXPECT_EQ(x->lateByteB, 0);
  expectSame(x->setup2, kFreshSetup);
}

TEST(MachineBody, MachineWithoutUnitsLoadsAsItWasStored) {
  for (int version : {151, 152, 154, 180}) {
    auto x = fresh();
    x->textWidth = 256;
    x->machineWord108 = 108;
    x->machineWord123 = 123;
    Bytes bytes;
    ASSERT_TRUE(write(*x, version, &bytes));
    // From 151 on only lateByteC is where the reader may not expect it.
    auto got = fresh();
    ASSERT_EQ(read(bytes, version, *got), 0) << version;
    EXPECT_TRUE(got->machineWord108 == 108 && got->machineWord123 == 123) << version;
    EXPECT_EQ(got->endText2[0], 0);
  }
}

// Every version and every word: KindsRoundTrip.
TEST(MachineFile, HasItsBodyAfterTheVersionWord) {
  const TempFolder folder;
  auto x = fresh();
  EXPECT_EQ(LoadOldMachine(folder.path("none").c_str(), x.get()), -2);
  EXPECT_EQ(LoadOldMachine(folder.write("short", Bytes().u8(52)).c_str(), x.get()), 1);
  EXPECT_EQ(x->version, 0);
  for (int version : {52, 180}) {
    x = fresh();
    ASSERT_EQ(LoadOldMachine(folder.write("machine", Bytes().i16(version).add(Made(version, Form()).m.bytes)).c_str(),
                             x.get()),
              0);
    EXPECT_EQ(x->version, version);
    ShapeList shapes;
    Checker c;
    storedMachine(c, version, Form(), *x, shapes);
  }
  Form form;
  form.shapes = true;
  EXPECT_EQ(LoadOldMachine(folder.write("shapes", Bytes().i16(80).add(Made(80, form).m.bytes)).c_str(), x.get()), 1);
}

}  // namespace
