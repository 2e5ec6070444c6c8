// `torvio map` with JSON, filters and pages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "src/file_records.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/tools/run_torvio.h"
#include "torvio/explain/file_map.h"
#include "torvio/explain/map_fields.h"
#include "torvio/report/field_value.h"
#include "torvio/report/map_page.h"
#include "torvio/report/map_page_assets.h"
#include "torvio/report/sha256.h"

namespace {

using namespace testing_support;
using nlohmann::json;
namespace report = oldtorvio::report;
using oldtorvio::explain::FileKind;
using oldtorvio::explain::FileReport;
using oldtorvio::explain::MapField;
using oldtorvio::explain::MapLine;

std::vector<std::string> linesIn(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream from(text);
  for (std::string line; std::getline(from, line);) lines.push_back(line);
  return lines;
}
std::vector<json> objectsIn(const std::string& output) {
  std::vector<json> objects;
  for (const std::string& line : linesIn(output)) objects.push_back(json::parse(line));
  return objects;
}
std::size_t occurrences(const std::string& text, const std::string& of) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(of, at)) != std::string::npos; at += of.size()) ++count;
  return count;
}
// For a shell.
std::string quoted(const std::string& argument) { return '"' + argument + '"'; }

// A part whose texts would do harm in a page or on a terminal.
constexpr const char* kScript = "</script><script>alert(1)</script><!--";
constexpr const char* kImage = "<img src=x onerror='alert(2)'>\"&amp;";
constexpr const char* kTerminal =
    "\x1b[2J\r\nFAULT\x9d"
    "0;owned\x07 Tr\xe4ger\x85";
Bytes hostilePart(const TempFolder& folder) {
  const auto part = std::make_unique<oldtorvio::TorvPart>();
  part->width = 12.5F;
  part->thickness = std::numeric_limits<float>::quiet_NaN();
  part->height = -std::numeric_limits<float>::infinity();
  std::strcpy(part->productName, "</script>");
  std::strcpy(part->descriptionA, kScript);
  std::strcpy(part->descriptionB, kImage);
  std::strcpy(part->descriptionC, kTerminal);
  std::memcpy(part->noteText, "N\0x", 3);
  oldtorvio::Shape shape;
  shape.type = 3;
  shape.x = 1.5F;
  shape.note = "]]><!--";
  part->patterns.resize(1);
  part->shapes.shapes.assign(3, shape);
  const std::string path = folder.path("made");
  EXPECT_EQ(oldtorvio::FileRecord<FileKind::part>::save(path.c_str(), *part, 180), 0);
  return TempFolder::read(path);
}

class MapCommand : public testing::Test {
 protected:
  TempFolder folder_;
  std::string part_ = folder_.write("p.part", hostilePart(folder_));
};

TEST_F(MapCommand, JsonHasOneObjectForEachFieldWithItsValue) {
  const Outcome run = torvio("map --json " + part_);
  EXPECT_EQ(run.code, 0);
  const auto objects = objectsIn(run.output);
  const auto at = [&](const std::string& path) {
    for (const json& one : objects)
      if (one["field"] == path) return one;
    ADD_FAILURE() << path;
    return json();
  };
  EXPECT_EQ(objects[0], json::parse(R"({"offset":0,"size":2,"field":"version","type":"i16","value":180})"));
  EXPECT_EQ(objects[1], json::parse(R"({"offset":2,"size":4,"field":"width","type":"f32","value":12.5})"));
  EXPECT_EQ(at("height")["value"], "-Infinity");
  EXPECT_EQ(at("thickness")["value"], "NaN");
  EXPECT_EQ(at("thickness")["note"], "bits 0x7fc00000");
  EXPECT_EQ(at("descriptionA")["value"], kScript);
  EXPECT_EQ(at("descriptionB")["value"], kImage);
  EXPECT_EQ(at("descriptionC")["value"], "\x1b[2J\r\nFAULT\u009d0;owned\x07 Tr\u00e4ger\u2026");
  EXPECT_EQ(at("noteText")["value"], "N");
  EXPECT_EQ(at("noteText")["note"], "1 nonzero byte after the NUL");
  EXPECT_EQ(at("reserved")["value"], json());
  EXPECT_EQ(at("shapes.shapes[2].x")["value"], 1.5);
  EXPECT_EQ(at("shapes.shapes[2].y")["offset"], at("shapes.shapes[2].x")["offset"].get<int>() + 4);
  EXPECT_EQ(at("lateBlock1")["type"], "bytes");
  EXPECT_EQ(at("lateBlock1")["value"].get<std::string>().size(), 2 * at("lateBlock1")["size"].get<std::size_t>());
}

