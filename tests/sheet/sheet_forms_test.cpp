// Sheets and the lists that only sheets have, against bytes put together row by row.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "src/records/record_io.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/sheets.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

using Form = SheetForm;
constexpr std::int64_t kTwoBillion = 2'000'000'000;

struct Made {
  std::unique_ptr<OldSheet> sheet = std::make_unique<OldSheet>();
  Bytes bytes;
  std::vector<Piece> pieces;
  Sections sections;
  std::size_t backAt = 0;  // where storedSheetBack begins
  const Piece& field(std::string_view name) const {
    for (const Piece& one : pieces)
      if (one.name == name) return one;
    ADD_FAILURE() << "no field " << name;
    return pieces.front();
  }
};
Made make(int version, const Form& form = {}) {
  Made made;
  Maker m;
  storedSheetFront(m, version, form, *made.sheet);
  made.backAt = m.bytes.size();
  storedSheetBack(m, version, form, *made.sheet);
  made.bytes = m.bytes;
  made.pieces = m.pieces;
  made.sections = m.sections;
  return made;
}
void check(int version, const Form& form, OldSheet& s) {
  Checker c;
  storedSheet(c, version, form, s);
}
int readSheet(const Bytes& b, int version, OldSheet& s, std::size_t* consumed = nullptr) {
  return readFrom(
      b, [&](InStream& stream) { return ReadOldSheet(stream, version, s); }, consumed);
}
Bytes writtenSheet(int version, OldSheet& s, bool* ok = nullptr) {
  return written([&](OutStream& to) { return WriteOldSheet(to, version, s); }, ok);
}
Bytes word(std::int64_t v) { return Bytes().i32(v); }

std::vector<Form> someForms(bool writer) {
  Form plain, narrow, bare;
  plain.writer = narrow.writer = bare.writer = writer;
  narrow.width = 9;
  narrow.nameWidth = 5;
  narrow.extension = true;
  narrow.clamps = 8;
  narrow.slots = 1;
  bare.shapes = false;
  bare.elements = 0;
  bare.extension = true;
  bare.rows = bare.clampRows = bare.clamps = 0;
  if (!writer) {
    narrow.spare = 4711;
    narrow.dosLength = 3;
  }
  return {plain, narrow, bare};
}

// ---- the body ------------------------------------------------------------------------------------

TEST(SheetBody, EveryVersionReadsItsFieldsInTheirOrder) {
  for (int version : allVersions()) {
    for (const Form& form : someForms(false)) {
      SCOPED_TRACE(::testing::Message() << "version " << version << " width " << form.width << " " << form.shapes);
      const Made made = make(version, form);
      const auto fresh = std::make_unique<OldSheet>(), owner = std::make_unique<OldSheet>();
      OldSheet& s = *owner;
      std::size_t consumed = 0;
      ASSERT_EQ(readSheet(made.bytes, version, s, &consumed), 0);
      EXPECT_EQ(consumed, made.bytes.size());
      check(version, form, s);
      if (form.nameWidth == 256)
        expectLoaded(s, *fresh, [&](auto& m, OldSheet& one) { storedSheet(m, version, form, one); });
      for (const TorvPart& p : s.partList.parts) {
        EXPECT_EQ(std::string_view(p.partName, 256).find('\0'), form.nameWidth < 256 ? 5U : std::string_view::npos);
        EXPECT_EQ(std::strlen(p.partFullDosName), static_cast<std::size_t>(form.nameWidth));
      }
    }
  }
}

TEST(SheetBody, EveryVersionWritesItsFieldsInTheirOrder) {
  for (int version : allVersions()) {
    for (const Form& form : someForms(true)) {
      const Made made = make(version, form);
      bool ok = false;
      const Bytes stored = writtenSheet(version, *made.sheet, &ok);
      EXPECT_TRUE(ok) << version;
      EXPECT_TRUE(stored == made.bytes) << "version " << version << " width " << form.width << " sizes "
                                        << stored.size() << " " << made.bytes.size();
    }
  }
}

TEST(SheetBody, FieldsBeginAtTheirVersions) {
  const auto has = [](int version, std::string_view name) {
    const Made made = make(version);
    for (const Piece& one : made.pieces)
      if (one.name == name) return true;
    return false;
  };
  for (auto [gate, item] : {std::pair<int, std::string_view>{154, "spare"}, {100, "length"}, {152, "blocks"}})
    EXPECT_TRUE(has(gate, item) && !has(gate - 1, item)) << item;
  // The same by how much longer a save is, where nothing else changes with the version.
  struct Row {
    int gate;
    std::size_t more;
  };
  Form form;
  form.writer = true;
  form.shapes = false;
  form.elements = 0;
  for (auto [gate, more] : {Row{100, 4 + 260 + 12}, Row{102, 4}, Row{111, 5 * 256 + 4}, Row{112, 4 * 256},
                            Row{130, 256}, Row{140, 8}, Row{152, 4}, Row{154, 4}, Row{161, 256}}) {
    const auto saved = [&](int version) {
      Made made = make(version, form);
      made.sheet->skeletonShapes.shapes.clear();
      Maker machine;
      auto scratch = std::make_unique<OldMachine>();
      storedMachine(machine, version, machineOf(form), *scratch, made.sheet->shapes);
      return writtenSheet(version, *made.sheet).size() - machine.bytes.size();
    };
    EXPECT_EQ(saved(gate) - saved(gate - 1), more) << gate;
  }
}

TEST(SheetBody, CutFailsExceptInTheToleratedFieldsAndKeepsCompleteOnes) {
  Form form;
  form.width = 9;
  form.nameWidth = 5;
  for (int version : {53, 60, 61, 90, 102, 112, 130, 140, 153, 160, 162, 180}) {
    form.extension = version % 2 == 0;
    const Made made = make(version, form);
    const auto fresh = std::make_unique<OldSheet>();
    for (std::size_t f = 0; f < made.pieces.size(); ++f) {
      const Piece& field = made.pieces[f];
      std::vector<std::size_t> cuts;
      if (field.end - field.begin <= 16)
        for (std::size_t at = field.begin; at < field.end; ++at) cuts.push_back(at);
      else
        cuts = {field.begin, field.begin + 1, (field.begin + field.end) / 2, field.end - 5, field.end - 1};
      for (std::size_t cut : cuts) {
        SCOPED_TRACE(::testing::Message() << "version " << version << " cut in " << field.name << " " << f << " at "
                                          << cut - field.begin << " of " << field.end - field.begin);
        auto s = std::make_unique<OldSheet>();
        EXPECT_EQ(readSheet(made.bytes.cut(cut), version, *s), field.statusOfCut);
        const auto arrived = [&](const std::string& name) {
          std::size_t n = 0;
          for (const Piece& one : made.pieces) n += one.name == name && one.end <= cut ? 1U : 0U;
          return n;
        };
        EXPECT_EQ(s->partList.parts.size(), arrived("part[]"));
        EXPECT_EQ(s->workList.size(), arrived("work[]"));
        EXPECT_EQ(s->machine.extension.extensionEntries.size(), arrived("extension[]"));
        EXPECT_EQ(s->textEntries.size(), arrived("text[]"));
        EXPECT_EQ(s->namedWorkLists.size(), arrived("named[]"));
        Checker c(*s, *fresh, cut, &made.sections);
        storedSheet(c, version, form, *s);
        if (::testing::Test::HasFailure()) return;
      }
    }
  }
}

