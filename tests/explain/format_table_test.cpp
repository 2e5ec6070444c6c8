// Stored forms told as tables.
#include "torvio/explain/format_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>

#include "torvio/explain/format_printer.h"

namespace {

using namespace oldtorvio;
using namespace oldtorvio::codec;
using explain::FormatPrinter;

struct Named {
  std::int32_t unseen = 0;
};

struct Small {
  std::uint8_t smallByte = 0;
  std::int32_t extra = 0;
};

// A record that meets every verb.
struct Sample {
  std::int16_t first = 0;
  float real = 0;
  double wide = 0;
  std::uint8_t raw[3] = {}, mode = 0;
  char text[8] = {}, sizedText[8] = {}, oldName[4] = {};
  std::string lengthNote, longNote, column;
  std::uint32_t row[5] = {}, slots[9] = {};
  std::int32_t word1 = 0, word2 = 0, word3 = 0, kept = 0, count = 0, textWidth = 0, kind = 0, signedMode = 0;
  float late = 0, never = 0, ranged = 0, forgiven = 0, lost = 0, ended = 0, onlyReader = 0, onlyWriter = 0;
  Small small;
  Named named, freshNamed;
  std::vector<Small> smalls, more, runOfSmalls, rest, reused, firsts, lasts, one;
  std::vector<Named> others;
  std::vector<std::int32_t> numbers;
  std::int32_t inRow[4] = {};
};

}  // namespace

template <>
inline constexpr std::string_view oldtorvio::explain::kTableOf<Named> = "named record";

template <>
struct oldtorvio::codec::Layout<Named> {
  static bool describe(auto& io, auto& n) { return io.fields(FIELDS(n.unseen)); }
};

template <>
struct oldtorvio::codec::Layout<Small> {
  static bool describe(auto& io, auto& s) { return io.fields(FIELDS(s.smallByte)) && io.since(90, FIELDS(s.extra)); }
};

template <>
struct oldtorvio::codec::Layout<Sample> {
  static bool describe(auto& io, auto& s) {
    std::int32_t secondCount = 0;
    return io.fields(FIELDS(s.first, block(s.real, s.wide), s.raw, s.text, s.row)) &&
           io.fields(FIELDS(s.word1, s.word2, s.word3, as<std::int16_t>(s.kind), s.mode, s.signedMode)) &&
           io.since(80, FIELDS(s.late), otherwise(0.5F)) && io.below(110, FIELDS(s.never)) && io.between(112, 120, FIELDS(s.ranged)) &&
           io.range(FIELDS(s.kind), 0, 3) && io.atMost(FIELDS(s.word2), 7) && io.slice(FIELDS(s.slots), 2, 4) &&
           io.template sliceAs<std::int8_t>(FIELDS(s.slots), 5, 8) && io.nonZero(FIELDS(s.kept)) &&
           io.fields(FIELDS(s.textWidth, s.count)) && io.sized(FIELDS(s.sizedText), s.textWidth) &&
           io.bytesOrOne(FIELDS(s.oldName), 4) && io.lengthText(FIELDS(s.lengthNote)) &&
           io.lengthTextOrEmpty(FIELDS(s.longNote), 50) && io.template textItem<256>(FIELDS(s.column)) && io.reserved(7) &&
           io.padded(30, [&] { return io.fields(FIELDS(s.kept)); }) && io.leading(s.count, FIELDS(s.row)) &&
           io.when(s.mode == 2, [&] { return io.since(130, [&] { return io.record(FIELDS(s.named)); }); }) &&
           io.when(s.mode != 0, [&] { return io.record(FIELDS(s.small)); }) && io.when(s.signedMode > 0, FIELDS(s.forgiven)) &&
           io.when(s.signedMode < 0 && s.mode == 1, FIELDS(s.lost)) && io.afterRead(s, [](auto& r) { r.real = 1; }) &&
           io.replaced(FIELDS(s.freshNamed)) && io.countFirst(FIELDS(s.smalls)) && io.countThenClear(FIELDS(s.others)) &&
           io.clear(FIELDS(s.more)) && io.append(FIELDS(s.more)) && io.counted(s.count, FIELDS(s.runOfSmalls)) &&
           io.appendRun(1 + s.count, FIELDS(s.rest)) && io.reusedElement(FIELDS(s.reused)) &&
           io.interleaved(FIELDS(s.firsts, s.lasts)) && io.single(FIELDS(s.one)) && io.trailer(FIELDS(s.smalls), &Small::extra) &&
           io.countFirst(FIELDS(s.numbers)) && io.fields(FIELDS(secondCount)) &&
           io.rows(secondCount, [&](std::size_t i) { return io.fields(FIELDS(s.inRow[i])); }) &&
           io.differs([&] { return io.fields(FIELDS(s.onlyReader)); }, [&] { return io.fields(FIELDS(s.onlyWriter)); }) &&
           io.optionalTail([&] { return io.since(161, FIELDS(s.ended)); });
  }
};