TEST_F(MapCommand, JsonOutputHasNoControlCharacterButItsNewlines) {
  const Outcome run = torvio("map --json " + part_);
  for (std::size_t i = 0; i < run.output.size(); ++i) {
    const auto c = static_cast<unsigned char>(run.output[i]);
    EXPECT_TRUE(c >= 0x20 || c == '\n');
    EXPECT_NE(c, 0x7F);
    // U+0080 to U+009F
    if (c == 0xC2 && i + 1 < run.output.size()) {
      EXPECT_GE(static_cast<unsigned char>(run.output[i + 1]), 0xA0);
    }
  }
}

// The sizes of all objects add up to the file, at consecutive offsets, for every kind.
TEST(MapJson, CoversEveryByteOfSoundFilesOfEveryKind) {
  const TempFolder folder;
  for (const Kind& kind : kinds()) {
    const int version = kind.versions.back();
    const Bytes bytes = kind.file(version);
    const Outcome run = torvio("map --json --kind " + kind.name + " " + folder.write(kind.name, bytes));
    std::size_t end = 0;
    for (const json& one : objectsIn(run.output)) {
      EXPECT_EQ(one["offset"], end) << kind.name << ' ' << one.dump();
      end += one["size"].get<std::size_t>();
    }
    EXPECT_EQ(end, bytes.size()) << kind.name;
  }
}

// What a number prints from its bytes is what the map prints.
TEST(MapFields, HaveTheValuesOfTheirLines) {
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes bytes = kind.file(version);
      std::size_t blocks = 0;
      (void)oldtorvio::explain::mapFile(bytes.span(), kind.kind, [&](const MapLine& line) {
        std::string values;
        std::uint64_t size = 0;
        oldtorvio::explain::eachField(line, [&](const MapField& field) {
          if (field.form->print == nullptr) return;
          if (!values.empty()) values += ' ';
          field.form->print(values, bytes.span().data() + field.offset);
          size += field.size;
          if (line.forms.size() == 1) {
            EXPECT_EQ(field.path, line.path);
          }
        });
        if (line.forms.size() > 1) ++blocks;
        if (size > 0 && size == line.size) {
          EXPECT_EQ(values, line.value) << line.path;
        }
      });
      if (kind.kind == FileKind::part) {
        EXPECT_GT(blocks, 0U);
      }
    }
}

TEST_F(MapCommand, FindPrintsTheLinesOfANameAPathOrAGlob) {
  const auto found = [&](const std::string& pattern) {
    std::vector<std::string> paths;
    const Outcome run = torvio("map --find " + quoted(pattern) + " " + part_);
    EXPECT_EQ(run.code, 0) << pattern;
    for (const std::string& line : linesIn(run.output)) paths.push_back(line.substr(16, line.find(" = ") - 16));
    return paths;
  };
  EXPECT_EQ(found("width"), std::vector<std::string>{"width"});
  EXPECT_EQ(found("shapes[1].x"), std::vector<std::string>{"shapes.shapes[1].x, y"});
  EXPECT_EQ(found("shapes.y").size(), 3U);
  EXPECT_EQ(found("shapes[*].note"),
            (std::vector<std::string>{"shapes.shapes[0].note.length", "shapes.shapes[0].note.text",
                                      "shapes.shapes[1].note.length", "shapes.shapes[1].note.text",
                                      "shapes.shapes[2].note.length", "shapes.shapes[2].note.text"}));
  EXPECT_EQ(found("description*").size(), 3U);
  const auto objects = objectsIn(torvio("map --json --find shapes[0..1].y " + part_).output);
  ASSERT_EQ(objects.size(), 2U);
  EXPECT_EQ(objects[1]["field"], "shapes.shapes[1].y") << "of a block only this field";
}

TEST_F(MapCommand, OffsetPrintsTheFieldsAtTheseBytes) {
  EXPECT_EQ(torvio("map --offset 5 " + part_).output, "00000002      4 width = 12.5\n");
  EXPECT_EQ(torvio("map --offset 0x1..0x2 " + part_).output,
            "00000000      2 version = 180\n00000002      4 width = 12.5\n");
  EXPECT_EQ(torvio("map --offset 1..10 --find height " + part_).output, "00000006      4 height = -inf\n");
}

