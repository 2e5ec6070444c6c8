// Records from JSON text: they come back as they were, wrong text is refused with the path of what is wrong, and the
// command makes files safely.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/long_tests.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/random_files.h"
#include "torvio/values/json_reader.h"
#include "torvio/values/json_writer.h"
#include "torvio/values/text_encoding.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using frame::FileKind;
using Json = nlohmann::ordered_json;

// ---- there and back ----------------------------------------------------------------------------------

// Loads the file and saves it, directly and by way of JSON.
template <FileKind kKind>
void expectSameFileByWayOfJson(const Bytes& bytes, int version) {
  const auto loaded = values::loadRecord<kKind>(bytes.span());
  ASSERT_EQ(loaded.status, 0) << version;
  const values::JsonRecord read = values::readJson(values::jsonOf<kKind>(*loaded.record, version));
  ASSERT_EQ(read.error, "") << version;
  EXPECT_EQ(read.kind, kKind);
  EXPECT_EQ(read.version, version);
  ASSERT_EQ(differenceOf(kKind, loaded.record.get(), read.record.get()), std::nullopt) << version;
  const values::SavedRecord direct = values::saveRecord<kKind>(*loaded.record, version);
  const values::SavedRecord byJson = values::saveRecord<kKind>(read.as<kKind>(), version);
  EXPECT_EQ(byJson.status, direct.status);
  ASSERT_TRUE(byJson.bytes == direct.bytes) << version;
}

TEST(FromJson, FilesOfEveryKindAndVersionAreSavedAsWithoutJson) {
  const int least = isLongRun() ? 10000 : 500;
  int files = 0;
  for (std::uint32_t round = 0; files < least; ++round)
    for (const frame::FileKindInfo& info : frame::kFileKinds)
      withFileRecord(info.kind, [&](auto file) {
        constexpr FileKind kKind = decltype(file)::kKind;
        SCOPED_TRACE(testing::Message() << info.name << ", round " << round);
        for (const int version : versionsOf(kKind)) {
          if (testing::Test::HasFatalFailure()) return;
          expectSameFileByWayOfJson<kKind>(randomFile(kKind, version, round * 1000 + static_cast<unsigned>(version)),
                                           version);
          ++files;
        }
      });
  RecordProperty("files", files);
}

TEST(FromJson, RecordsOfAnyContentComeBackInEveryEncoding) {
  const std::vector<std::string> encodings = values::TextEncoding::names();
  for (std::uint32_t round = 0; round < (isLongRun() ? 500U : 16U); ++round)
    for (const frame::FileKindInfo& info : frame::kFileKinds)
      withFileRecord(info.kind, [&](auto file) {
        constexpr FileKind kKind = decltype(file)::kKind;
        const auto record = std::make_unique<typename decltype(file)::Record>();
        fillWithAnything(info.kind, record.get(), round);
        const bool isPretty = round % 4 == 3;
        const values::JsonRecord read =
            values::readJson(values::jsonOf<kKind>(*record, 180, encodings[round % encodings.size()], isPretty));
        ASSERT_EQ(read.error, "") << info.name;
        ASSERT_EQ(differenceOf(kKind, record.get(), read.record.get()), std::nullopt) << info.name << ", " << round;
      });
}

TEST(FromJson, EveryFloatComesBackToItsBits) {
  OldMacro macro;
  std::mt19937 engine(1);
  macro.shapes.shapes.resize(isLongRun() ? 200000 : 5000);
  for (Shape& shape : macro.shapes.shapes)
    for (float& value : shape.values) value = std::bit_cast<float>(static_cast<std::uint32_t>(engine()));
  const values::JsonRecord read = values::readJson(values::jsonOf<FileKind::macro>(macro, 180));
  ASSERT_EQ(read.error, "");
  EXPECT_EQ(differenceOf(FileKind::macro, &macro, read.record.get()), std::nullopt);
}

// ---- what may be different -----------------------------------------------------------------------------

// The document of a macro with one shape.
Json document() {
  OldMacro macro;
  macro.shapes.shapes.resize(1);
  macro.shapes.shapes[0].note = "note";
  return Json::parse(values::jsonOf<FileKind::macro>(macro, 180));
}
values::JsonRecord readOf(const Json& json) { return values::readJson(json.dump()); }
const OldMacro& macroIn(const values::JsonRecord& read) { return read.as<FileKind::macro>(); }
std::string errorOf(const Json& json) { return readOf(json).error; }

