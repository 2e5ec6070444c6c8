// Records as JSON text: what is written for each type of member, for damaged files, for texts that mean something to
// whoever prints them, and what the command does.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/long_tests.h"
#include "tests/support/special_tool_files.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/random_files.h"
#include "torvio/values/json_reader.h"
#include "torvio/values/json_writer.h"
#include "torvio/values/text_encoding.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using frame::FileKind;
using Json = nlohmann::json;

std::string toolJson(const OldSpecialTool& tool) { return values::jsonOf<FileKind::specialTool>(tool, 180); }
// What is written for a member: the text after its first "name":.
std::string written(const std::string& json, const std::string& member) {
  const std::string key = '"' + member + "\":";
  const std::size_t at = json.find(key);
  return at == std::string::npos ? "" : json.substr(at + key.size());
}
void expectWritten(const std::string& json, const std::string& member, const std::string& value) {
  EXPECT_EQ(written(json, member).substr(0, value.size()), value) << member;
}

template <std::size_t N>
void setField(char (&field)[N], std::string_view bytes) {
  std::memset(field, 0, N);
  std::memcpy(field, bytes.data(), bytes.size());
}

// ---- members -----------------------------------------------------------------------------------------

TEST(Json, DocumentBeginsWithFormatKindVersionAndEncoding) {
  const OldMacro macro;
  EXPECT_TRUE(values::jsonOf<FileKind::macro>(macro, 162)
                  .starts_with("{\"format\":1,\"kind\":\"macro\",\"version\":162,\"encoding\":\"cp1252\",\"record\":{"
                               "\"macroHead\":\"\",\"macroHeadSecond\":\"\",\"macroHeadWord\":0,"));
  const std::string other = values::jsonOf<FileKind::macro>(macro, 0, "cp437");
  EXPECT_NE(other.find("\"version\":0,\"encoding\":\"cp437\""), std::string::npos);
  EXPECT_TRUE(other.ends_with("}}\n"));
}

TEST(Json, NumbersAreTheShortestThatReadBackToTheSameBits) {
  OldSpecialTool tool;
  const struct {
    float value;
    const char* json;
  } cases[] = {{0, "0,"},
               {-0.0F, "-0.0,"},
               {3, "3,"},
               {0.1F, "0.1,"},
               {-2.5F, "-2.5,"},
               {16777216, "16777216,"},
               {1e20F, "1e+20,"},
               {std::numeric_limits<float>::max(), "3.4028235e+38,"},
               {std::numeric_limits<float>::denorm_min(), "1e-45,"},
               {std::numeric_limits<float>::infinity(), "{\"bits\":\"7f800000\"},"},
               {-std::numeric_limits<float>::infinity(), "{\"bits\":\"ff800000\"},"},
               {std::bit_cast<float>(0x7fc00001U), "{\"bits\":\"7fc00001\"},"},
               {std::bit_cast<float>(0xff800001U), "{\"bits\":\"ff800001\"},"}};
  for (const auto& one : cases) {
    tool.specialValue = one.value;
    expectWritten(toolJson(tool), "specialValue", one.json);
  }
  OldSheet sheet;
  sheet.lateValue = std::bit_cast<double>(0xfff0000000000001U);
  expectWritten(values::jsonOf<FileKind::sheet>(sheet, 180), "lateValue", "{\"bits\":\"fff0000000000001\"}");
  sheet.lateValue = 0.1;
  expectWritten(values::jsonOf<FileKind::sheet>(sheet, 180), "lateValue", "0.1,");
}

TEST(Json, FixedTextIsAStringUnlessBytesFollowItsNul) {
  OldSpecialTool tool;
  auto& field = tool.tool.tailText;
  setField(field, "plain");
  expectWritten(toolJson(tool), "tailText", "\"plain\"}");
  setField(field, "");
  expectWritten(toolJson(tool), "tailText", "\"\"}");
  setField(field, std::string_view("new\0old\0\xFF", 9));
  expectWritten(toolJson(tool), "tailText", "{\"text\":\"new\",\"after\":\"6f6c6400ff\"}}");
  std::memset(field, 'x', sizeof field);
  expectWritten(toolJson(tool), "tailText", '"' + std::string(sizeof field, 'x') + "\"}");
  setField(field, "\x80\xFC\x81");
  expectWritten(toolJson(tool), "tailText", "\"\u20AC\u00FC\\u0081\"}");
}