TEST(SheetBody, FileThatEndsAfterTheFourMaterialTextsIsComplete) {
  for (int version : {129, 130, 140, 151, 152, 160, 161, 180}) {
    const Made made = make(version, someForms(false)[1]);
    std::size_t end = 0;
    for (const Piece& one : made.pieces)
      if (one.name == "material text") end = one.end;
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(made.bytes.cut(end), version, *s), 0) << version;
    EXPECT_EQ(s->materialText5[0], '\0');
  }
  const Made made = make(161);
  auto s = std::make_unique<OldSheet>();
  EXPECT_EQ(readSheet(made.bytes.cut(made.field("blocks").end), 161, *s), 1);
}

TEST(SheetBody, CutSpareWordEndsTheLoadWithSuccess) {
  const Made made = make(154);
  for (std::size_t n = 0; n < 4; ++n) {
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(made.bytes.cut(made.backAt + n), 154, *s), 0);
    EXPECT_EQ(s->paramTable.version, 0);
    EXPECT_EQ(s->leadWords[0], 0U);
    EXPECT_EQ(s->machine.textWidth, 0);
    EXPECT_EQ(s->clampRowTable.count, 2);
  }
  const Made older = make(153);
  auto s = std::make_unique<OldSheet>();
  EXPECT_EQ(readSheet(older.bytes.cut(older.backAt), 153, *s), 1);
}

TEST(SheetBody, WidthsAndLengthsOutsideTheirFieldsAreRefused) {
  const Form form = someForms(false)[1];
  const Made made = make(180, form);
  const auto status = [&](std::string_view field, const Bytes& by, std::size_t more = 0) {
    auto s = std::make_unique<OldSheet>();
    return readSheet(patched(made.bytes, made.field(field).begin, by).add(Bytes().zeros(more)), 180, *s);
  };
  for (std::int64_t bad : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{257}, kTwoBillion}) {
    EXPECT_EQ(status("textWidth", word(bad), 5000), 1) << bad;
    EXPECT_EQ(status("nameWidth", word(bad), 5000), 1) << bad;
  }
  for (std::int64_t bad : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{261}, kTwoBillion})
    EXPECT_EQ(status("length", word(bad), 5000), 1) << bad;
  for (std::int64_t bad : {std::int64_t{26}, kTwoBillion}) {
    EXPECT_EQ(status("rows", word(bad), 5000), 1) << bad;
    EXPECT_EQ(status("clamp rows", word(bad), 5000), 1) << bad;
  }
  EXPECT_EQ(status("clampInfo", Bytes().zeros(16).i32(9), 5000), 1);
  for (const char* list : {"part count", "work count", "extension count", "text count", "named count"})
    EXPECT_EQ(status(list, word(kTwoBillion)), 1) << list;
  for (int length : {1, 259, 260}) {
    Form good;
    good.dosLength = length;
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(make(100, good).bytes, 100, *s), 0);
    check(100, good, *s);
  }
}

TEST(SheetBody, SaveRefusesValuesOutsideTheirRange) {
  using Edit = std::function<void(OldSheet&)>;
  const std::pair<const char*, Edit> edits[] = {
      {"textWidth 0", [](OldSheet& s) { s.textWidth = 0; }},
      {"textWidth 257", [](OldSheet& s) { s.textWidth = 257; }},
      {"textWidth -1", [](OldSheet& s) { s.textWidth = -1; }},
      {"nameWidth 0", [](OldSheet& s) { s.partList.nameWidth = 0; }},
      {"nameWidth 257", [](OldSheet& s) { s.partList.nameWidth = 257; }},
      {"nameWidth -1", [](OldSheet& s) { s.partList.nameWidth = -1; }},
      {"rows 26", [](OldSheet& s) { s.rowTable.count = 26; }},
      {"clamp rows 26", [](OldSheet& s) { s.clampRowTable.count = 26; }},
      {"clampCount 9", [](OldSheet& s) { s.clampInfo.clampCount = 9; }},
      {"nameLength 0", [](OldSheet& s) { s.paramTable.nameLength = 0; }},
      {"table version 57", [](OldSheet& s) { s.paramTable.version = 57; }},
      {"machine width 0", [](OldSheet& s) { s.machine.textWidth = 0; }},
  };
  const TempFolder folder;
  for (const auto& [name, edit] : edits) {
    const Made made = make(180);
    edit(*made.sheet);
    bool ok = true;
    writtenSheet(180, *made.sheet, &ok);
    EXPECT_FALSE(ok) << name;
    EXPECT_EQ(SaveOldSheet(folder.path("s.sht").c_str(), made.sheet.get(), 180), -2) << name;
  }
  // A width of the names that nothing is stored with does no harm.
  Form bare = someForms(true)[2];
  const Made made = make(180, bare);
  made.sheet->partList.nameWidth = 0;
  bool ok = false;
  EXPECT_EQ(writtenSheet(180, *made.sheet, &ok), made.bytes);
  EXPECT_TRUE(ok);
}

TEST(SheetBody, NegativeCountsOfSlotsAndRowsReadNothingAndAreWrittenBack) {
  Form form;
  form.rows = form.clampRows = form.slots = 0;
  form.writer = true;
  const Made made = make(180, form);
  for (int slots : {0x80, 0xFF}) {
    Bytes b = patched(made.bytes, made.field("slots").begin, Bytes().u8(static_cast<std::uint8_t>(slots)));
    b = patched(b, made.field("rows").begin, word(-7));
    b = patched(b, made.field("clamp rows").begin, word(-8));
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(b, 180, *s), 0);
    EXPECT_EQ(s->processSlotCount, slots - 256);
    EXPECT_EQ(s->rowTable.count, -7);
    EXPECT_EQ(s->clampRowTable.count, -8);
    Made again = make(180, form);
    again.sheet->processSlotCount = static_cast<std::int8_t>(slots - 256);
    again.sheet->rowTable.count = -7;
    again.sheet->clampRowTable.count = -8;
    EXPECT_TRUE(writtenSheet(180, *again.sheet) == b);
  }
}