TEST_F(MapCommand, SaysWhenNothingMatches) {
  const Outcome name = torvio("map --find nothing " + part_), offset = torvio("map --offset 99999999 " + part_);
  EXPECT_EQ(name.code, 0);
  EXPECT_EQ(name.output + offset.output, "");
  EXPECT_EQ(name.errors, "torvio: " + part_ + ": no field matches\n");
  EXPECT_EQ(offset.errors, "torvio: " + part_ + ": no field is at these bytes\n");
}

TEST_F(MapCommand, DecodesTextsWithTheEncoding) {
  EXPECT_NE(torvio("map --find descriptionC " + part_).output.find("Tr\\xe4ger"), std::string::npos);
  EXPECT_EQ(torvio("map --encoding cp1252 --find descriptionC " + part_).output.substr(16),
            "descriptionC = \"\\u001b[2J\\r\\nFAULT\\u009d0;owned\\u0007 Tr\u00e4ger\u2026\"\n");
  const auto objects = objectsIn(torvio("map --json --encoding cp437 --find descriptionC " + part_).output);
  EXPECT_EQ(objects.at(0)["value"],
            "\x1b[2J\r\nFAULT\u00a5"
            "0;owned\x07 Tr\u03a3ger\u00e0");
}

TEST_F(MapCommand, DamagedFilesEndWithTheFaultInEveryForm) {
  const std::string cut = folder_.write("cut", TempFolder::read(part_).cut(8));
  const Outcome all = torvio("map --kind part --json " + cut),
                filtered = torvio("map --kind part --json --find width " + cut);
  EXPECT_EQ(all.code, 1);
  EXPECT_EQ(objectsIn(all.output).size(), 3U);
  EXPECT_EQ(objectsIn(all.output).back(),
            json::parse(R"({"offset":6,"field":"height","fault":"needs 4 bytes, the file has 2"})"));
  EXPECT_EQ(objectsIn(filtered.output).size(), 2U);
  EXPECT_EQ(filtered.code, 1);
  EXPECT_TRUE(objectsIn(filtered.output).back().contains("fault"));
  const Outcome page = torvio("map --kind part --html " + cut);
  EXPECT_EQ(page.code, 1);
  EXPECT_NE(page.output.find("needs 4 bytes, the file has 2"), std::string::npos);
  EXPECT_NE(page.output.find("\"look\":\"bad\""), std::string::npos);

  const std::string unknown = folder_.write("unknown", Bytes().i16(7).i32(0));
  const Outcome refused = torvio("map --json " + unknown);
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(objectsIn(refused.output).back(),
            json::parse(R"({"offset":0,"field":"version","fault":"7 is not a version of any kind of file"})"));
  EXPECT_NE(torvio("map --html " + folder_.write("empty", Bytes())).output.find("</html>"), std::string::npos);
}

TEST_F(MapCommand, RemarksHaveNoValue) {
  const std::string longer = folder_.write("longer", TempFolder::read(part_).zeros(3));
  const auto objects = objectsIn(torvio("map --json --kind part " + longer).output);
  EXPECT_EQ(objects.back()["remark"], "3 unread bytes after the last field");
  EXPECT_EQ(objects.back()["size"], 0);
  EXPECT_FALSE(objects.back().contains("value"));
}

// ---- pages ----

