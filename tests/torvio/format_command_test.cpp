// `torvio format --as kaitai`. What the descriptions describe is compared with maps by kaitai_test.py.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "src/frame/codec/describe.h"
#include "tests/support/kind_files.h"
#include "tests/tools/run_torvio.h"
#include "torvio/explain/format_table.h"
#include "torvio/report/kaitai.h"
#include "torvio/report/kaitai_printer.h"

namespace {

using namespace testing_support;
namespace explain = oldtorvio::explain;
namespace report = oldtorvio::report;

struct Sample {
  std::int32_t rowCount = 0;
  std::int16_t kind = 0;
  std::int8_t pairCount = 0;
  char text[8] = {};
  std::uint8_t raw[3] = {};
  float numbers[4] = {};
  double x = 0, y = 0;
  std::vector<std::uint32_t> words;
  std::string note;
};

}  // namespace

template <>
struct oldtorvio::codec::Layout<Sample> {
  static bool describe(auto& io, auto& s) {
    return io.fields(FIELDS(s.kind, s.rowCount, block(s.x, s.y))) && io.require(within(FIELDS(s.rowCount), 0, 4)) &&
           io.since(60, FIELDS(s.text)) && io.between(61, 70, FIELDS(s.raw)) &&
           io.when(oneOf(FIELDS(s.kind), 1, 2), [&] { return io.leading(s.rowCount, FIELDS(s.numbers)); }) &&
           io.when(inRanges(FIELDS(s.kind), Range{5, 5}, Range{7, 9}),
                   [&] { return io.list(FIELDS(s.words), kReplaced); }) &&
           io.below(80, [&] { return io.lengthText(FIELDS(s.note), 100); }) && io.fields(FIELDS(s.pairCount)) &&
           io.rows(static_cast<std::int8_t>(s.pairCount * 2),
                   [&](std::size_t i) { return io.fields(FIELDS(s.numbers[i])); }) &&
           io.reserved(3);
  }
};

// Sets a field in a way that only a load knows.
struct Unclear {
  std::int32_t kind = 0;
  std::vector<std::uint32_t> words;
};
template <>
struct oldtorvio::codec::Layout<Unclear> {
  static bool describe(auto& io, auto& u) {
    return io.fields(FIELDS(u.kind)) && io.element(FIELDS(u.words), 0, [] { return true; });
  }
};