TEST(SheetBody, TablesAndSlotsMayBeFull) {
  for (int clamps : {0, 1, 8}) {
    Form form;
    form.rows = form.clampRows = 25;
    form.clamps = clamps;
    form.slots = 127;
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(make(162, form).bytes, 162, *s), 0);
    check(162, form, *s);
    EXPECT_EQ(s->clampRowTable.words[24][7] != 0, clamps == 8);
    form.writer = true;
    const Made saved = make(162, form);
    EXPECT_TRUE(writtenSheet(162, *saved.sheet) == saved.bytes);
  }
}

TEST(SheetBody, RowOfClampWordsIsAsWideAsTheClampsOfTheFile) {
  Form form = someForms(false)[2];
  form.clampRows = 1;
  form.clamps = -1;  // no positions, no words, but the row's value
  const Made made = make(180, form);
  auto s = std::make_unique<OldSheet>();
  s->clampInfo.clampCount = 8;
  s->clampRowTable.words[0][0] = 5;
  EXPECT_EQ(readSheet(made.bytes, 180, *s), 0);
  EXPECT_EQ(s->clampInfo.clampCount, -1);
  EXPECT_EQ(s->clampRowTable.words[0][0], 5U);
  check(180, form, *s);
}

TEST(SheetBody, WithoutShapesNoneOfTheSheetsOwnListsIsStored) {
  Form form;
  form.shapes = false;
  form.writer = true;
  const Made made = make(180, form);
  made.sheet->processSlotCount = 2;
  made.sheet->marks.resize(3);
  made.sheet->setupList.entries.resize(2);
  made.sheet->patternItems.resize(1);
  EXPECT_TRUE(writtenSheet(180, *made.sheet) == made.bytes);
  // What a file does not hold stays, and the stored count decides, not the shapes of a used record.
  const std::size_t countAt = made.field("work count").begin - 4;
  for (std::int64_t count : {0, -1}) {
    const Made used = make(180);
    EXPECT_EQ(readSheet(patched(made.bytes, countAt, word(count)), 180, *used.sheet), 0) << count;
    EXPECT_EQ(used.sheet->shapes.shapes.size(), count == 0 ? someShapes().size() : 0U);
    EXPECT_EQ(used.sheet->processSlotCount, 2);
    EXPECT_EQ(used.sheet->marks.size(), 2U);
    EXPECT_EQ(used.sheet->setupList.entries.size(), 2U);
    EXPECT_EQ(used.sheet->patternItems.size(), 2U);
  }
}

TEST(SheetBody, LoadIntoAUsedRecordKeepsSomeListsAndEmptiesOthers) {
  const Form full = someForms(false)[1];
  Form bare = someForms(false)[2];
  bare.shapes = true;
  const Made file = make(180, bare);
  const Made used = make(180, full);
  OldSheet& s = *used.sheet;
  s.blocks.resize(3);
  s.processSlotMode = 5;
  s.transform[2][1] = 8;
  ASSERT_EQ(readSheet(file.bytes, 180, s), 0);
  EXPECT_EQ(s.partList.parts.size(), 2U);
  EXPECT_EQ(s.partList.nameWidth, 5);
  EXPECT_EQ(s.setupList.entries.size(), 2U);
  const Made unused = make(180, full);
  EXPECT_EQ(s.setupList.tailWord2, unused.sheet->setupList.tailWord2);
  EXPECT_EQ(s.partList.parts[1].width, unused.sheet->partList.parts[1].width);
  EXPECT_EQ(s.machine.extension.extensionEntries.size(), 2U);
  EXPECT_TRUE(s.workList.empty() && s.textEntries.empty() && s.namedWorkLists.empty() && s.blocks.empty());
  EXPECT_EQ(s.processSlotMode, 5);
  EXPECT_EQ(s.transform[2][1], 8.0F);

  const Made old = make(52, full);
  const Made late = make(180);
  ASSERT_EQ(readSheet(old.bytes, 52, *late.sheet), 0);
  const Made fresh = make(180);
  EXPECT_EQ(late.sheet->leadWords[5], fresh.sheet->leadWords[5]);
  EXPECT_EQ(late.sheet->textEntries.size(), 2U);
  EXPECT_EQ(late.sheet->lateValue, fresh.sheet->lateValue);
  EXPECT_EQ(late.sheet->utilization, fresh.sheet->utilization);
  EXPECT_EQ(std::memcmp(late.sheet->lateText, fresh.sheet->lateText, 256), 0);
  EXPECT_EQ(late.sheet->optionWord, fresh.sheet->optionWord);
  EXPECT_EQ(late.sheet->machine.path[0], '\0');
}

TEST(SheetBody, MachineDecidesBetweenItsExtensionListAndTheOptionWord) {
  for (bool extension : {false, true}) {
    Form form;
    form.extension = extension;
    const Made made = make(180, form);
    auto s = std::make_unique<OldSheet>();
    s->machine.hasExtension = extension ? 0 : 1;  // as read counts, not as held
    s->machine.extension.extensionEntries.resize(7);
    s->optionWord = 31;
    ASSERT_EQ(readSheet(made.bytes, 180, *s), 0);
    EXPECT_EQ(s->machine.extension.extensionEntries.size(), extension ? 2U : 7U);
    EXPECT_EQ(s->optionWord == 31, extension);
  }
}

TEST(SheetBody, ShorterTextsKeepTheBytesAfterThem) {
  const Form form = someForms(false)[1];
  const Made made = make(180, form);
  auto s = std::make_unique<OldSheet>();
  for (char* text : {s->sheetLabel, s->partTexts[0], s->partTexts[4], s->skeletonDosName, s->machine.path})
    std::memset(text, 'u', 256);
  ASSERT_EQ(readSheet(made.bytes, 180, *s), 0);
  for (const char* text : {s->sheetLabel, s->partTexts[0], s->partTexts[4]})
    EXPECT_EQ(std::string_view(text + 9, 247), std::string(247, 'u'));
  EXPECT_EQ(std::string_view(s->skeletonDosName + 3, 253), std::string(253, 'u'));
  EXPECT_STREQ(s->machine.path, "C:\\m.mch");
  EXPECT_EQ(std::string_view(s->machine.path + 9, 247), std::string(247, 'u'));
}