TEST(FromJson, MembersMayComeInAnyOrder) {
  // Sorted by name, which some programs do.
  const nlohmann::json sorted = nlohmann::json::parse(document().dump());
  const values::JsonRecord read = values::readJson(sorted.dump(1));
  ASSERT_EQ(read.error, "");
  EXPECT_EQ(macroIn(read).shapes.shapes[0].note, "note");
  EXPECT_EQ(read.version, 180);
}

TEST(FromJson, FloatsAreReadInAnyNotation) {
  const struct {
    const char* json;
    std::uint32_t bits;
  } cases[] = {{"1", 0x3f800000},
               {"-1", 0xbf800000},
               {"0", 0},
               {"-0", 0x80000000},
               {"-0.0", 0x80000000},
               {"1e2", 0x42c80000},
               {"0.1", 0x3dcccccd},
               {"16777217", 0x4b800000},
               // Between two floats, and just above: by way of a double both would be the lower one.
               {"1.000000059604644775390625", 0x3f800000},
               {"1.00000005960464477539062501", 0x3f800001},
               {"1e-60", 0},
               {"-1e-60", 0x80000000},
               {"1e-45", 1},
               {"18446744073709551615", 0x5f800000},
               {"100000000000000000000", 0x60ad78ec},
               {"{\"bits\":\"7fc00001\"}", 0x7fc00001},
               {"{\"bits\": \"3F800000\"}", 0x3f800000}};
  for (const auto& one : cases) {
    Json json = document();
    json["record"]["shapes"]["shapes"][0]["x"] = "HERE";
    std::string text = json.dump();
    text.replace(text.find("\"HERE\""), 6, one.json);
    const values::JsonRecord read = values::readJson(text);
    ASSERT_EQ(read.error, "") << one.json;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(macroIn(read).shapes.shapes[0].x), one.bits) << one.json;
  }
}

TEST(FromJson, DecimalCommaOfALocaleIsIgnored) {
  OldMacro macro;
  macro.shapes.shapes.resize(1);
  macro.shapes.shapes[0].x = 0.1F;
  OldSheet sheet;
  sheet.lateValue = 0.1;
  const CommaLocale comma;
  if (!comma.isSet()) GTEST_SKIP() << "this host has no locale with a decimal comma";
  const values::JsonRecord read = values::readJson(values::jsonOf<FileKind::macro>(macro, 180));
  ASSERT_EQ(read.error, "");
  EXPECT_EQ(macroIn(read).shapes.shapes[0].x, 0.1F);
  const values::JsonRecord readSheet = values::readJson(values::jsonOf<FileKind::sheet>(sheet, 180));
  ASSERT_EQ(readSheet.error, "");
  EXPECT_EQ(readSheet.as<FileKind::sheet>().lateValue, 0.1);
}

TEST(FromJson, TextsMayHaveEscapesAndEveryFormOfAFixedText) {
  Json json = document();
  json["$schema"] = "macro.json";
  json["record"]["shapes"]["shapes"][0]["note"] = "\u20AC\u0081";
  auto& text = json["record"]["shapes"]["shapes"][0]["text"];
  const std::size_t size = sizeof(Shape::text);
  text = {{"after", "ff00"}, {"text", "ab"}};
  values::JsonRecord read = readOf(json);
  ASSERT_EQ(read.error, "");
  const Shape& shape = macroIn(read).shapes.shapes[0];
  EXPECT_EQ(shape.note, "\x80\x81");
  EXPECT_EQ(std::string_view(shape.text, 6), std::string_view("ab\0\xFF\0\0", 6));
  text = std::string(size, 'x');
  read = readOf(json);
  ASSERT_EQ(read.error, "");
  EXPECT_EQ(std::string_view(macroIn(read).shapes.shapes[0].text, size), std::string(size, 'x'));
}

TEST(FromJson, RemarksAboutTheFileAreIgnored) {
  Json json = document();
  json["unread"] = 5;
  json["tolerated"] = {{"offset", 3}, {"field", "a"}, {"reason", "b"}};
  EXPECT_EQ(errorOf(json), "");
}

// ---- what is refused -----------------------------------------------------------------------------------