TEST(Json, BlockIsHexadecimalWithoutItsTrailingZeros) {
  OldMacro macro;
  macro.macroBlock[0] = 1;
  macro.macroBlock[2] = 0xAB;
  expectWritten(values::jsonOf<FileKind::macro>(macro, 180), "macroBlock", "\"0100ab\",");
}

TEST(Json, LazyArrayEndsWithItsLastElementThatIsNotNew) {
  OldSheet sheet;
  const auto slots = [&] {
    return Json::parse(values::jsonOf<FileKind::sheet>(sheet, 180))["record"]["processSlots"].size();
  };
  EXPECT_EQ(slots(), 0U);
  (void)sheet.processSlots[7];  // allocates and changes nothing
  EXPECT_EQ(slots(), 0U);
  sheet.processSlots[3].slotWord1 = 5;
  EXPECT_EQ(slots(), 4U);
  sheet.processSlots[249].slotWord1 = 5;
  EXPECT_EQ(slots(), 250U);
}

TEST(Json, PairsAreArraysOfTwo) {
  TorvPart part;
  part.patterns.resize(1);
  part.patterns[0].bindFirst = {{1, 2}, {3, 4294967295U}};
  expectWritten(values::jsonOf<FileKind::part>(part, 180), "bindFirst", "[[1,2],[3,4294967295]],");
}

TEST(Json, MembersThatNoFileStoresAreWrittenOnlyIfTheyDifferFromANewRecord) {
  OldSpecialTool tool;
  EXPECT_EQ(toolJson(tool).find("\"name\""), std::string::npos);
  tool.tool.name = "PUNCH";
  expectWritten(toolJson(tool), "name", "\"PUNCH\",");
}

TEST(Json, EveryMemberThatFilesStoreIsThereUnderItsName) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [](auto file) {
      using Record = typename decltype(file)::Record;
      const auto record = std::make_unique<Record>();
      const Json json = Json::parse(values::jsonOf<decltype(file)::kKind>(*record, 180));
      values::Members<Record>::of(*record, [&](const values::MemberInfo& member, const auto&) {
        if (member.isStored) {
          EXPECT_TRUE(json["record"].contains(member.name)) << member.name;
        }
      });
    });
}

TEST(Json, PrettyTextHasTheSameValues) {
  const auto loaded = values::loadRecord<FileKind::sheet>(sheetFile(180).span());
  const std::string plain = values::jsonOf<FileKind::sheet>(*loaded.record, 180);
  const std::string pretty = values::jsonOf<FileKind::sheet>(*loaded.record, 180, "cp1252", true);
  EXPECT_EQ(Json::parse(plain), Json::parse(pretty));
  EXPECT_NE(pretty.find("\n  \"kind\": \"sheet\",\n"), std::string::npos);
  EXPECT_NE(pretty.find("\n    \"trailingWords\": ["), std::string::npos);
  EXPECT_EQ(plain.find('\n'), plain.size() - 1);
}

// ---- texts -------------------------------------------------------------------------------------------

// Sets every text of a record to this one, as far as it fits.
class TextSetter {
 public:
  explicit TextSetter(std::string text) : text_(std::move(text)) {}

  template <class T>
  void set(T& value) {
    if constexpr (values::FixedText<T>) {
      const std::size_t size = std::min(text_.size(), std::size(value));
      std::memset(std::data(value), 0, std::size(value));
      std::memcpy(std::data(value), text_.data(), size);
      ++count;
    } else if constexpr (values::Text<T>) {
      value = text_;
      ++count;
    } else if constexpr (values::Number<T> || values::kIsPair<T> || values::Lazy<T>) {
      return;
    } else if constexpr (values::List<T>) {
      value.resize(1);
      for (auto& element : value) set(element);
    } else if constexpr (values::Array<T>) {
      for (auto& element : value) set(element);
    } else {
      values::Members<T>::of(value, [this](const values::MemberInfo&, auto& member) { this->set(member); });
    }
  }

  int count = 0;

 private:
  std::string text_;
};

// The same without any of its strings.
Json shapeOf(const Json& json) {
  if (json.is_string()) return "";
  if (!json.is_structured()) return json;
  Json shape = json.is_array() ? Json::array() : Json::object();
  if (json.is_array())
    for (const Json& one : json) shape.push_back(shapeOf(one));
  else
    for (const auto& [key, value] : json.items()) shape[key] = shapeOf(value);
  return shape;
}