TEST(SheetBody, MachinePathIsCopiedUpToItsNulAndStoredWithWhatFollows) {
  Form form;
  form.writer = true;
  const Made made = make(180, form);
  const Piece& at = made.field("machine path");
  for (const std::string& text : {std::string(256, 'p'), std::string("a\0bc", 4), std::string()}) {
    const Bytes b = patched(made.bytes, at.begin, Bytes().text(256, text));
    auto s = std::make_unique<OldSheet>();
    ASSERT_EQ(readSheet(b, 180, *s), 0);
    EXPECT_EQ(std::string(s->machine.path), std::string(text.c_str()));
    EXPECT_EQ(s->machine.path[2], text.size() == 256 ? 'p' : '\0');
    std::memset(made.sheet->machine.path, 0, 260);
    std::memcpy(made.sheet->machine.path, text.data(), text.size());
    EXPECT_TRUE(writtenSheet(180, *made.sheet) == b);
  }
  // A load that does not get past the machine keeps the path; below version 61 it becomes empty.
  for (int version : {60, 180}) {
    const Made one = make(version);
    const std::size_t end = one.field("optionWord").begin;
    auto s = std::make_unique<OldSheet>();
    std::memcpy(s->machine.path, "used", 5);
    EXPECT_EQ(readSheet(one.bytes.cut(one.backAt + 10), version, *s), 1);
    EXPECT_STREQ(s->machine.path, "used");
    EXPECT_EQ(readSheet(one.bytes.cut(end), version, *s), 1);
    EXPECT_STREQ(s->machine.path, version == 60 ? "" : "C:\\m.mch");
  }
}

TEST(SheetBody, MachineLoadsTheTrailerOfTheSheetsShapesButASaveStoresNone) {
  for (int version : {79, 80, 152, 180}) {
    Made made = make(version);
    const std::size_t at = made.sections.at(kSheetMachine), plain = made.field("optionWord").begin - at;
    MachineForm form = machineOf({});
    form.shapes = true;
    Maker machine;
    storedMachine(machine, version, form, made.sheet->machine, made.sheet->shapes);
    const Bytes& with = machine.bytes;
    EXPECT_EQ(with.size(), plain + (version >= 80 ? 4 * someShapes().size() : 0U));
    auto s = std::make_unique<OldSheet>();
    std::size_t consumed = 0;
    const Bytes file = patched(made.bytes, at, with, plain);
    EXPECT_EQ(readSheet(file, version, *s, &consumed), 0);
    EXPECT_EQ(consumed, file.size());
    Checker c;
    storedMachine(c, version, form, s->machine, s->shapes);

    Form saving;
    saving.writer = true;
    Made saved = make(version, saving);
    saved.sheet->machine.shapesPresent = 1;
    saved.sheet->shapes.shapes[0].trailerValue = 70;
    EXPECT_TRUE(writtenSheet(version, *saved.sheet) == saved.bytes) << version;
    EXPECT_EQ(saved.sheet->machine.shapesPresent, 1);
  }
}

TEST(SheetBody, ParameterTableHasItsOwnVersion) {
  for (int own : {52, 60, 79, 80, 499}) {
    Form form;
    form.tableVersion = own;
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(make(180, form).bytes, 180, *s), 0) << own;
    check(180, form, *s);
    EXPECT_STREQ(s->machine.path, std::string(kMachinePath).c_str());
    form.writer = true;
    const Made saved = make(180, form);
    EXPECT_TRUE(writtenSheet(180, *saved.sheet) == saved.bytes) << own;
  }
  for (int none : {0, 1, 51, 53, 59, 503, 65535}) {
    const Made made = make(180);
    auto s = std::make_unique<OldSheet>();
    EXPECT_EQ(readSheet(patched(made.bytes, made.backAt + 4, Bytes().u16(static_cast<std::uint16_t>(none))), 180, *s),
              1)
        << none;
    EXPECT_EQ(s->paramTable.version, none);
    EXPECT_EQ(s->leadWords[0], 0U);
  }
}

TEST(SheetBody, LateTextIsReadAfterTheFirstBlock) {
  for (int blocks : {1, 2}) {
    Maker one;
    ShapeWorkBlock block;
    storedBlock(one, 161, block);
    const Made made = make(161);
    Bytes inserted = word(blocks);
    for (int i = 0; i < blocks; ++i) inserted.add(one.bytes);
    const Bytes b = patched(made.bytes, made.field("blocks").begin, inserted, 4);
    auto s = std::make_unique<OldSheet>();
    s->blocks.resize(2);
    EXPECT_EQ(readSheet(b, 161, *s), 0);
    EXPECT_TRUE(s->blocks.empty());
    const Bytes want = from(b, made.field("blocks").begin + 4 + one.bytes.size()).cut(256);
    EXPECT_EQ(std::memcmp(s->lateText, want.span().data(), 256), 0) << blocks;
  }
  for (int version : {152, 160, 161, 180}) {
    const Made made = make(version);
    auto s = std::make_unique<OldSheet>();
    const Bytes b = patched(made.bytes, made.field("blocks").begin, word(3)).cut(made.field("blocks").end);
    EXPECT_EQ(readSheet(b, version, *s), version >= 161 ? 1 : 0) << version;
    EXPECT_EQ(s->blocks.size(), 3U);
  }
}

// ---- a fresh sheet ---------------------------------------------------------------------------------

// The body of a fresh sheet as a save lays it out.
Bytes freshBytes(int version, std::int32_t machineWidth = 256) {
  return freshSheetBody(version, zeroParamBytes(tableVersionOf(version)), machineWidth);
}

TEST(SaveOldSheet, FreshSheetIsSavedAndLoadedAtEveryVersion) {
  const TempFolder folder;
  const std::string path = folder.path("fresh.sht");
  for (int version = 52; version <= kLastVersion; ++version) {
    OldSheet* fresh = CreateSheetInfo();
    ASSERT_NE(fresh, nullptr);
    ASSERT_EQ(SaveOldSheet(path.c_str(), fresh, static_cast<std::uint16_t>(version)), 0) << version;
    EXPECT_EQ(fresh->paramTable.version, 0);
    EXPECT_EQ(fresh->paramTable.nameLength, 0);
    EXPECT_EQ(fresh->machine.textWidth, 0);
    EXPECT_EQ(fresh->version, 0);
    DeleteSheetInfo(fresh);
    const Bytes want = Bytes().u16(static_cast<std::uint16_t>(version)).add(freshBytes(version));
    const Bytes file = TempFolder::read(path);
    EXPECT_TRUE(file == want) << version << " sizes " << file.size() << " " << want.size();
    auto s = std::make_unique<OldSheet>();
    ASSERT_EQ(LoadOldSheet(path.c_str(), s.get()), 0) << version;
    EXPECT_EQ(s->version, version);
    EXPECT_EQ(s->width, 60.0F);
    EXPECT_EQ(s->height, 45.0F);
    EXPECT_EQ(s->thickness, 0.048F);
    EXPECT_EQ(s->textWidth, 256);
    EXPECT_STREQ(s->sheetName, "NEW SHEET");
    EXPECT_EQ(s->paramTable.version, tableVersionOf(version));
    EXPECT_EQ(s->paramTable.nameLength, 1);
    EXPECT_EQ(s->machine.textWidth, 256);
    EXPECT_EQ(s->shapes.listKind, 0);
    EXPECT_EQ(s->partList.nameWidth, 256);
    // What came from a file is complete and can be saved again.
    EXPECT_EQ(SaveOldSheet(path.c_str(), s.get(), static_cast<std::uint16_t>(version)), 0);
  }
}