TEST(FromJson, WrongMembersAreNamedByTheirPath) {
  const auto changed = [](const std::string& pointer, const Json& value) {
    Json json = document();
    json[Json::json_pointer(pointer)] = value;
    return errorOf(json);
  };
  const auto without = [](const std::string& object, const std::string& member) {
    Json json = document();
    json[Json::json_pointer(object)].erase(member);
    return errorOf(json);
  };
  const std::string shape = "/record/shapes/shapes/0";
  EXPECT_EQ(changed(shape + "/x", "1"), "shapes.shapes[0].x: must be a number, not a string");
  EXPECT_EQ(changed(shape + "/x", nullptr), "shapes.shapes[0].x: must be a number, not null");
  EXPECT_EQ(changed(shape + "/x", true), "shapes.shapes[0].x: must be a number, not true or false");
  EXPECT_EQ(changed(shape + "/x", Json::array()), "shapes.shapes[0].x: must be a number, not an array");
  EXPECT_EQ(changed(shape + "/x", 1e39), "shapes.shapes[0].x: 1e+39 is out of range for a number of 32 bits");
  EXPECT_EQ(changed(shape + "/x", {{"bits", "7fc0000"}}), "shapes.shapes[0].x.bits: must be 8 hexadecimal digits");
  EXPECT_EQ(changed(shape + "/x", {{"bits", "7fc0000g"}}),
            "shapes.shapes[0].x.bits: must be pairs of hexadecimal digits");
  EXPECT_EQ(changed(shape + "/x", Json::object()), "shapes.shapes[0].x.bits: is missing");
  EXPECT_EQ(changed(shape + "/x", {{"bit", "7fc00000"}}), "shapes.shapes[0].x: \"bit\" is not known here");
  EXPECT_EQ(changed(shape + "/linkIndex", 1.5), "shapes.shapes[0].linkIndex: must be an integer, not 1.5");
  EXPECT_EQ(changed(shape + "/linkIndex", 2147483648),
            "shapes.shapes[0].linkIndex: 2147483648 is not within -2147483648 "
            "and 2147483647");
  EXPECT_EQ(changed(shape + "/linkIndex", 18446744073709551615U), "shapes.shapes[0].linkIndex: is out of range");
  EXPECT_EQ(changed(shape + "/flags", -1), "shapes.shapes[0].flags: -1 is not within 0 and 4294967295");
  EXPECT_EQ(changed(shape + "/lateByte1", 256), "shapes.shapes[0].lateByte1: 256 is not within 0 and 255");
  EXPECT_EQ(changed(shape + "/values/2", "a"), "shapes.shapes[0].values[2]: must be a number, not a string");
  EXPECT_EQ(changed(shape + "/values", {1, 2}), "shapes.shapes[0].values: must have 9 elements, not 2");
  EXPECT_EQ(changed(shape + "/values", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}),
            "shapes.shapes[0].values[9]: must not be: there is room for 9");
  EXPECT_EQ(changed(shape + "/values", 1), "shapes.shapes[0].values: must be an array, not a number");
  EXPECT_EQ(changed(shape + "/note", 5), "shapes.shapes[0].note: must be a string, not a number");
  EXPECT_EQ(changed(shape + "/note", "\u0416"), "shapes.shapes[0].note: \"\u0416\" has a character that cp1252 lacks");
  EXPECT_EQ(changed(shape + "/note", Json::object()), "shapes.shapes[0].note: must be a string, not an object");
  EXPECT_EQ(changed(shape + "/text", std::string(sizeof(Shape::text) + 1, 'x')).substr(0, 40),
            "shapes.shapes[0].text: has room for " + std::to_string(sizeof(Shape::text)).append(" bytes").substr(0, 4));
  EXPECT_EQ(changed(shape + "/text", std::string("a\0b", 3)).substr(0, 32), "shapes.shapes[0].text: has a NUL");
  EXPECT_EQ(changed(shape + "/text", {{"text", "a"}}), "shapes.shapes[0].text.after: is missing");
  EXPECT_EQ(changed(shape + "/text", {{"after", "61"}}), "shapes.shapes[0].text.text: is missing");
  EXPECT_EQ(changed(shape + "/text", {{"text", "a"}, {"after", "6"}}),
            "shapes.shapes[0].text.after: must be pairs of hexadecimal digits");
  EXPECT_EQ(changed(shape + "/text", {{"text", std::string(sizeof(Shape::text), 'x')}, {"after", ""}}).substr(0, 36),
            "shapes.shapes[0].text: has room for ");
  EXPECT_EQ(changed(shape, 1), "shapes.shapes[0]: must be an object, not a number");
  EXPECT_EQ(changed(shape + "/z", 1), "shapes.shapes[0]: \"z\" is not a member of Shape");
  EXPECT_EQ(changed("/record/\x1b[2J", 1), "\"\\u001b[2J\" is not a member of OldMacro");
  EXPECT_EQ(without(shape, "y"), "shapes.shapes[0].y: is missing");
  EXPECT_EQ(without("/record", "macroTailWords"), "macroTailWords: is missing");
  EXPECT_EQ(changed("/record/macroBlock", "0g"), "macroBlock: must be pairs of hexadecimal digits");
  EXPECT_EQ(changed("/record/macroBlock", "010203040506070809"), "macroBlock: has room for 8 bytes, not for 9");
}