namespace {

std::string sampleTable() {
  return FormatPrinter::table([](FormatPrinter& teller) {
    Sample sample;
    EXPECT_TRUE(teller.walk(sample));
  });
}

// A table without its row numbers.
std::vector<std::string> rowsOf(const std::string& table) {
  std::vector<std::string> rows;
  for (std::size_t from = 0, end = 0; (end = table.find('\n', from)) != std::string::npos; from = end + 1) {
    const std::string line = table.substr(from, end - from);
    rows.push_back(line.substr(line.find('|', 1)));
  }
  return rows;
}

TEST(FormatTable, TellsEveryVerbInAWordOfItsOwn) {
  const std::vector<std::string> expected{
      "| field | stored as | condition |",
      "|---|---|---|",
      "| first | i16 | |",
      "| real, wide | block of f32, f64 | |",
      "| raw | raw 3 | |",
      "| text | text 8 | |",
      "| row | 5 × u32 | |",
      "| word1 to word3 | i32 each | word2 refused above 7 |",
      "| kind | i16 | refused outside 0 to 3 |",
      "| mode | u8 | |",
      "| signedMode | i32 | |",
      "| late | f32 | since 80; 0.5 below |",
      "| never | f32 | below 110 |",
      "| ranged | f32 | 112 to 120 |",
      "| slots[2..4] | 3 × u32 | |",
      "| slots[5..8] | 4 × i8 | |",
      "| kept | i32 | a stored 0 keeps what the record holds |",
      "| textWidth, count | i32 each | |",
      "| sizedText | text textWidth | |",
      "| oldName | text 4 | the file may end behind its first byte |",
      "| lengthNote | length text | |",
      "| longNote | length text | a length above 50 is refused |",
      "| column | text 256 | |",
      "| reserved | 7 bytes | dropped |",
      "| kept | i32 | |",
      "| fill | up to 30 bytes with the rows above | dropped; more than that is a failed read |",
      "| row | count × u32 | the first of 5 |",
      "| named | named record | since 130, if mode is 2 |",
      "| small.smallByte | u8 | if mode is not 0 |",
      "| small.extra | i32 | since 90, if mode is not 0 |",
      "| forgiven | f32 | if signedMode is above 0 |",
      "| lost | f32 | depends on earlier fields or on where it stands |",
      "| freshNamed | named record | read into a fresh one |",
      "| smalls | count-first list | |",
      "| smalls[i].smallByte | u8 | |",
      "| smalls[i].extra | i32 | since 90 |",
      "| others | list (named record) | |",
      "| more | list behind what there is | |",
      "| more[i].smallByte | u8 | |",
      "| more[i].extra | i32 | since 90 |",
      "| runOfSmalls | count times, 0 keeps the list | |",
      "| runOfSmalls[i].smallByte | u8 | |",
      "| runOfSmalls[i].extra | i32 | since 90 |",
      "| rest | 1 + count times | |",
      "| rest[i].smallByte | u8 | |",
      "| rest[i].extra | i32 | since 90 |",
      "| reused | list, one element read over and over | |",
      "| reused[i].smallByte | u8 | |",
      "| reused[i].extra | i32 | since 90 |",
      "| firsts | count-first list, in turns with the next | |",
      "| firsts[i].smallByte | u8 | |",
      "| firsts[i].extra | i32 | since 90 |",
      "| lasts | in turns with the one before | |",
      "| lasts[i].smallByte | u8 | |",
      "| lasts[i].extra | i32 | since 90 |",
      "| one | one, without a count | |",
      "| one[i].smallByte | u8 | |",
      "| one[i].extra | i32 | since 90 |",
      "| smalls | one i32 for each, without a count | |",
      "| numbers | count-first list (i32) | |",
      "| secondCount | i32 | |",
      "| inRow[i] | i32 | for each of secondCount |",
      "| onlyReader | f32 | reader |",
      "| onlyWriter | f32 | writer |",
      "| ended | f32 | since 161, tail |",
  };
  const std::vector<std::string> rows = rowsOf(sampleTable());
  ASSERT_EQ(rows.size(), expected.size()) << sampleTable();
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], expected[i]);
}