TEST(SaveOldSheet, MachineGetsATextWidthOnlyWithATableOfVersionZero) {
  auto s = std::make_unique<OldSheet>();
  bool ok = false;
  s->machine.textWidth = 8;
  EXPECT_TRUE(writtenSheet(180, *s, &ok) == freshBytes(180, 8));
  EXPECT_TRUE(ok);
  EXPECT_EQ(s->paramTable.version, 0);
  s->machine.textWidth = 0;
  EXPECT_TRUE(writtenSheet(57, *s, &ok) == freshBytes(57));
  EXPECT_TRUE(ok);
  EXPECT_EQ(s->machine.textWidth, 0);
  s->paramTable.version = 60;
  s->paramTable.nameLength = 4;
  writtenSheet(180, *s, &ok);
  EXPECT_FALSE(ok);  // a machine without a text width
  s->machine.textWidth = 256;
  writtenSheet(180, *s, &ok);
  EXPECT_TRUE(ok);
  s->paramTable.nameLength = 0;
  writtenSheet(180, *s, &ok);
  EXPECT_FALSE(ok);
  const auto table = std::make_unique<ParamTable>();
  bool tableOk = true;
  written([&](OutStream& to) { return WriteParamTable(to, *table); }, &tableOk);
  EXPECT_FALSE(tableOk);
}

TEST(SaveOldSheet, FreshSheetHasTheDefaults) {
  const std::unique_ptr<OldSheet, void (*)(OldSheet*)> s(CreateSheetInfo(), DeleteSheetInfo);
  ASSERT_NE(s, nullptr);
  Checker nothing(0);  // a file cut at once: every field at its default
  s->textWidth = 256;
  storedSheetFront(nothing, 180, someForms(false)[2], *s);
  storedSheetBack(nothing, 180, someForms(false)[2], *s);
  EXPECT_EQ(s->transformKind, 1);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(s->transform[i / 3][i % 3], i / 3 == i % 3 ? 1.0F : 0.0F);
  EXPECT_EQ(s->scratchShapes.listKind, 1);
  EXPECT_EQ(s->scratchShapes.listTag, -1);
  EXPECT_EQ(s->skeletonShapes.listKind, 1);
  EXPECT_EQ(s->shapes.listKind, 0);
  EXPECT_EQ(s->shapes.listTag, -1);
  EXPECT_EQ(s->processSlotMode, 1);
  EXPECT_EQ(s->auxiliaryFlag, 1);
  EXPECT_TRUE(s->auxiliaryList.empty());
  for (const ProcessSlot& slot : s->processSlots) EXPECT_TRUE(slot.slotKind == 3 && slot.firstLength == 0.25F);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(s->clampInfo.clampPositions[i], 5.5F * static_cast<float>(i + 1));
  EXPECT_EQ(s->clampInfo.clampCount, 2);
  EXPECT_EQ(SheetSetupEntry().entry.setupReal1, -1.0F);
  const SheetTextEntry text;
  for (const std::uint32_t one : {text.entryWord1, text.entryWord2, text.entryWord3, text.entryWord4, text.entryWord5,
                                  text.entryWord6, text.entryWord8, text.entryWord9})
    EXPECT_EQ(one, 0U);
  EXPECT_EQ(text.entryWord7, -1);
  const NamedWorkList named;
  EXPECT_EQ(named.listWord1, 0U);
  EXPECT_EQ(named.listWord2, 0U);
  EXPECT_EQ(named.listWord3, -1);
  EXPECT_EQ(ShapeWorkBlock().blockShapes.listTag, -1);
}

// ---- loads and saves -------------------------------------------------------------------------------

TEST(SaveOldSheet, OnlyTheRequestedVersionMatters) {
  const TempFolder folder;
  const std::string path = folder.path("s.sht");
  Form form;
  form.writer = true;
  for (int version : {52, 60, 153, 180}) {
    const Made made = make(version, form);
    made.sheet->version = 91;
    EXPECT_EQ(SaveOldSheet(path.c_str(), made.sheet.get(), static_cast<std::uint16_t>(version)), 0);
    EXPECT_TRUE(TempFolder::read(path) == Bytes().u16(static_cast<std::uint16_t>(version)).add(made.bytes)) << version;
    EXPECT_EQ(made.sheet->version, 91);
  }
}

TEST(SaveOldSheet, PathThatCannotBeOpenedReturnsMinusTwo) {
  const TempFolder folder;
  const Made made = make(180);
  EXPECT_EQ(SaveOldSheet(folder.path("no/such").c_str(), made.sheet.get(), 180), -2);
  EXPECT_EQ(SaveOldSheet(folder.path("no/such").c_str(), made.sheet.get(), 181), -2);
  EXPECT_EQ(SaveOldSheet("", made.sheet.get(), 180), -2);
  EXPECT_EQ(SaveOldSheet(folder.path("s.sht").c_str(), nullptr, 180), -2);
}

// In a record that already holds data a save changes only the choices of the material: not even the memory of a slot
// that was never used.
TEST(SaveOldSheet, RecordWithUntouchedSlotsKeepsItsBytes) {
  const TempFolder folder;
  Made made = make(180);
  made.sheet->processSlotCount = 100;
  ASSERT_EQ(SaveOldSheet(folder.path("a").c_str(), made.sheet.get(), 180), 0);
  made.sheet->processSlots = {};
  std::vector<std::byte> before(sizeof(OldSheet)), after(sizeof(OldSheet));
  std::memcpy(before.data(), static_cast<const void*>(made.sheet.get()), sizeof(OldSheet));
  ASSERT_EQ(SaveOldSheet(folder.path("a").c_str(), made.sheet.get(), 180), 0);
  std::memcpy(after.data(), static_cast<const void*>(made.sheet.get()), sizeof(OldSheet));
  EXPECT_TRUE(before == after);
}

TEST(OldSheetRecord, AssigningCopiesEveryFieldAndEveryList) {
  const Made made = make(180);
  OldSheet& one = *made.sheet;
  const auto other = std::make_unique<OldSheet>();
  bool ok = false;
  other->partList.parts.resize(5);
  *other = one;
  EXPECT_TRUE(writtenSheet(180, *other, &ok) == writtenSheet(180, one, &ok));
  ASSERT_FALSE(one.partList.parts.empty());
  one.partList.parts.clear();
  one.processSlots[0].firstToolNumber = 4321;
  one.machine.stationsA = {};
  EXPECT_FALSE(other->partList.parts.empty());
  EXPECT_NE(other->processSlots[0].firstToolNumber, 4321);
  EXPECT_FALSE(writtenSheet(180, *other, &ok) == writtenSheet(180, one, &ok));
}