TEST(FromJson, WrongDocumentsAreNamed) {
  const auto changed = [](const std::string& member, const Json& value) {
    Json json = document();
    json[member] = value;
    return errorOf(json);
  };
  EXPECT_EQ(changed("format", 2), "format: 2 is not known; this program reads format 1");
  EXPECT_EQ(changed("format", "1"), "format: must be an integer, not a string");
  EXPECT_EQ(changed("kind", "punch"), "kind: \"punch\" is not a kind of file");
  EXPECT_EQ(changed("kind", nullptr), "kind: must be a string, not null");
  EXPECT_EQ(changed("version", 70000), "version: must be within -32768 and 32767");
  EXPECT_EQ(changed("version", 1.5), "version: must be an integer, not 1.5");
  EXPECT_EQ(changed("encoding", "utf-8"), "encoding: \"utf-8\" is not an encoding");
  EXPECT_EQ(changed("record", nullptr), "record: null, because the file could not be loaded as any kind and version");
  EXPECT_EQ(changed("record", Json::array()), "record: must be an object, not an array");
  EXPECT_EQ(changed("extra", 1), "\"extra\" is not a member of a document");
  EXPECT_EQ(changed("fault", {{"offset", 3}, {"field", "a"}, {"reason", "b"}}).substr(0, 27),
            "fault: the file was damaged");
  EXPECT_EQ(changed("fault", {{"offset", "3"}}), "fault.offset: must be an integer, not a string");
  EXPECT_EQ(changed("tolerated", Json::object()), "tolerated: must have offset, field and reason");
  for (const char* member : {"format", "kind", "version", "encoding", "record"}) {
    Json json = document();
    json.erase(member);
    const std::string error = errorOf(json);
    EXPECT_TRUE(error == std::string(member) + ": is missing" ||
                error == "record: must come after " + std::string(member))
        << error;
  }
  for (const char* text : {"", "1", "[]", "null", "\"\"", "{}", "{\"record\":{}}", "[[[[", "nonsense", "{\"format\":1",
                           "{\"format\":1}{}", "\xEF\xBB\xBF", "{\"format\":1e999}"})
    EXPECT_NE(values::readJson(text).error, "") << text;
}

TEST(FromJson, DuplicateMembersAreRefused) {
  std::string text = document().dump();
  text.replace(text.find("\"macroBlock\""), 12, "\"macroHead\"");
  EXPECT_EQ(values::readJson(text).error, "macroHead: is there twice");
  text = document().dump();
  text.replace(text.find("\"kind\""), 6, "\"format\"");
  EXPECT_EQ(values::readJson(text).error, "format: is there twice");
}

TEST(FromJson, InvalidJsonIsRefusedWithItsPosition) {
  EXPECT_EQ(values::readJson("{\n  \"format\": nonsense}").error.substr(0, 34), "line 2, column 14: not valid JSON:");
  std::string text = document().dump();
  text.insert(text.find("note\",") + 2, "\xFF");
  EXPECT_NE(values::readJson(text).error.find("UTF-8"), std::string::npos) << values::readJson(text).error;
  text = document().dump();
  text.insert(text.find("note\",") + 2, "\x1b[2J");
  const std::string error = values::readJson(text).error;
  EXPECT_NE(error, "");
  EXPECT_EQ(error.find('\x1b'), std::string::npos);
}