TEST(FormatTable, RowsAreNumberedFromOne) {
  const std::string table = sampleTable();
  EXPECT_NE(table.find("\n| 1 | first | "), std::string::npos);
  EXPECT_NE(table.find("\n| 63 | ended | "), std::string::npos);
}

// A condition of each sort, and how it is told.
TEST(FormatTable, ConditionsAreFoundOutFromTheFieldsThatChangeThem) {
  struct Case {
    bool (*isStored)(int);
    const char* text;
  };
  const Case cases[] = {
      {[](int v) { return v == 2; }, "if asked is 2"},
      {[](int v) { return v != 0; }, "if asked is not 0"},
      {[](int v) { return v == 1 || v == 2; }, "if asked is 1 or 2"},
      {[](int v) { return v > 0; }, "if asked is above 0"},
      {[](int v) { return v < 0; }, "if asked is below 0"},
      {[](int v) { return v >= 0; }, "if asked is 0 or above"},
      {[](int v) { return v < 2; }, "if asked is 1 or below"},
      {[](int v) { return v == -1 || v == 1; }, "if asked is -1, 1"},
      {[](int v) { return v != 2; }, "if asked is not 2"},
      {[](int v) { return v != 3; }, "if asked is 2 or below"},
      {[](int v) { return v != -2; }, "if asked is -1 or above"},
      {[](int v) { return v == 4; }, "depends on earlier fields or on where it stands"},
      {[](int v) { return v == 32000; }, "depends on earlier fields or on where it stands"},
  };
  for (const Case& one : cases) {
    const std::string table = FormatPrinter::table([&](FormatPrinter& teller) {
      float before = 0;
      std::int32_t unasked = 0, asked = 0, stored = 0;
      EXPECT_TRUE(teller.fields(FIELDS(before, unasked, asked)) && teller.when(one.isStored(asked), FIELDS(stored)));
    });
    EXPECT_NE(table.find(std::string("| stored | i32 | ") + one.text + " |\n"), std::string::npos) << table;
  }
}

TEST(FormatTable, NamesThatCountOnAreToldByTheFirstAndTheLast) {
  const std::string table = FormatPrinter::table([](FormatPrinter& teller) {
    std::int32_t a1 = 0, b2 = 0, c3 = 0, v0 = 0, v1 = 0, v2 = 0, w = 0, w0 = 0, w1 = 0, x9 = 0, x10 = 0, x11 = 0;
    std::int32_t y1 = 0, y2 = 0, m123456 = 0, m123457 = 0, m123458 = 0, n1234567 = 0, n1234568 = 0, n1234569 = 0;
    EXPECT_TRUE(teller.fields(FIELDS(a1, b2, c3, v0, v1, v2, w, w0, w1, x9, x10, x11, y1, y2, m123456, m123457, m123458,
                                n1234567, n1234568, n1234569)));
  });
  EXPECT_EQ(rowsOf(table).back(),
            "| a1, b2, c3, v0 to v2, w, w0, w1, x9 to x11, y1, y2, m123456 to m123458, n1234567, n1234568, n1234569 "
            "| i32 each | |");
}