namespace {

template <class Record>
report::KaitaiPrinter printed() {
  report::KaitaiPrinter printer;
  printer.versionWord("{v} >= 52");
  Record record;
  (void)printer.walk(record);
  return printer;
}

void expectParts(const std::string& text, const std::vector<std::string>& parts) {
  std::size_t at = 0;
  for (const std::string& part : parts) {
    const std::size_t found = text.find(part, at);
    EXPECT_NE(found, std::string::npos) << part << "\nin\n" << text.substr(at);
    if (found != std::string::npos) at = found + part.size();
  }
}

TEST(KaitaiDescriptions, HaveConditionsSizesCountsAndRules) {
  const report::KaitaiPrinter printer = printed<Sample>();
  EXPECT_TRUE(printer.problems().empty());
  expectParts(
      printer.ksy("sample", "Sample", "Text."),
      {"meta:\n  id: sample\n",
       "endian: le\n",
       "doc: |\n  Text.\n",
       "seq:\n",
       "- id: version\n    -orig-id: \"version\"\n    type: s2\n    valid:\n      expr: \"version >= 52\"\n",
       "- id: kind\n    -orig-id: \"kind\"\n    type: s2\n",
       "- id: row_count\n    -orig-id: \"rowCount\"\n    type: s4\n    valid:\n"
       "      expr: \"row_count >= 0 and row_count <= 4\"\n",
       "- id: x\n    -orig-id: \"x\"\n    type: f8\n",
       "- id: y\n",
       "- id: text\n    -orig-id: \"text\"\n    type: strz\n    size: 8\n    if: \"version >= 60\"\n",
       "- id: raw\n    -orig-id: \"raw\"\n    size: 3\n    if: \"version >= 61 and version <= 70\"\n",
       "- id: numbers\n    -orig-id: \"numbers[]\"\n    type: f4\n    repeat: expr\n"
       "    repeat-expr: \"row_count\"\n    if: \"kind == 1 or kind == 2\"\n",
       "- id: words_count\n    -orig-id: \"words.count\"\n    type: s4\n"
       "    if: \"kind == 5 or (kind >= 7 and kind <= 9)\"\n",
       "- id: words\n    -orig-id: \"words[]\"\n    type: u4\n    repeat: expr\n"
       "    repeat-expr: \"words_count\"\n",
       "- id: note_length\n",
       "expr: \"note_length <= 100\"\n",
       "- id: note\n    -orig-id: \"note.text\"\n    type: strz\n    size: \"note_length\"\n"
       "    if: \"version < 80 and note_length > 0\"\n",
       "- id: pair_count\n",
       "type: \"numbers_row\"\n",
       "repeat-expr: \"(((pair_count * 2 + 128) & 255) - 128)\"\n",
       "- id: reserved\n",
       "types:\n  numbers_row:\n    seq:\n      - id: numbers\n        -orig-id: \"numbers[i]\"\n        type: f4\n"});
}

TEST(KaitaiDescriptions, NameWhatTheLanguageCannotSay) {
  EXPECT_EQ(printed<Unclear>().problems(), std::vector<std::string>{"the elements of words are described one by one"});
}

TEST(KaitaiDescriptions, AreThereForEveryKind) {
  for (const Kind& kind : kinds()) {
    const Outcome run = torvio("format " + kind.name + " --as kaitai");
    EXPECT_EQ(run.code, 0) << kind.name << ' ' << run.errors;
    EXPECT_EQ(run.output.find("meta:\n  id: torvio_"), 0U) << kind.name;
    EXPECT_EQ(run.output.find('{'), std::string::npos) << "an expression that was not rendered";
    EXPECT_EQ(run.output.find('\t'), std::string::npos);
  }
}

TEST(FormatCommand, PrintsMarkdownUnlessAnotherLanguageIsNamed) {
  const std::string table = torvio("format macro").output;
  EXPECT_EQ(table, explain::formatTable(explain::FileKind::macro));
  EXPECT_EQ(torvio("format macro --as markdown").output, table);
}

TEST(FormatCommand, PrintsTheRowsOfEveryTableAsJson) {
  std::vector<std::string> tables = explain::recordNames();
  for (const Kind& kind : kinds()) tables.push_back(kind.name);
  for (const std::string& table : tables) {
    const Outcome run = torvio("format " + table + " --json");
    ASSERT_EQ(run.code, 0) << table << ' ' << run.errors;
    // The lines of the Markdown table after its head.
    std::istringstream lines(run.output), markdown(torvio("format " + table).output);
    std::string line, row;
    std::getline(markdown, row);
    std::getline(markdown, row);
    std::size_t count = 0;
    while (std::getline(lines, line) && std::getline(markdown, row)) {
      const auto object = nlohmann::json::parse(line);
      const std::vector<std::string> fields = object["fields"];
      const std::string storedAs = object["storedAs"], condition = object["condition"];
      ASSERT_FALSE(fields.empty()) << line;
      EXPECT_EQ(row.find("| " + std::to_string(++count) + " | " + fields.front()), 0U) << table << ' ' << row;
      EXPECT_NE(row.find(fields.back() + " | " + storedAs), std::string::npos) << table << ' ' << row;
      EXPECT_TRUE(row.ends_with("| " + condition + (condition.empty() ? "|" : " |"))) << table << ' ' << row;
    }
    EXPECT_GT(count, 0U) << table;
    EXPECT_TRUE(lines.peek() == EOF && markdown.peek() == EOF) << table << ": other numbers of rows";
  }
  EXPECT_EQ(torvio("format macro --json --as markdown").code, 2);
}

TEST(FormatCommand, RefusesKaitaiDescriptionsOfRecordsAndUnknownLanguages) {
  const Outcome record = torvio("format shape --as kaitai"), language = torvio("format part --as xml");
  EXPECT_EQ(record.code, 2);
  EXPECT_EQ(record.output, "");
  EXPECT_EQ(
      record.errors.find("torvio: format: \"shape\" is a record; Kaitai descriptions exist only for kinds of files\n"
                         "Kinds: part,"),
      0U)
      << record.errors;
  EXPECT_EQ(language.code, 2);
  EXPECT_EQ(language.errors.find("torvio: format: unknown language \"xml\"\nLanguages: markdown, kaitai"), 0U)
      << language.errors;
}

}  // namespace