TEST(FromJson, NumbersBeyondEveryDoubleAreNamedByTheirPath) {
  const auto with = [](const std::string& before, const std::string& after) {
    std::string text = document().dump();
    text.replace(text.find(before), before.size(), after);
    return values::readJson(text).error;
  };
  EXPECT_EQ(with("\"linkIndex\":-1,", "\"linkIndex\":1e999,"), "shapes.shapes[0].linkIndex: is out of range");
  EXPECT_EQ(with("\"values\":[0,0,", "\"values\":[0,-1e999,"), "shapes.shapes[0].values[1]: is out of range");
}

TEST(FromJson, EveryCutOfATextIsRefused) {
  const std::string text = document().dump();
  for (std::size_t size = 0; size < text.size(); ++size)
    ASSERT_NE(values::readJson(std::string_view(text).substr(0, size)).error, "") << size;
}

// Changes of single characters either are refused or make a record that can be saved or refused by a save.
TEST(FromJson, ChangedTextsDoNoHarm) {
  std::mt19937 engine(7);
  const std::string parts[] = {"{", "}", "[",           "]",    ",",    ":",  "\"",
                               "-", "9", "99999999999", "1e99", "null", "\\", "\xFF"};
  int refused = 0, saved = 0;
  for (const FileKind kind : {FileKind::macro, FileKind::specialTool, FileKind::part, FileKind::toolInventory})
    withFileRecord(kind, [&](auto file) {
      constexpr FileKind kKind = decltype(file)::kKind;
      const auto loaded = values::loadRecord<kKind>(randomFile(kKind, 160, 1).span());
      const std::string json = values::jsonOf<kKind>(*loaded.record, 160);
      for (int i = 0; i < (isLongRun() ? 20000 : 300); ++i) {
        std::string text = json;
        for (std::uint32_t n = 1 + engine() % 2; n > 0; --n)
          text.replace(engine() % text.size(), engine() % 3, parts[engine() % std::size(parts)]);
        const values::JsonRecord read = values::readJson(text);
        if (!read.error.empty()) {
          ++refused;
          continue;
        }
        codec::OutStream stream;
        if (values::storeRecord(stream, read, 160) == 0) ++saved;
      }
    });
  EXPECT_GT(refused, 100);
  EXPECT_GT(saved, 10);
}

TEST(FromJson, RecordsOfAnyContentAreSavedOrRefused) {
  int saved = 0;
  for (std::uint32_t round = 0; round < (isLongRun() ? 300U : 10U); ++round)
    for (const frame::FileKindInfo& info : frame::kFileKinds)
      withFileRecord(info.kind, [&](auto file) {
        const auto record = std::make_unique<typename decltype(file)::Record>();
        fillWithAnything(info.kind, record.get(), round);
        for (const int version : {52, 80, 112, 160, 180})
          if (values::saveRecord<decltype(file)::kKind>(*record, version).status == 0) ++saved;
      });
  EXPECT_GT(saved, 0);
}

// ---- limits --------------------------------------------------------------------------------------------

// A text that repeats a piece for ever; stops the test after that many bytes.
values::JsonRecord readEndless(const std::string& start, const std::string& piece, std::size_t most,
                               std::size_t& read) {
  std::string rest = start;
  read = 0;
  return values::readJson([&](char* to, std::size_t size) -> std::size_t {
    if (read > most) return 0;
    while (rest.size() < size) rest += piece;
    std::memcpy(to, rest.data(), size);
    rest.erase(0, size);
    read += size;
    return size;
  });
}

TEST(FromJson, EndlessTextsAreRefusedEarly) {
  constexpr std::size_t kMost = 64U << 20U, kEarly = 8U << 20U;
  const std::string head = R"({"format":1,"kind":"macro","version":180,"encoding":"cp1252",)";
  const std::pair<std::string, std::string> cases[] = {
      {"", "["},
      {"", "{\"a\":"},
      {"", " "},
      {head, "\n"},
      {head + "\"record\":", "["},
      {head + "\"record\":{\"shapes\":", "{\"shapes\":"},
      {head + "\"record\":{\"macroHead\":\"", "0"},
      {head + "\"record\":{\"macroHeadWord\":", "1"},
      {head + "\"record\":{\"", "a"},
      {head + "\"record\":{\"shapes\":{\"shapes\":[", "{},"},
      {head + "\"record\":{\"macroTailWords\":[", "1,"},
  };
  for (const auto& [start, piece] : cases) {
    std::size_t read = 0;
    const values::JsonRecord result = readEndless(start, piece, kMost, read);
    EXPECT_NE(result.error, "") << start << piece;
    EXPECT_LT(read, kEarly) << start << piece;
  }
}