TEST(Json, NoTextOfAFileHasAnyEffect) {
  std::string allBytes;
  for (int byte = 1; byte < 256; ++byte) allBytes += static_cast<char>(byte);
  const std::string hostile[] = {"\",\"kind\":\"part\"}",
                                 "</script><script>alert(1)</script>",
                                 "\\",
                                 "\x1b]0;title\x07\x1b[2J",
                                 "\x9B"
                                 "2J\x90q\x9D",
                                 "a\nb\r\nc\td\x7F",
                                 "'; DROP TABLE files; --",
                                 "{\"text\":\"\",\"after\":\"\"}",
                                 "\\u0000\\ud800",
                                 allBytes};
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      using Record = typename decltype(file)::Record;
      constexpr FileKind kKind = decltype(file)::kKind;
      const auto harmless = std::make_unique<Record>();
      TextSetter("x").set(*harmless);
      const Json shape = shapeOf(Json::parse(values::jsonOf<kKind>(*harmless, 180)));
      for (const std::string& text : hostile)
        for (const char* encoding : {"cp1252", "latin1", "cp437"}) {
          const auto record = std::make_unique<Record>();
          TextSetter setter(text);
          setter.set(*record);
          EXPECT_GT(setter.count, 0);
          const std::string json = values::jsonOf<kKind>(*record, 180, encoding);
          const Json parsed = Json::parse(json);  // which also refuses what is no UTF-8
          EXPECT_EQ(shapeOf(parsed), shape) << info.name << ' ' << text;
          for (std::size_t i = 0; i + 1 < json.size(); ++i) {
            const auto code = static_cast<unsigned char>(json[i]), after = static_cast<unsigned char>(json[i + 1]);
            const bool isControl = code < 0x20 || code == 0x7F || (code == 0xC2 && after < 0xA0);
            ASSERT_FALSE(isControl) << info.name << ' ' << encoding << " at " << i;
          }
          const values::JsonRecord read = values::readJson(json);
          ASSERT_EQ(read.error, "");
          EXPECT_EQ(differenceOf(kKind, record.get(), read.record.get()), std::nullopt) << info.name << ' ' << text;
        }
    });
}

// ---- files -------------------------------------------------------------------------------------------

std::string jsonOfFile(const Bytes& bytes, FileKind kind, const explain::FileReport& report) {
  std::string json;
  values::writeFileAsJson([&](std::string_view piece) { json += piece; }, bytes.span(), kind, report, "cp1252");
  return json;
}

TEST(Json, DamagedFileHasWhatWasReadAndTheFault) {
  int damaged = 0, tolerated = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes whole = kind.file(version);
      const std::size_t step = isLongRun() ? 7 : std::max<std::size_t>(whole.size() / 20, 1);
      for (std::size_t size = 0; size <= whole.size(); size += step) {
        const Bytes cut = whole.cut(size);
        const explain::FileReport report = explain::checkFile(cut.span(), kind.kind);
        const Json json = Json::parse(jsonOfFile(cut, kind.kind, report));
        EXPECT_EQ(json["kind"], kind.name);
        ASSERT_EQ(json.contains("fault"), report.fault.has_value());
        ASSERT_EQ(json.contains("tolerated"), report.tolerated.has_value());
        EXPECT_EQ(json["record"].is_null(), size < 2);
        if (report.tolerated) ++tolerated;
        if (!report.fault) continue;
        ++damaged;
        EXPECT_EQ(json["fault"]["offset"], report.fault->offset);
        EXPECT_EQ(json["fault"]["field"], report.fault->path);
        EXPECT_EQ(json["fault"]["reason"], report.fault->reason);
      }
    }
  EXPECT_GT(damaged, 300);
  EXPECT_GT(tolerated, 0);
}

TEST(Json, DamagedFileKeepsTheMembersBeforeTheFault) {
  const Bytes whole = specialToolFile(60, {3, 3, 3});
  const Bytes cut = whole.cut(whole.size() - 60);
  const Json json =
      Json::parse(jsonOfFile(cut, FileKind::specialTool, explain::checkFile(cut.span(), FileKind::specialTool)));
  EXPECT_EQ(json["record"]["specialValue"], 50);
  EXPECT_EQ(json["record"]["shapes"]["shapes"].size(), 2U);
  EXPECT_EQ(json["fault"]["field"].get<std::string>().substr(0, 17), "shapes.shapes[2].");
}