TEST(Sha256, HasTheDigestsOfTheStandard) {
  const auto digest = [](const std::string& text) {
    std::string all;
    for (const std::byte byte : report::sha256(std::as_bytes(std::span(text)))) {
      char digits[4];
      (void)std::snprintf(digits, sizeof digits, "%02x", std::to_integer<unsigned>(byte));
      all += digits;
    }
    return all;
  };
  EXPECT_EQ(digest(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(digest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(digest("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(digest(std::string(1000000, 'a')), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Base64, PadsToFourDigits) {
  const auto encoded = [](const std::string& text) {
    std::string all;
    report::appendBase64(all, std::as_bytes(std::span(text)));
    return all;
  };
  EXPECT_EQ(encoded(""), "");
  EXPECT_EQ(encoded("f"), "Zg==");
  EXPECT_EQ(encoded("fo"), "Zm8=");
  EXPECT_EQ(encoded("foobar"), "Zm9vYmFy");
  EXPECT_EQ(encoded("\xff\xfe"), "//4=");
}

// The text between the first `open` and the next `close`.
std::string between(const std::string& text, const std::string& open, const std::string& close) {
  const std::size_t from = text.find(open);
  if (from == std::string::npos) return {};
  const std::size_t to = text.find(close, from + open.size());
  return text.substr(from + open.size(), to - from - open.size());
}
constexpr const char* kData = "<script type=\"application/json\" id=\"data\">";

// The fields of a page, as the script reads them.
std::vector<json> fieldsOfPage(const json& data) {
  std::vector<json> fields;
  for (const json& chunk : data["chunks"]) {
    std::string path;
    std::size_t end = chunk[0];
    for (const std::string& line : linesIn(chunk[1].get<std::string>())) {
      // A beginning of four columns or its number, and the value.
      std::string rest = line;
      const auto take = [&rest] {
        const std::string column = rest.substr(0, rest.find('|'));
        rest.erase(0, column.size() + 1);
        return column;
      };
      if (line[0] != '=') rest = "=" + data["beginnings"].at(std::stoul(take())).get<std::string>() + "|" + rest;
      std::vector<std::string> columns{take().substr(1), take(), take(), take()};
      columns.push_back(rest);
      path = path.substr(0, std::stoul(columns[0])) + columns[1];
      const std::size_t at = columns[2].find('@'), size = std::stoul(columns[2]);
      const std::size_t offset = at == std::string::npos ? end : std::stoul(columns[2].substr(at + 1));
      end = offset + size;
      fields.push_back(
          {{"offset", offset}, {"size", size}, {"field", path}, {"type", columns[3]}, {"value", columns[4]}});
    }
  }
  return fields;
}

TEST(MapPages, HoldTheFieldsAndBytesOfEveryKind) {
  const TempFolder folder;
  for (const Kind& kind : kinds()) {
    const Bytes bytes = kind.file(kind.versions.back());
    const std::string path = folder.write(kind.name, bytes), named = " --kind " + kind.name + " " + path;
    const Outcome page = torvio("map --html" + named);
    ASSERT_EQ(page.code, 0) << page.errors;
    const json data = json::parse(between(page.output, kData, "</script>"));
    const auto fields = fieldsOfPage(data), wanted = objectsIn(torvio("map --json" + named).output);
    ASSERT_EQ(fields.size(), wanted.size()) << kind.name;
    for (std::size_t i = 0; i < fields.size(); ++i)
      for (const char* part : {"offset", "size", "field", "type"})
        if (wanted[i].contains(part)) {
          EXPECT_EQ(fields[i][part], wanted[i][part]) << kind.name << ' ' << i;
        }
    EXPECT_EQ(data["kind"], kind.name);
    EXPECT_EQ(data["count"], fields.size());
    std::string encoded;
    report::appendBase64(encoded, bytes.span());
    EXPECT_EQ(data["bytes"], encoded);
  }
}

TEST_F(MapCommand, NothingThatAFileSaysIsMarkupInItsPage) {
  const std::string name = "a <b>&\"'\u202e</title><script>alert(3)</script>.part";
  const Outcome page = torvio("map --html " + part_);
  ASSERT_EQ(page.code, 0);
  // One style, the data, the script: nothing else, and no attribute that runs anything.
  for (const std::string& html : {page.output, [&] {
                                    const Bytes bytes = TempFolder::read(part_);
                                    report::MapPage made(name, bytes.span(), {});
                                    const FileReport found = oldtorvio::explain::mapFile(
                                        bytes.span(), FileKind::part, [&](const MapLine& line) { made.add(line); });
                                    return made.html("part", found);
                                  }()}) {
    EXPECT_EQ(occurrences(html, "<script"), 2U);
    EXPECT_EQ(occurrences(html, "</script"), 2U);
    EXPECT_EQ(occurrences(html, "<style"), 1U);
    EXPECT_EQ(occurrences(html, "<title"), 1U);
    EXPECT_EQ(occurrences(html, "<img") + occurrences(html, "<!--") + occurrences(html, "\u202e"), 0U);
    EXPECT_EQ(between(html, "<script>", "</script>"), report::kMapPageScript);
    const json data = json::parse(between(html, kData, "</script>"));
    bool isThere = false;
    for (const json& field : fieldsOfPage(data))
      if (field["field"] == "descriptionA") isThere = field["value"] == '"' + std::string(kScript) + '"';
    EXPECT_TRUE(isThere) << "the text is there, as data";
  }
}

TEST_F(MapCommand, PagesAllowOnlyTheirOwnScriptAndStyle) {
  const std::string html = torvio("map --html " + part_).output;
  const auto source = [](std::string_view text) {
    std::string all = "'sha256-";
    report::appendBase64(all, report::sha256(std::as_bytes(std::span(text))));
    return all + "'";
  };
  EXPECT_EQ(between(html, "<meta http-equiv=\"Content-Security-Policy\" content=\"", "\""),
            "default-src 'none'; script-src " + source(between(html, "<script>", "</script>")) + "; style-src " +
                source(between(html, "<style>", "</style>")) +
                "; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'");
  for (const char* reference : {"http:", "https:", " src=", " href=", "url(", "@import", "style=", " on"})
    EXPECT_EQ(occurrences(html.substr(0, html.find(kData)), reference) +
                  occurrences(std::string(report::kMapPageScript), std::string("\"") + reference),
              0U)
        << reference;
}

TEST_F(MapCommand, PagesAreWrittenToAFileButNotOverTheShownOne) {
  const std::string out = folder_.path("out.html");
  const Outcome run = torvio("map --html -o " + quoted(out) + " " + part_);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.output + run.errors, "");
  EXPECT_EQ(asText(TempFolder::read(out)), torvio("map --html " + part_).output);

  const Bytes before = TempFolder::read(part_);
  const Outcome over = torvio("map --html -o " + part_ + " " + part_);
  EXPECT_EQ(over.code, 2);
  EXPECT_EQ(over.errors.find("torvio: map: \"" + part_ + "\" is both a file to read and the output\n"), 0U);
  EXPECT_EQ(asText(TempFolder::read(part_)), asText(before));
  const Outcome nowhere = torvio("map --html -o " + folder_.path("no/where") + " " + part_);
  EXPECT_EQ(nowhere.code, 3);
  EXPECT_NE(nowhere.errors.find("cannot be created"), std::string::npos);
}

TEST_F(MapCommand, EveryFormOfAMapIsWrittenToAFile) {
  for (const std::string form : {"", "--json ", "--find version ", "--html "}) {
    const std::string out = folder_.path("out");
    const Outcome run = torvio("map " + form + "-o " + out + " " + part_);
    EXPECT_EQ(run.code, 0) << form;
    EXPECT_EQ(run.output + run.errors, "") << form;
    EXPECT_EQ(asText(TempFolder::read(out)), torvio("map " + form + part_).output) << form;
  }
  const std::string page = folder_.path("implied.html");
  EXPECT_EQ(torvio("map " + part_ + " -o " + page).code, 0);
  EXPECT_EQ(asText(TempFolder::read(page)), torvio("map --html " + part_).output);
  EXPECT_EQ(torvio("map --json " + part_ + " -o " + page).code, 0);
  EXPECT_EQ(asText(TempFolder::read(page)), torvio("map --json " + part_).output);
}

TEST_F(MapCommand, PagesHaveALimit) {
  const std::string large = folder_.write("large", TempFolder::read(part_).zeros(16 * 1024 * 1024));
  const Outcome run = torvio("map --html " + large);
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, "torvio: " + large + ": is too large for a page, which shows up to 16 MiB\n");
}

TEST_F(MapCommand, OptionsThatContradictEachOtherAreRefused) {
  const struct {
    const char* arguments;
    const char* error;
  } cases[] = {{"--json --html ", "--json excludes --html"},
               {"--find x --html ", "--find excludes --html"},
               {"--offset 1 --html ", "--offset excludes --html"},
               {"--find a..b ", "\"a..b\" is not a field path: a name is missing"},
               {"--offset x ", "\"x\" is neither an offset nor a range of offsets"},
               {"--encoding utf9 ", "unknown encoding \"utf9\""}};
  for (const auto& one : cases) {
    const Outcome run = torvio("map " + std::string(one.arguments) + part_);
    EXPECT_EQ(run.code, 2) << one.arguments;
    EXPECT_EQ(run.errors.find(std::string("torvio: map: ") + one.error), 0U) << run.errors;
  }
}

}  // namespace