TEST(FromJson, LongTextsAreReadWhereTheFieldHasNoLimit) {
  Json json = document();
  json["record"]["shapes"]["shapes"][0]["note"] = std::string(10U << 20U, 'n');
  const values::JsonRecord read = readOf(json);
  ASSERT_EQ(read.error, "");
  EXPECT_EQ(macroIn(read).shapes.shapes[0].note.size(), 10U << 20U);
}

// ---- the command ---------------------------------------------------------------------------------------

class FromJsonCommand : public testing::Test {
 protected:
  TempFolder folder_;
  std::string tool_ = folder_.write("tool.spt", specialToolFile(160, {1, 2}));
  std::string json_ = folder_.path("tool.json");
  std::string out_ = folder_.path("out.spt");

  void SetUp() override { ASSERT_EQ(torvio("json " + tool_ + " -o " + json_).code, 0); }
  std::size_t filesInFolder() const {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& one : std::filesystem::directory_iterator(folder_.path())) ++count;
    return count;
  }
  // The file as a load and a save make it.
  static Bytes saved(const std::string& path, int version) {
    const auto loaded = values::loadRecord<FileKind::specialTool>(TempFolder::read(path).span());
    return Bytes::of(values::saveRecord<FileKind::specialTool>(*loaded.record, version).bytes);
  }
};

TEST_F(FromJsonCommand, MakesTheFile) {
  const Outcome run = torvio("from-json " + json_ + " -o " + out_);
  EXPECT_EQ(run.code, 0) << run.errors;
  EXPECT_EQ(run.output + run.errors, "");
  EXPECT_TRUE(TempFolder::read(out_) == saved(tool_, 160));
  EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(FromJsonCommand, ReadsStandardInputAndSavesInAnotherVersion) {
  EXPECT_EQ(torvio("from-json --version 110 -o " + out_ + " < " + json_).code, 0);
  EXPECT_TRUE(TempFolder::read(out_) == saved(tool_, 110));
  const Outcome refused = torvio("from-json --version 51 -o " + out_ + " < " + json_);
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(refused.errors, "torvio: standard input: a special-tool file cannot be saved in version 51\n");
  EXPECT_EQ(torvio("from-json --version 40000 -o " + out_ + " < " + json_).code, 2);
  EXPECT_EQ(torvio("from-json --version x -o " + out_ + " < " + json_).code, 2);
  EXPECT_EQ(torvio("from-json < " + json_).code, 2);
}

TEST_F(FromJsonCommand, RefusedTextLeavesTheFileThatWasThere) {
  const Bytes before = Bytes().text(5, "hello");
  folder_.write("out.spt", before);
  const std::string wrong = folder_.write("wrong.json", Bytes().text(14, "{\"format\": 7}\n"));
  const Outcome run = torvio("from-json " + wrong + " -o " + out_);
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.errors.find("wrong.json: format: 7 is not known"), std::string::npos) << run.errors;
  EXPECT_EQ(torvio("from-json --version 1 " + json_ + " -o " + out_).code, 1);
  EXPECT_EQ(torvio("from-json " + folder_.path("none") + " -o " + out_).code, 3);
  EXPECT_EQ(torvio("from-json " + folder_.path() + " -o " + out_).code, 3);
  EXPECT_TRUE(TempFolder::read(out_) == before);
  EXPECT_EQ(filesInFolder(), 4U);
}

