// Stored forms as tables.
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

// A record that uses every verb.
struct Sample {
  std::int16_t first = 0;
  float real = 0;
  double wide = 0;
  std::uint8_t raw[3] = {}, mode = 0;
  char text[8] = {}, sizedText[8] = {}, oldName[4] = {}, defaultName[4] = {};
  std::string lengthNote, longNote, column;
  std::uint32_t row[5] = {}, slots[9] = {};
  std::int32_t defaultRow[2] = {}, defaultWord = 0;
  std::int32_t word1 = 0, word2 = 0, word3 = 0, kept = 0, count = 0, textWidth = 0, kind = 0, signedMode = 0;
  float late = 0, never = 0, ranged = 0, forgiven = 0, lost = 0, ended = 0, onlyReader = 0, onlyWriter = 0;
  Small small;
  Named named;
  std::vector<Small> smalls, more, runOfSmalls, rest, reused, firsts, lasts, one;
  std::vector<Named> others, othersKept, inverted;
  std::vector<std::int32_t> numbers;
  std::int32_t inRow[4] = {}, inColumn[4] = {};
  std::vector<Named> cleared;
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
           io.since(80, FIELDS(s.late), otherwise(0.5F)) && io.below(110, FIELDS(s.never)) &&
           io.since(90, FIELDS(s.oldName, s.defaultName), otherwise("", "none")) &&
           io.since(90, FIELDS(s.defaultRow, s.defaultWord), otherwise(-1)) && io.between(112, 120, FIELDS(s.ranged)) &&
           io.require(within(FIELDS(s.kind), 0, 3)) && io.require(atMost(FIELDS(s.word2), 7)) &&
           io.slice(FIELDS(s.slots), 2, 4) && io.template slice<std::int8_t>(FIELDS(s.slots), 5, 8) &&
           io.fields(FIELDS(nonZero(s.kept))) && io.fields(FIELDS(s.textWidth, s.count)) &&
           io.sized(FIELDS(s.sizedText), s.textWidth) && io.lengthText(FIELDS(s.lengthNote)) &&
           io.lengthText(FIELDS(s.longNote), 50) && io.template textItem<256>(FIELDS(s.column)) && io.reserved(7) &&
           io.padded(30, [&] { return io.fields(FIELDS(s.kept)); }) && io.leading(s.count, FIELDS(s.row)) &&
           io.when(equals(FIELDS(s.mode), 2),
                   [&] { return io.since(130, [&] { return io.record(FIELDS(s.named)); }); }) &&
           io.when(notEquals(FIELDS(s.mode), 0), [&] { return io.record(FIELDS(s.small)); }) &&
           io.when(above(FIELDS(s.signedMode), 0), FIELDS(s.forgiven)) &&
           io.when(decided(within(FIELDS(s.signedMode), 60, 499), false), FIELDS(s.lost)) &&
           io.afterRead(s, "real becomes 1", [](auto& r) { r.real = 1; }) && io.keep(s, [](auto&) {}) &&
           io.beforeWrite(s, "real becomes 2", [](auto& r) { r.real = 2; }) && io.list(FIELDS(s.smalls), kCountFirst) &&
           io.list(FIELDS(s.others), kReplaced) && io.clear(FIELDS(s.more)) && io.list(FIELDS(s.more), kAppended) &&
           io.list(FIELDS(s.runOfSmalls), counted(s.count)) && io.list(FIELDS(s.rest), appended(1 + s.count)) &&
           io.list(FIELDS(s.othersKept), appendedAndKept(s.count)) && io.list(FIELDS(s.reused), kReusedElement) &&
           io.list(FIELDS(s.inverted), kInvertedSuccess) && io.list(FIELDS(s.firsts, s.lasts), kCountFirst) &&
           io.list(FIELDS(s.one), kSingle) && io.trailer(FIELDS(s.smalls), &Small::extra) &&
           io.list(FIELDS(s.numbers), kCountFirst) && io.fields(FIELDS(secondCount)) &&
           io.rows(secondCount, [&](std::size_t i) { return io.fields(FIELDS(s.inRow[i])); }) &&
           io.rows(computed("text of the record", s.count),
                   [&](std::size_t i) { return io.fields(FIELDS(s.inRow[i])) && io.fields(FIELDS(s.inColumn[i])); }) &&
           io.leading(computed("as many as the type has", s.count), FIELDS(s.row)) &&
           io.reserved(computed("as many bytes as the type has", std::size_t{2})) &&
           io.list(FIELDS(s.cleared), kClearedFirst) &&
           io.differs([&] { return io.fields(FIELDS(s.onlyReader)); },
                      [&] { return io.fields(FIELDS(s.onlyWriter)); }) &&
           io.optionalTail([&] { return io.since(161, FIELDS(s.ended)); }) &&
           io.require(custom("nothing follows", false));
  }
};