TEST(LoadOldSheet, MissingAndShortFiles) {
  const TempFolder folder;
  auto s = std::make_unique<OldSheet>();
  s->version = 77;
  EXPECT_EQ(LoadOldSheet(folder.path("none").c_str(), s.get()), -2);
  EXPECT_EQ(LoadOldSheet("", s.get()), -2);
  EXPECT_EQ(LoadOldSheet(nullptr, s.get()), -2);
  EXPECT_EQ(LoadOldSheet(folder.write("empty", Bytes()).c_str(), s.get()), 1);
  EXPECT_EQ(LoadOldSheet(folder.write("one", Bytes().u8(180)).c_str(), s.get()), 1);
  EXPECT_EQ(s->version, 77);
  EXPECT_EQ(LoadOldSheet(folder.path("one").c_str(), nullptr), -2);
}

TEST(LoadOldSheet, VersionsFrom500OnAreReadWithTheNewestLayout) {
  const TempFolder folder;
  for (const Form& form : someForms(false)) {
    const Made made = make(180, form);
    for (int version : {52, 53, 150, 180, 500, 501, 32767}) {
      const bool newest = version >= 180;
      const Bytes body = newest ? made.bytes : make(version, form).bytes;
      const auto path = folder.write("s.sht", Bytes().u16(static_cast<std::uint16_t>(version)).add(body));
      auto s = std::make_unique<OldSheet>();
      EXPECT_EQ(LoadOldSheet(path.c_str(), s.get()), 0) << version;
      EXPECT_EQ(s->version, version);
      EXPECT_EQ(s->sheetPath[0], '\0');
      check(newest ? 180 : version, form, *s);
    }
  }
}

TEST(LoadOldSheet, TheCurrentSheetTakesKnownVersionsFrom54OnWhateverTheBody) {
  const TempFolder folder;
  const auto status = [&](const Bytes& file) { return LoadOldSheetInformation(folder.write("s.sht", file).c_str()); };
  EXPECT_EQ(status(Bytes()), 1);
  EXPECT_EQ(status(Bytes().u8(180)), 1);
  EXPECT_EQ(LoadOldSheetInformation(folder.path("none").c_str()), -2);
  EXPECT_EQ(LoadOldSheetInformation(""), -2);
  const Made made = make(180);
  EXPECT_EQ(status(Bytes().u16(180).add(made.bytes)), 0);
  EXPECT_EQ(status(Bytes().u16(180).add(made.bytes.cut(made.backAt))), 0);
  EXPECT_EQ(status(Bytes().u16(52).add(make(52).bytes)), -1);
  // A path longer than the record's field does no harm.
  std::string deep = folder.path("d");
  while (deep.size() < 300) deep += "/a-folder-with-a-long-name";
  std::filesystem::create_directories(deep);
  std::filesystem::copy_file(folder.path("s.sht"), deep + "/s.sht");
  EXPECT_EQ(LoadOldSheetInformation((deep + "/s.sht").c_str()), -1);
  folder.write("s.sht", Bytes().u16(54));
  std::filesystem::copy_file(folder.path("s.sht"), deep + "/t.sht");
  EXPECT_EQ(LoadOldSheetInformation((deep + "/t.sht").c_str()), 0);
}

// ---- the lists -------------------------------------------------------------------------------------

TEST(SheetLists, PartNamesEndAtTheirNulAndAreStoredWithWhatFollows) {
  for (int width : {1, 4, 255, 256}) {
    Maker body;
    SheetPartList stored;
    stored.parts.resize(1);
    TorvPart& part = stored.parts[0];
    storedPart(body, 162, StoredPartForm{true, true, 0}, part);
    stored.nameWidth = width;
    const std::size_t n = static_cast<std::size_t>(width);
    const std::string name = std::string("AB\0DEFG", 7), path = std::string(260, 'q');
    std::memset(part.partName, 0, 256);
    std::memcpy(part.partName, name.data(), name.size());
    std::memcpy(part.partFullDosName, path.data(), path.size());
    const Bytes b = word(1).i32(width).text(n, name).text(n, path).add(body.bytes);
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& to) { return WriteSheetPartList(to, 162, stored); }, &ok), b);
    EXPECT_TRUE(ok);
    SheetPartList list;
    ASSERT_EQ(readFrom(b, [&](InStream& from) { return ReadSheetPartList(from, 162, list); }), 0);
    ASSERT_EQ(list.parts.size(), 1U);
    EXPECT_STREQ(list.parts[0].partName, width == 1 ? "A" : "AB");
    EXPECT_EQ(std::string_view(list.parts[0].partFullDosName), path.substr(0, n));
    if (width >= 4) {
      EXPECT_EQ(list.parts[0].partName[3], ' ');  // of "NEW PART"
    }
    Checker again;
    storedPart(again, 162, StoredPartForm{true, true, 0}, list.parts[0]);
  }
}

TEST(SheetLists, TextEntriesAreEmptiedByAnyCount) {
  for (int version : {60, 179, 180}) {
    for (std::int64_t count : {0, -1}) {
      std::vector<SheetTextEntry> list(2);
      EXPECT_EQ(readFrom(word(count).cut(3), [&](InStream& s) { return ReadSheetTextEntries(s, version, list); }), 1);
      EXPECT_EQ(list.size(), 2U);
      EXPECT_EQ(readFrom(word(count), [&](InStream& s) { return ReadSheetTextEntries(s, version, list); }), 0);
      EXPECT_TRUE(list.empty());
    }
    Maker m;
    std::vector<SheetTextEntry> stored;
    storedTextEntries(m, version, 2, stored);
    EXPECT_EQ(m.bytes.size(), 4U + 2 * (8 + 768 + 16 + (version >= 180 ? 4U : 0U)));
    stored[0].entryWord2 = stored[0].entryWord8 = 5;
    stored[1].entryText4[0] = 'x';
    if (version < 180) stored[1].entryWord9 = 4;
    EXPECT_EQ(written([&](OutStream& to) { return WriteSheetTextEntries(to, version, stored); }), m.bytes);
    for (std::size_t cut = 4; cut <= m.bytes.size(); cut += cut % 97 == 5 ? 91 : 1) {
      std::vector<SheetTextEntry> list(5);
      const int result =
          readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadSheetTextEntries(s, version, list); });
      ASSERT_EQ(result, cut < m.bytes.size() ? 1 : 0) << cut;
      ASSERT_EQ(list.size(), (cut - 4) / ((m.bytes.size() - 4) / 2)) << cut;
      Checker c(cut);
      storedTextEntries(c, version, 2, list);
    }
  }
}