TEST_F(FromJsonCommand, SheetThatNoSaveCanStoreIsRefused) {
  OldSheet sheet;
  sheet.blocks.resize(1);
  const std::string text = values::jsonOf<FileKind::sheet>(sheet, 180);
  const std::string path = folder_.write("sheet.json", Bytes::of(std::as_bytes(std::span(text))));
  const Outcome run = torvio("from-json " + path + " -o " + out_);
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.errors.find("blocks: "), std::string::npos) << run.errors;
  EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(FromJsonCommand, PartIsNotSavedAsWhatALoadMisreads) {
  const std::string part = folder_.write("a.part", storedPartFile(180)), json = folder_.path("a.json");
  ASSERT_EQ(torvio("json " + part + " -o " + json).code, 0);
  for (const int version : {2, 3, 5}) {
    const Outcome run = torvio("from-json " + json + " -o " + out_ + " --version " + std::to_string(version));
    EXPECT_EQ(run.code, 1) << version;
    EXPECT_EQ(run.errors,
              "torvio: " + json + ": a part file cannot be saved in version " + std::to_string(version) + "\n");
    EXPECT_FALSE(std::filesystem::exists(out_));
  }
  EXPECT_EQ(torvio("from-json " + json + " -o " + out_ + " --version 52").errors, "");
}

TEST_F(FromJsonCommand, FileThatNoLoadReadsToItsEndIsReported) {
  const std::string sheet = folder_.path("a.sheet"), json = folder_.path("a.json"), fixed = folder_.path("b.sheet");
  OldSheet record;
  record.textEntries.resize(3);
  const std::string text = values::jsonOf<FileKind::sheet>(record, 112);
  folder_.write("a.json", Bytes::of(std::as_bytes(std::span(text))));
  const Outcome run = torvio("from-json " + json + " -o " + sheet);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.errors.find("torvio: " + sheet + ": a load does not read this file to its end: "), 0U) << run.errors;
  EXPECT_TRUE(run.errors.ends_with("; \"torvio convert --version 112\" fixes it\n")) << run.errors;
  // The bytes are those of the save.
  EXPECT_TRUE(TempFolder::read(sheet) == Bytes::of(values::saveRecord<FileKind::sheet>(record, 112).bytes));
  EXPECT_EQ(torvio("convert --version 112 " + sheet + " " + fixed).code, 0);
  EXPECT_EQ(torvio("check " + fixed).output.find(fixed + ": sound, sheet, version 112"), 0U);
  for (const int version : {152, 180})
    EXPECT_EQ(torvio("from-json " + json + " -o " + sheet + " --version " + std::to_string(version)).errors, "");
}

TEST_F(FromJsonCommand, StandardInputIsNotReplaced) {
  const std::string before = asText(TempFolder::read(json_));
  const Outcome run = torvio("from-json -o " + json_ + " < " + json_);
  EXPECT_EQ(run.code, 2);
  EXPECT_NE(run.errors.find("\" is both a file to read and the output\n"), std::string::npos) << run.errors;
  EXPECT_EQ(asText(TempFolder::read(json_)), before);
}

TEST_F(FromJsonCommand, FoldersLinksAndDevicesAreNotReplaced) {
  EXPECT_EQ(torvio("from-json " + json_ + " -o " + folder_.path()).code, 3);
  EXPECT_EQ(torvio("from-json " + json_ + " -o " + folder_.path("none") + "/out").code, 3);
  if (!kIsPosix) GTEST_SKIP() << "no links and devices to test";
  std::filesystem::create_symlink(tool_, out_);
  const Bytes before = TempFolder::read(tool_);
  const Outcome link = torvio("from-json " + json_ + " -o " + out_);
  EXPECT_EQ(link.code, 3);
  EXPECT_EQ(link.errors, "torvio: " + out_ + ": is a link\n");
  EXPECT_TRUE(TempFolder::read(tool_) == before);
  const Outcome device = torvio("from-json " + json_ + " -o /dev/null");
  EXPECT_EQ(device.code, 3);
  EXPECT_EQ(device.errors, "torvio: /dev/null: is not a regular file\n");
  EXPECT_EQ(filesInFolder(), 3U);
}

TEST_F(FromJsonCommand, ReplacedFileKeepsItsPermissions) {
  if (!kIsPosix) GTEST_SKIP() << "no permissions to keep";
  using std::filesystem::perms;
  folder_.write("out.spt", Bytes().u8(1));
  std::filesystem::permissions(out_, perms::owner_read | perms::owner_write);
  ASSERT_EQ(torvio("from-json " + json_ + " -o " + out_).code, 0);
  EXPECT_EQ(std::filesystem::status(out_).permissions(), perms::owner_read | perms::owner_write);
}

}  // namespace