TEST(Json, UnreadBytesAreCounted) {
  Bytes file = specialToolFile(60, {3});
  file.zeros(37);
  const Json json =
      Json::parse(jsonOfFile(file, FileKind::specialTool, explain::checkFile(file.span(), FileKind::specialTool)));
  EXPECT_EQ(json["unread"], 37);
  EXPECT_FALSE(json.contains("fault"));
}

// ---- the command -------------------------------------------------------------------------------------

class JsonCommand : public testing::Test {
 protected:
  TempFolder folder_;
  std::string tool_ = folder_.write("tool.spt", specialToolFile(60, {3}));
  std::string text(const std::string& name) const { return asText(TempFolder::read(folder_.path(name))); }
};

TEST_F(JsonCommand, PrintsTheRecordOfAFile) {
  const Outcome run = torvio("json " + tool_);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.errors, "");
  const Json json = Json::parse(run.output);
  EXPECT_EQ(json["kind"], "special-tool");
  EXPECT_EQ(json["version"], 60);
  EXPECT_EQ(json["record"]["tool"]["dimension1"], 11);
}

TEST_F(JsonCommand, OptionsChooseKindEncodingLayoutAndFile) {
  const Outcome pretty = torvio("json --pretty --kind special-tool --encoding cp850 " + tool_);
  EXPECT_EQ(pretty.code, 0);
  EXPECT_NE(pretty.output.find("\n  \"encoding\": \"cp850\","), std::string::npos);
  const Outcome toFile = torvio("json " + tool_ + " -o " + folder_.path("out.json"));
  EXPECT_EQ(toFile.code, 0);
  EXPECT_EQ(toFile.output, "");
  EXPECT_EQ(text("out.json"), torvio("json " + tool_).output);
  EXPECT_EQ(torvio("json --encoding utf-7 " + tool_).code, 2);
  EXPECT_EQ(torvio("json --kind unknown " + tool_).code, 2);
  EXPECT_EQ(torvio("json").code, 2);
}

TEST_F(JsonCommand, DamagedFileIsReportedOnStandardErrorToo) {
  const std::string path = folder_.write("cut.spt", specialToolFile(60, {3}).cut(100));
  const Outcome run = torvio("json " + path + " -o " + folder_.path("out.json"));
  EXPECT_EQ(run.code, 1);
  const Json fault = Json::parse(text("out.json"))["fault"];
  EXPECT_NE(run.errors.find(fault["field"].get<std::string>() + ": " + fault["reason"].get<std::string>()),
            std::string::npos)
      << run.errors;
}

TEST_F(JsonCommand, FileOfUnknownKindOrVersionHasNoRecord) {
  const Outcome unknown = torvio("json " + folder_.write("text", Bytes().i16(-1).zeros(20)));
  EXPECT_EQ(unknown.code, 1);
  const Json json = Json::parse(unknown.output);
  EXPECT_TRUE(json["kind"].is_null());
  EXPECT_TRUE(json["record"].is_null());
  EXPECT_EQ(json["fault"]["field"], "version");
  const Outcome refused = torvio("json --kind machine " + folder_.write("old", Bytes().i16(3).zeros(100)));
  EXPECT_EQ(refused.code, 1);
  EXPECT_EQ(Json::parse(refused.output)["kind"], "machine");
  EXPECT_TRUE(Json::parse(refused.output)["record"].is_null());
  const Outcome empty = torvio("json " + folder_.write("empty", Bytes()));
  EXPECT_EQ(empty.code, 1);
  EXPECT_TRUE(Json::parse(empty.output)["version"].is_null());
}

TEST_F(JsonCommand, FilesThatCannotBeReadOrWrittenAreNamed) {
  const Outcome none = torvio("json " + folder_.path("none"));
  EXPECT_EQ(none.code, 3);
  EXPECT_NE(none.errors.find("none: cannot be opened"), std::string::npos);
  EXPECT_EQ(none.output, "");
  const Outcome folder = torvio("json " + tool_ + " -o " + folder_.path());
  EXPECT_EQ(folder.code, 3);
  EXPECT_NE(folder.errors.find("is a folder"), std::string::npos) << folder.errors;
  EXPECT_EQ(torvio("json " + tool_ + " -o " + folder_.path("no") + "/such/file").code, 3);
}

}  // namespace