TEST(SheetLists, NamedWorkListsAreEmptiedBeforeAnythingIsRead) {
  for (int version : {60, 61, 80, 130, 180}) {
    const auto read = [&](const Bytes& b, std::vector<NamedWorkList>& list, std::size_t* used = nullptr) {
      return readFrom(
          b, [&](InStream& s) { return ReadNamedWorkLists(s, version, list); }, used);
    };
    for (const Bytes& b : {Bytes(), word(2).cut(3), word(0), word(-3)}) {
      std::vector<NamedWorkList> list(2);
      EXPECT_EQ(read(b, list), b.size() < 4 ? 1 : 0);
      EXPECT_TRUE(list.empty());
    }
    Maker m;
    std::vector<NamedWorkList> stored;
    storedNamedLists(m, version, 2, stored);
    EXPECT_EQ(written([&](OutStream& to) { return WriteNamedWorkLists(to, version, stored); }), m.bytes);
    for (std::size_t cut = 4; cut <= m.bytes.size(); ++cut) {
      std::vector<NamedWorkList> list(1);
      ASSERT_EQ(read(m.bytes.cut(cut), list), cut < m.bytes.size() ? 1 : 0) << cut;
      ASSERT_EQ(list.size(), (cut - 4) / ((m.bytes.size() - 4) / 2)) << cut;
      Checker c(cut);
      storedNamedLists(c, version, 2, list);
    }
    // A list without entries, or with fewer than none, is still a list.
    for (std::int64_t none : {0, -9}) {
      std::vector<NamedWorkList> list;
      EXPECT_EQ(read(word(1).text(256, "n").i32(1).i32(2).i32(3).i32(none), list), 0);
      ASSERT_EQ(list.size(), 1U);
      EXPECT_EQ(list[0].listWord3, 3);
      EXPECT_TRUE(list[0].entries.empty());
    }
  }
}

TEST(SheetLists, SetupListFailsOnlyForItsLastThreeFields) {
  Maker m;
  SheetSetupList stored;
  storedSheetSetup(m, 2, stored);
  EXPECT_EQ(m.bytes.size(), 4U + 3 * 66 + 16);
  bool ok = false;
  EXPECT_EQ(written([&](OutStream& to) { return WriteSheetSetupList(to, stored); }, &ok), m.bytes);
  EXPECT_TRUE(ok);
  for (std::size_t cut = 0; cut <= m.bytes.size(); ++cut) {
    SCOPED_TRACE(cut);
    SheetSetupList list;
    const int result = readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadSheetSetupList(s, list); });
    ASSERT_EQ(result, cut < 4 || cut == m.bytes.size() ? 0 : 1);
    ASSERT_EQ(list.entries.size(), cut < 4 ? 0U : 2U);
    Checker c(cut);
    storedSheetSetup(c, 2, list);
  }
}

TEST(SheetLists, SetupListCountOfZeroKeepsTheEntriesAndANegativeOneRemovesThem) {
  Maker m;
  SheetSetupList other;
  storedSheetSetup(m, 1, other);
  const Bytes tail = from(m.bytes, 4 + 66);
  for (const Bytes& b : {Bytes(), word(5).cut(2), word(0).add(tail)}) {
    SheetSetupList list;
    list.entries.resize(2);
    list.tailWord1 = 6;
    std::size_t used = 9;
    EXPECT_EQ(readFrom(
                  b, [&](InStream& s) { return ReadSheetSetupList(s, list); }, &used),
              0);
    EXPECT_EQ(used, b.size() < 4 ? b.size() : 4U);
    EXPECT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.tailWord1, 6U);
    EXPECT_EQ(list.current.setupReal1, -1.0F);
    EXPECT_EQ(list.current.setupReal2, -1.0F);
  }
  SheetSetupList list;
  list.entries.resize(2);
  EXPECT_EQ(readFrom(word(-4).add(tail), [&](InStream& s) { return ReadSheetSetupList(s, list); }), 0);
  EXPECT_TRUE(list.entries.empty());
  EXPECT_EQ(list.tailWord1, other.tailWord1);
  EXPECT_EQ(list.tailWord2, other.tailWord2);
  EXPECT_EQ(list.current.setupWord3, other.current.setupWord3);
  EXPECT_EQ(list.currentBlocks[2][7], other.currentBlocks[2][7]);
  // Without entries a save loses the tail.
  EXPECT_EQ(written([&](OutStream& to) { return WriteSheetSetupList(to, list); }), word(0));
}

TEST(SheetLists, SetupEntriesWithoutInputEndAt1024) {
  Maker m;
  SheetSetupList one;
  storedSheetSetup(m, 1, one);
  const Bytes entry = from(m.bytes, 4).cut(66);
  for (std::size_t more : {std::size_t{0}, std::size_t{10}, std::size_t{66}, std::size_t{66 + 42}}) {
    for (std::int64_t count : {std::int64_t{1000}, std::int64_t{3000}, kTwoBillion}) {
      SheetSetupList list;
      const Bytes b = word(count).add(Bytes(entry).add(entry).cut(more));
      EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadSheetSetupList(s, list); }), 1);
      const std::size_t paid = (more + 65) / 66;
      EXPECT_EQ(list.entries.size(), count == 1000 ? 1000U : paid + 1024) << more;
      EXPECT_EQ(list.entries.back().entry.setupReal2, -1.0F);
    }
  }
}

TEST(SheetLists, ExtensionEntriesFollowTheirCount) {
  const auto read = [](const Bytes& b, std::vector<MachineExtensionEntry>& list) {
    return readFrom(b, [&](InStream& s) { return ReadMachineExtensionEntries(s, list); });
  };
  std::vector<MachineExtensionEntry> list(2);
  EXPECT_EQ(read(word(1).cut(3), list), 1);
  EXPECT_EQ(read(word(0), list), 0);
  EXPECT_EQ(list.size(), 2U);
  EXPECT_EQ(read(word(-1), list), 0);
  EXPECT_TRUE(list.empty());
  Maker m;
  std::vector<MachineExtensionEntry> stored;
  storedExtensionEntries(m, 3, stored);
  EXPECT_EQ(m.bytes.size(), 4U + 3 * 32);
  EXPECT_EQ(written([&](OutStream& to) { return WriteMachineExtensionEntries(to, stored); }), m.bytes);
  EXPECT_EQ(written([&](OutStream& to) { return WriteMachineExtensionEntries(to, {}); }), word(0));
  for (std::size_t cut = 4; cut <= m.bytes.size(); ++cut) {
    list.assign(7, {});
    ASSERT_EQ(read(m.bytes.cut(cut), list), cut < m.bytes.size() ? 1 : 0);
    ASSERT_EQ(list.size(), (cut - 4) / 32);
    Checker c(cut);
    storedExtensionEntries(c, 3, list);
  }
}