namespace {

std::string sampleTable() {
  return FormatPrinter::table([](FormatPrinter& printer) {
    Sample sample;
    EXPECT_TRUE(printer.walk(sample));
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

TEST(FormatTable, DescribesEveryVerbInWordsOfItsOwn) {
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
      "| oldName | text 4 | since 90; empty below |",
      "| defaultName | text 4 | since 90; none below |",
      "| defaultRow | 2 × i32 | since 90; -1 below |",
      "| defaultWord | i32 | since 90; -1 below |",
      "| ranged | f32 | 112 to 120 |",
      "| slots[2..4] | 3 × u32 | |",
      "| slots[5..8] | 4 × i8 | |",
      "| kept | i32, 0 keeps what the record holds | |",
      "| textWidth, count | i32 each | |",
      "| sizedText | text textWidth | |",
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
      "| lost | f32 | if signedMode is 60 to 499 |",
      "| (load) | | real becomes 1 |",
      "| (save) | | real becomes 2 |",
      "| smalls | count-first list | |",
      "| smalls[i].smallByte | u8 | |",
      "| smalls[i].extra | i32 | since 90 |",
      "| others | list (named record) | |",
      "| (load) | | more is emptied |",
      "| more | list, appended | |",
      "| more[i].smallByte | u8 | |",
      "| more[i].extra | i32 | since 90 |",
      "| runOfSmalls | count times, 0 keeps the list | |",
      "| runOfSmalls[i].smallByte | u8 | |",
      "| runOfSmalls[i].extra | i32 | since 90 |",
      "| rest | 1 + count times | |",
      "| rest[i].smallByte | u8 | |",
      "| rest[i].extra | i32 | since 90 |",
      "| othersKept | count times, elements that are cut off are kept (named record) | |",
      "| reused | list, all elements are read into one object | |",
      "| reused[i].smallByte | u8 | |",
      "| reused[i].extra | i32 | since 90 |",
      "| inverted | list, a complete element ends it and is dropped (named record) | |",
      "| firsts | count-first list, alternating with the next | |",
      "| firsts[i].smallByte | u8 | |",
      "| firsts[i].extra | i32 | since 90 |",
      "| lasts | alternating with the one before | |",
      "| lasts[i].smallByte | u8 | |",
      "| lasts[i].extra | i32 | since 90 |",
      "| one | one, without a count | |",
      "| one[i].smallByte | u8 | |",
      "| one[i].extra | i32 | since 90 |",
      "| smalls | one i32 for each, without a count | |",
      "| numbers | count-first list (i32) | |",
      "| secondCount | i32 | |",
      "| inRow[i] | i32 | for each of secondCount |",
      "| inRow[i] | i32 | for each text of the record: rows 68 and 69 |",
      "| inColumn[i] | i32 | for each text of the record: rows 68 and 69 |",
      "| row | u32, as many as the type has | the first of 5 |",
      "| reserved | as many bytes as the type has | dropped |",
      "| cleared | list, emptied before its count (named record) | |",
      "| onlyReader | f32 | reader |",
      "| onlyWriter | f32 | writer |",
      "| ended | f32 | since 161, tail |",
      "| end | | refused: nothing follows |",
  };
  const std::vector<std::string> rows = rowsOf(sampleTable());
  ASSERT_EQ(rows.size(), expected.size()) << sampleTable();
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], expected[i]);
}

TEST(FormatTable, RowsAreNumberedFromOne) {
  const std::string table = sampleTable();
  EXPECT_NE(table.find("\n| 1 | first | "), std::string::npos);
  EXPECT_NE(table.find("\n| 75 | ended | "), std::string::npos);
}

TEST(FormatTable, EachConditionIsPrintedWithItsFieldAndValues) {
  const std::string table = FormatPrinter::table([](FormatPrinter& printer) {
    std::int32_t mode = 0, a = 0, b = 0, c = 0, d = 0, e = 0, f = 0, g = 0, h = 0, i = 0, j = 0;
    EXPECT_TRUE(
        printer.fields(FIELDS(mode)) && printer.when(equals(FIELDS(mode), -1), FIELDS(a)) &&
        printer.when(notEquals(FIELDS(mode), 0), FIELDS(b)) && printer.when(above(FIELDS(mode), 0), FIELDS(c)) &&
        printer.when(atMost(FIELDS(mode), 7), FIELDS(d)) && printer.when(within(FIELDS(mode), 2, 5), FIELDS(e)) &&
        printer.when(oneOf(FIELDS(mode), 1, 2, 4), FIELDS(f)) && printer.when(atLeast(FIELDS(mode), 80), FIELDS(g)) &&
        printer.when(custom("in a sheet", false), FIELDS(h)) &&
        printer.when(inRanges(FIELDS(mode), codec::Range{52, 52}, codec::Range{60, 502}), FIELDS(i)) &&
        printer.when(within(FIELDS(mode), 3, codec::GrownLimit{6, 110, 4}, 109), FIELDS(j)));
  });
  const std::vector<std::string> expected{"| a | i32 | if mode is -1 |",
                                          "| b | i32 | if mode is not 0 |",
                                          "| c | i32 | if mode is above 0 |",
                                          "| d | i32 | if mode is at most 7 |",
                                          "| e | i32 | if mode is 2 to 5 |",
                                          "| f | i32 | if mode is 1 or 2 or 4 |",
                                          "| g | i32 | if mode is 80 or above |",
                                          "| h | i32 | in a sheet |",
                                          "| i | i32 | if mode is 52 or 60 to 502 |",
                                          "| j | i32 | if mode is 3 to 6 (4 below version 110) |"};
  std::vector<std::string> rows = rowsOf(table);
  rows.erase(rows.begin(), rows.begin() + 3);
  EXPECT_EQ(rows, expected);
}

TEST(FormatTable, RequirementsArePrintedAtTheirField) {
  const std::string table = FormatPrinter::table([](FormatPrinter& printer) {
    std::int32_t a = 0, b = 0, c = 0, d = 0;
    EXPECT_TRUE(printer.fields(FIELDS(a)) && printer.require(within(FIELDS(a), 1, 2)) && printer.fields(FIELDS(b)) &&
                printer.require(atMost(FIELDS(b), 9)) && printer.fields(FIELDS(c)) &&
                printer.require(equals(FIELDS(c), 0)) && printer.fields(FIELDS(d)) &&
                printer.require(notEquals(FIELDS(d), 1)));
  });
  for (const char* row : {"| a | i32 | refused outside 1 to 2 |", "| b | i32 | refused above 9 |",
                          "| c | i32 | refused unless 0 |", "| d | i32 | refused if 1 |"})
    EXPECT_NE(table.find(row), std::string::npos) << table;
}

TEST(FormatTable, NumberedNamesArePrintedAsTheFirstAndTheLast) {
  const std::string table = FormatPrinter::table([](FormatPrinter& printer) {
    std::int32_t a1 = 0, b2 = 0, c3 = 0, v0 = 0, v1 = 0, v2 = 0, w = 0, w0 = 0, w1 = 0, x9 = 0, x10 = 0, x11 = 0;
    std::int32_t y1 = 0, y2 = 0, m123456 = 0, m123457 = 0, m123458 = 0, n1234567 = 0, n1234568 = 0, n1234569 = 0;
    EXPECT_TRUE(printer.fields(FIELDS(a1, b2, c3, v0, v1, v2, w, w0, w1, x9, x10, x11, y1, y2, m123456, m123457,
                                      m123458, n1234567, n1234568, n1234569)));
  });
  EXPECT_EQ(rowsOf(table).back(),
            "| a1, b2, c3, v0 to v2, w, w0, w1, x9 to x11, y1, y2, m123456 to m123458, n1234567, n1234568, n1234569 "
            "| i32 each | |");
}

TEST(FormatTable, SmallestValuesArePrintedAsAnyOther) {
  const std::string table = FormatPrinter::table([](FormatPrinter& printer) {
    std::int32_t blockSize = 0, kind = 0, early = 0, number = 0, inRow[2] = {};
    float turn = 0;
    char text[8] = {};
    EXPECT_TRUE(printer.fields(FIELDS(blockSize, kind)) && printer.require(within(FIELDS(kind), 0, 3)) &&
                printer.require(atMost(FIELDS(kind), 2)) && printer.sized(FIELDS(text), blockSize) &&
                printer.since(1, FIELDS(early)) && printer.reserved(1) &&
                printer.since(80, FIELDS(turn), codec::otherwise(1.5707964F)) &&
                printer.rows(1, [&](std::size_t i) { return printer.fields(FIELDS(inRow[i])); }) &&
                printer.record(FIELDS(number)));
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

TEST(FormatTable, AGivenPlaceDecidesTheConditionsOnThePlace) {
  for (const bool isInGroup : {false, true}) {
    const std::string table = FormatPrinter::table(
        [&](FormatPrinter& printer) {
          std::int32_t always = 0, inGroup = 0;
          EXPECT_TRUE(printer.fields(FIELDS(always)) && printer.when(custom("in a group", isInGroup), FIELDS(inGroup)));
        },
        FormatPrinter::Place::given);
    EXPECT_EQ(table.find("inGroup") != std::string::npos, isInGroup);
    EXPECT_EQ(table.find("in a group |"), std::string::npos);
  }
}

// Where each place has a table of its own, no table names it.
TEST(FormatTable, ChosenConditionsAreNeverPrinted) {
  for (const auto place : {FormatPrinter::Place::open, FormatPrinter::Place::given})
    for (const bool isInGroup : {false, true}) {
      const std::string table = FormatPrinter::table(
          [&](FormatPrinter& printer) {
            std::int32_t always = 0, inGroup = 0;
            EXPECT_TRUE(printer.fields(FIELDS(always)) && printer.when(chosen(isInGroup), FIELDS(inGroup)));
          },
          place);
      EXPECT_EQ(table.find("| inGroup | i32 | |") != std::string::npos, isInGroup) << table;
    }
}

TEST(FormatTable, EveryKindAndEveryNamedRecordHasATable) {
  std::set<std::string> tables;
  for (const frame::FileKindInfo& kind : frame::kFileKinds) {
    const std::string table = explain::formatTable(kind.kind);
    EXPECT_TRUE(rowsOf(table).size() > 4 && table.find("| 1 | version | i16 | |\n") != std::string::npos) << kind.name;
    EXPECT_TRUE(tables.insert(table).second) << kind.name;
  }
  for (const std::string& name : explain::recordNames()) {
    const std::string table = explain::recordTable(name);
    EXPECT_GT(rowsOf(table).size(), 3U) << name;
    EXPECT_TRUE(tables.insert(table).second) << name;
  }
  EXPECT_EQ(explain::recordTable("nonsense"), "");
}

// A size that the printer cannot name is printed as the 0 that it has without a file.
TEST(FormatTable, EverySizeAndCountHasAName) {
  std::string all;
  for (const frame::FileKindInfo& kind : frame::kFileKinds) all += explain::formatTable(kind.kind);
  for (const std::string& name : explain::recordNames()) all += explain::recordTable(name);
  for (const char* nameless : {" 0 ×", "text 0", "raw 0", " 0 bytes", "each of 0", " 0 times", "first 0"})
    EXPECT_EQ(all.find(nameless), std::string::npos) << nameless;
}

TEST(FormatTable, EmbeddedRecordsAreNamedByTheirTables) {
  const std::string macro = explain::formatTable(explain::FileKind::macro);
  EXPECT_NE(macro.find("| shapes | shape list | |\n"), std::string::npos) << macro;
  EXPECT_EQ(macro.find("auxValue2"), std::string::npos) << macro;
  const std::string machine = explain::formatTable(explain::FileKind::machine);
  EXPECT_NE(machine.find("| material | material body | since 80 |\n"), std::string::npos);
  EXPECT_NE(machine.find("| lateByteC | u8 | since 152, tail, reader |\n"), std::string::npos);
  EXPECT_NE(machine.find("| lateByteC | u8 | writer |\n"), std::string::npos);
}

}  // namespace