TEST(FormatTable, TheLeastOfEachVerbIsToldAsAnyOther) {
  const std::string table = FormatPrinter::table([](FormatPrinter& teller) {
    std::int32_t blockSize = 0, kind = 0, early = 0, number = 0, inRow[2] = {};
    float turn = 0;
    char text[8] = {};
    EXPECT_TRUE(teller.fields(FIELDS(blockSize, kind)) && teller.range(FIELDS(kind), 0, 3) && teller.atMost(FIELDS(kind), 2) &&
                teller.sized(FIELDS(text), blockSize) && teller.since(1, FIELDS(early)) && teller.reserved(1) &&
                teller.since(80, FIELDS(turn), codec::otherwise(1.5707964F)) &&
                teller.rows(1, [&](std::size_t i) { return teller.fields(FIELDS(inRow[i])); }) && teller.record(FIELDS(number)));
  });
  const std::vector<std::string> expected{
      "| blockSize, kind | i32 each | kind refused outside 0 to 3; kind refused above 2 |",
      "| text | text blockSize | |",
      "| early | i32 | since 1 |",
      "| reserved | 1 bytes | dropped |",
      "| turn | f32 | since 80; 1.5708 below |",
      "| inRow[i] | i32 | for each of 1 |",
      "| number.value | i32 | |"};
  std::vector<std::string> rows = rowsOf(table);
  rows.erase(rows.begin(), rows.begin() + 2);
  EXPECT_EQ(rows, expected);
}

TEST(FormatTable, RecordsWithoutAPageHaveTheirColumns) {
  const std::string pattern = explain::recordTable("pattern");
  EXPECT_NE(pattern.find("| bindings | i32 count and rows | "), std::string::npos) << pattern;
  EXPECT_NE(pattern.find("a count below 1 keeps the columns |\n"), std::string::npos);
  EXPECT_NE(pattern.find("| bindings[i].third | "), std::string::npos);
  EXPECT_NE(explain::recordTable("material-body").find("| name | length text | "), std::string::npos);
  EXPECT_NE(explain::formatTable(explain::FileKind::part).find("partKind"), std::string::npos);
}

TEST(FormatTable, AConditionOfTwoFieldsIsOnlyToldToDependOnThem) {
  const std::string table = FormatPrinter::table([](FormatPrinter& teller) {
    std::int32_t one = 0, other = 0, stored = 0;
    EXPECT_TRUE(teller.fields(FIELDS(one, other)) && teller.when(one == 1 || other == 1, FIELDS(stored)));
  });
  EXPECT_NE(table.find("| stored | i32 | depends on earlier fields |\n"), std::string::npos) << table;
}

TEST(FormatTable, AKnownPlaceSettlesTheConditionsThatNoFieldChanges) {
  for (const bool isInGroup : {false, true}) {
    const std::string table = FormatPrinter::table(
        [&](FormatPrinter& teller) {
          std::int32_t always = 0, inGroup = 0;
          EXPECT_TRUE(teller.fields(FIELDS(always)) && teller.when(isInGroup, FIELDS(inGroup)));
        },
        FormatPrinter::Place::given);
    EXPECT_EQ(table.find("inGroup") != std::string::npos, isInGroup);
    EXPECT_EQ(table.find("depends"), std::string::npos);
  }
}

TEST(FormatTable, EveryKindAndEveryNamedRecordHasATable) {
  std::set<std::string> tables;
  for (const explain::KindName& kind : explain::fileKinds()) {
    const std::string table = explain::formatTable(kind.kind);
    EXPECT_TRUE(rowsOf(table).size() > 4 && table.find("| 1 | version | i16 | |\n") != std::string::npos) << kind.name;
    EXPECT_TRUE(tables.insert(table).second) << kind.name;
  }
  for (const std::string_view name : explain::recordNames()) {
    const std::string table = explain::recordTable(name);
    EXPECT_GT(rowsOf(table).size(), 3U) << name;
    EXPECT_TRUE(tables.insert(table).second) << name;
  }
  EXPECT_EQ(explain::recordTable("nonsense"), "");
}

TEST(FormatTable, RecordsOfSeveralFilesAreToldByTheirNames) {
  const std::string macro = explain::formatTable(explain::FileKind::macro);
  EXPECT_NE(macro.find("| shapes | shape list | |\n"), std::string::npos) << macro;
  EXPECT_EQ(macro.find("auxValue2"), std::string::npos) << macro;
  const std::string machine = explain::formatTable(explain::FileKind::machine);
  EXPECT_NE(machine.find("| material | material body | since 80 |\n"), std::string::npos);
  EXPECT_NE(machine.find("| lateByteC | u8 | since 152, tail, reader |\n"), std::string::npos);
  EXPECT_NE(machine.find("| lateByteC | u8 | writer |\n"), std::string::npos);
}

}  // namespace