TEST(SheetLists, CompleteBlockIsDroppedAndEndsTheList) {
  for (int version : {152, 158, 160, 161, 180}) {
    Maker one;
    ShapeWorkBlock block;
    storedBlock(one, version, block);
    const auto read = [&](const Bytes& b, std::vector<ShapeWorkBlock>& list, std::size_t& used) {
      return readFrom(
          b, [&](InStream& s) { return ReadShapeWorkBlocks(s, version, list); }, &used);
    };
    std::size_t used = 0;
    std::vector<ShapeWorkBlock> list(2);
    EXPECT_FALSE(read(word(1).cut(3), list, used));
    EXPECT_TRUE(list.empty());
    for (std::int64_t none : {0, -2}) {
      list.resize(2);
      EXPECT_TRUE(read(word(none).i32(1), list, used));
      EXPECT_EQ(used, 4U);
      EXPECT_TRUE(list.empty());
    }
    for (int count : {1, 2, 3}) {
      list.resize(2);
      EXPECT_FALSE(read(word(count).add(one.bytes).add(one.bytes), list, used)) << count;
      EXPECT_EQ(used, 4 + one.bytes.size());
      EXPECT_TRUE(list.empty());
    }
  }
}

TEST(SheetLists, IncompleteBlockIsKeptAsFarAsItWasRead) {
  for (int version : {152, 160}) {
    Maker m;
    ShapeWorkBlock block;
    m.stored(3);
    storedBlock(m, version, block);
    for (std::size_t cut = 4; cut < m.bytes.size(); ++cut) {
      SCOPED_TRACE(cut);
      std::vector<ShapeWorkBlock> list;
      ASSERT_TRUE(readFrom(m.bytes.cut(cut), [&](InStream& s) { return ReadShapeWorkBlocks(s, version, list); }));
      ASSERT_EQ(list.size(), 3U);
      Checker c(cut), none(0);
      c.stored(3);
      storedBlock(c, version, list[0]);
      storedBlock(none, version, list[2]);
    }
    // One that is refused in the midst of the file is kept too, and the next begins where it broke off.
    const std::size_t broken = 20 + 32 + 12 + 1 + 4 + 4 + 8;
    const Bytes good = from(m.bytes, 4);
    const Bytes b = word(2).add(good.cut(broken)).i32(10).add(good).i32(1);
    std::vector<ShapeWorkBlock> list;
    std::size_t used = 0;
    EXPECT_FALSE(readFrom(
        b, [&](InStream& s) { return ReadShapeWorkBlocks(s, version, list); }, &used));
    EXPECT_EQ(used, b.size() - 4);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].blockWords[4], block.blockWords[4]);
    EXPECT_EQ(list[0].blockShapes.listTag, block.blockShapes.listTag);
    EXPECT_TRUE(list[0].blockShapes.shapes.empty());
  }
}

TEST(SheetLists, BlocksWithoutInputEndAt1024) {
  for (std::size_t more : {std::size_t{0}, std::size_t{3}, std::size_t{4}, std::size_t{60}}) {
    for (std::int64_t count : {std::int64_t{1024}, std::int64_t{1100}, kTwoBillion}) {
      std::vector<ShapeWorkBlock> list;
      EXPECT_TRUE(readFrom(word(count).add(Bytes().zeros(more)),
                           [&](InStream& s) { return ReadShapeWorkBlocks(s, 180, list); }));
      EXPECT_EQ(list.size(), count == 1024 ? 1024U : 1024U + (more > 0 ? 1U : 0U)) << more << " " << count;
    }
  }
}

TEST(SheetLists, OnlyTheSecondBlockIsEverWritten) {
  EXPECT_EQ(written([&](OutStream& to) { return WriteShapeWorkBlocks(to, 180, {}); }), word(0));
  for (std::size_t count : {2U, 3U, 5U}) {
    Maker m;
    std::vector<ShapeWorkBlock> blocks(count);
    m.stored(static_cast<std::int32_t>(count));
    storedBlock(m, 180, blocks[1]);
    bool ok = true;
    EXPECT_EQ(written([&](OutStream& to) { return WriteShapeWorkBlocks(to, 180, blocks); }, &ok), m.bytes);
    EXPECT_FALSE(ok);
    // In a sheet that result is ignored.
    Form form;
    form.writer = true;
    const Made made = make(180, form);
    made.sheet->blocks = blocks;
    EXPECT_TRUE(writtenSheet(180, *made.sheet, &ok) == patched(made.bytes, made.field("blocks").begin, m.bytes, 4));
    EXPECT_TRUE(ok);
    const Made older = make(151, form);
    older.sheet->blocks = blocks;
    EXPECT_TRUE(writtenSheet(151, *older.sheet, &ok) == older.bytes);
  }
}

TEST(SheetLists, WhereTheSecondBlockCannotBeStoredTheThirdIs) {
  std::vector<ShapeWorkBlock> blocks(3);
  Maker m;
  storedBlock(m, 180, blocks[2]);
  blocks[1].blockShapes.shapes.resize(1);
  blocks[1].blockShapes.shapes[0].valueCount = 10;
  bool ok = true;
  const Bytes b = written([&](OutStream& to) { return WriteShapeWorkBlocks(to, 180, blocks); }, &ok);
  EXPECT_FALSE(ok);
  ASSERT_GT(b.size(), m.bytes.size());
  EXPECT_EQ(from(b, b.size() - m.bytes.size()), m.bytes);
}

TEST(SheetListsDeathTest, SaveOfASingleBlockEndsTheProcess) {
  std::vector<ShapeWorkBlock> blocks(1);
  EXPECT_DEATH(written([&](OutStream& to) { return WriteShapeWorkBlocks(to, 180, blocks); }), "");
  std::vector<ShapeWorkBlock> none(3);
  for (ShapeWorkBlock& block : none) {
    block.blockShapes.shapes.resize(1);
    block.blockShapes.shapes[0].valueCount = 10;
  }
  none[0] = {};  // the first is never stored
  EXPECT_DEATH(written([&](OutStream& to) { return WriteShapeWorkBlocks(to, 180, none); }), "");
  const Made made = make(152);
  made.sheet->blocks = blocks;
  EXPECT_DEATH(writtenSheet(152, *made.sheet), "");
  // An older layout has no blocks.
  bool ok = false;
  writtenSheet(151, *made.sheet, &ok);
  EXPECT_TRUE(ok);
}

}  // namespace
