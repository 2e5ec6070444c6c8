// Texts of files and their names are only data: whatever they contain, no output of any verb does more than show them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/output_checks.h"
#include "torvio/archive/facts.h"
#include "torvio/explain/file_map.h"
#include "torvio/values/all_members.h"
#include "torvio/values/compiled_records.h"
#include "torvio/values/text_encoding.h"

#if defined(TORVIO_WITH_SQLITE)
#include <sqlite3.h>
#endif

namespace {

using namespace oldtorvio;
using namespace testing_support;
using namespace std::string_literals;
using nlohmann::json;

// ---- hostile texts -----------------------------------------------------------------------------------

// As bytes of a file. Short ones too: many fields have few bytes.
const std::vector<std::string>& hostileTexts() {
  static const std::vector<std::string> kTexts{"\x1b]0;owned\x07",
                                               "\x1b[2J\x1b[31mred",
                                               "a\nb\r\nc\n",
                                               "\"'><script>alert(1)</script>",
                                               "</svg></text></title></style></script><img src=x onerror=alert(1)>",
                                               "]]>",
                                               "<!--",
                                               "-->",
                                               "&lt;&#x1b;&amp;",
                                               "\"; DROP TABLE files; --",
                                               "'); DELETE FROM file; --",
                                               R"({"x":1})",
                                               R"("},{"verdict":"sound"})",
                                               "\x9b"s + "31m\x90q\x9c\x9d\x81\x8d\x8f",
                                               "\xe2\x80\xae\xe2\x80\x8f\xe2\x80\xa8",
                                               "\xff\xfe\xc3\x28\x80\xc0\xaf",
                                               "%s%n%x",
                                               "\t|\t\v\f\b\x7f",
                                               "\\u001b\\x1b\\",
                                               "$(id)`id`",
                                               "\x1b",
                                               "\n",
                                               "<",
                                               "\"",
                                               "'",
                                               "&",
                                               "\x9b"};
  return kTexts;
}

// Fills every text of a record, each with the next of the texts.
class Poison {
 public:
  explicit Poison(std::size_t first) : next_(first) {}

  template <class T>
  void fill(T& value) {
    if constexpr (values::Number<T>) {
      // No text.
    } else if constexpr (values::FixedText<T>) {
      const std::string& text = next();
      const std::size_t size = std::size(value), length = std::min(text.size(), size - 1);
      std::memcpy(std::data(value), text.data(), length);
      value[length] = '\0';
      // Bytes after the NUL are kept, too.
      if (next_ % 3 == 0 && length + 4 < size) std::memcpy(std::data(value) + length + 1, "\x1b[7m", 4);
      // Without a NUL.
      if (next_ % 7 == 0)
        for (std::size_t i = 0; i < size; ++i) value[i] = text[i % text.size()];
      ++texts_;
    } else if constexpr (values::Text<T>) {
      value = next();
      if (next_ % 3 == 0) value.append(1, '\0').append("\x1b[7m after a NUL");
      ++texts_;
    } else if constexpr (values::kIsPair<T>) {
      fill(value.first);
      fill(value.second);
    } else if constexpr (values::Array<T> || values::List<T>) {
      for (auto& element : value) fill(element);
    } else if constexpr (values::Lazy<T>) {
      fill(value[0]);
    } else {
      values::Members<T>::of(value, [this](const values::MemberInfo& info, auto& member) {
        if (info.isStored) this->fill(member);
      });
    }
  }
  std::size_t texts() const { return texts_; }

 private:
  const std::string& next() { return hostileTexts()[next_++ % hostileTexts().size()]; }

  std::size_t next_, texts_ = 0;
};

// A sound file with these texts. Nothing if the texts make a file of this kind and version unsound.
template <frame::FileKind kKind>
std::optional<Bytes> poisoned(const Bytes& file, int version, std::size_t first) {
  auto record = std::move(values::loadRecord<kKind>(file.span()).record);
  Poison poison(first);
  poison.fill(*record);
  if constexpr (kKind == frame::FileKind::sheet) {
    // The widths say how much of these texts is stored.
    record->textWidth = 256;
    record->partList.nameWidth = 256;
  }
  if (poison.texts() == 0) return std::nullopt;
  // What a load keeps of them.
  auto saved = values::saveRecord<kKind>(*record, version);
  auto loaded = values::loadRecord<kKind>(saved.bytes);
  if (loaded.status != 0) return std::nullopt;
  saved = values::saveRecord<kKind>(*loaded.record, version);
  if (!explain::checkFile(saved.bytes, kKind).endsExactly()) return std::nullopt;
  loaded = values::loadRecord<kKind>(saved.bytes);
  if (values::saveRecord<kKind>(*loaded.record, version).bytes != saved.bytes) return std::nullopt;
  return Bytes::of(saved.bytes);
}

// Its beginning, which a load refuses.
std::optional<Bytes> damaged(const Bytes& file, frame::FileKind kind) {
  for (std::size_t size = file.size() * 2 / 3; size > 2; size = size * 2 / 3)
    if (const Bytes cut = file.cut(size); explain::checkFile(cut.span(), kind).status != 0) return cut;
  return std::nullopt;
}

std::string inShellQuotes(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) c == '\'' ? quoted += "'\\''" : quoted += c;
  return quoted + "'";
}

std::vector<std::string> linesIn(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    lines.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return lines;
}

bool canBeDrawn(const std::string& kind) {
  return kind == "sheet" || kind == "part" || kind == "group-part" || kind == "machine";
}

// A folder and names of files that are hostile themselves.
class HostileTexts : public testing::Test {
 protected:
  void SetUp() override {
    if (!kIsPosix) GTEST_SKIP() << "no such names";
    std::filesystem::create_directory(root_.path(kFolder));
  }

  struct File {
    const Kind* kind;
    int version;
    std::string path;
    Bytes bytes;
    std::string quoted() const { return " --kind " + kind->name + " " + inShellQuotes(path); }
  };

  // Every kind at the newest version and an older one, with other texts and names each.
  std::vector<File> files() {
    std::vector<File> all;
    for (const Kind& kind : kinds()) {
      std::vector<int> versions;
      for (const int version : kind.versions)
        if (version <= 180) versions.push_back(version);
      for (const int version : {versions.back(), versions[versions.size() / 2]}) {
        for (std::size_t first = all.size() * 5, tries = 0; tries < 3; ++tries, ++first) {
          const auto bytes = withFileRecord(kind.kind, [&](auto file) {
            return poisoned<decltype(file)::kKind>(kind.file(version), version, first);
          });
          if (!bytes) continue;
          const std::string name = std::to_string(all.size()) + nameFor(all.size());
          all.push_back({&kind, version, root_.write(std::string(kFolder) + "/" + name, *bytes), *bytes});
          break;
        }
      }
      EXPECT_FALSE(all.empty() || all.back().kind != &kind) << "no file of " << kind.name;
    }
    return all;
  }

  static std::string nameFor(std::size_t number) {
    static const std::vector<std::string> kNames{"\n\x1b]0;n\x07<b>\"';--.x",
                                                 "\xE4\xFF\x9b"
                                                 "31m\x80.x",
                                                 "\u202Egpj.\u200F\u2028.x",
                                                 "\u009B31m\u0090q\u009D.x",
                                                 "{\"x\":1}\",\"verdict\":\"sound.x",
                                                 "<svg onload=alert(1)>]]>-->.x",
                                                 "'); DROP TABLE file; --.x",
                                                 "\r\n: sound, sheet, version 180\n.x",
                                                 "%s%n\\u001b\\x1b\x7f\t.x"};
    return kNames[number % kNames.size()];
  }

  // Runs it and checks what every output promises: nothing in it has an effect on a terminal.
  static Outcome run(const std::string& arguments, int code = 0) {
    Outcome outcome = checked(arguments);
    EXPECT_EQ(outcome.code, code) << arguments << "\n" << outcome.errors;
    return outcome;
  }
  static Outcome checked(const std::string& arguments) {
    Outcome outcome = torvio(arguments);
    EXPECT_EQ(plainFault(outcome.output), "") << arguments;
    EXPECT_EQ(plainFault(outcome.errors), "") << arguments;
    return outcome;
  }
  static json parsed(const std::string& text) {
    json value = json::parse(text, nullptr, false);
    EXPECT_FALSE(value.is_discarded()) << text.substr(0, 2000);
    return value;
  }
  // A line that is an object for each.
  static std::vector<json> objectsIn(const std::string& output) {
    std::vector<json> all;
    for (const std::string& line : linesIn(output)) all.push_back(parsed(line));
    return all;
  }

  static constexpr const char* kFolder = "\x1b[1m<i>\n\"'--";
  TempFolder root_;
};

TEST_F(HostileTexts, CheckPrintsOneLineForEachFile) {
  for (const File& file : files()) {
    const Outcome text = run("check" + file.quoted());
    EXPECT_EQ(linesIn(text.output).size(), 1U) << text.output;
    EXPECT_NE(text.output.find(": sound, " + file.kind->name + ", version " + std::to_string(file.version)),
              std::string::npos)
        << text.output;
    const auto objects = objectsIn(run("check --json" + file.quoted()).output);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(objects[0]["path"], values::fileNameAsUtf8(file.path));
    EXPECT_EQ(objects[0]["verdict"], "sound");
    EXPECT_EQ(objects[0].contains("pathBytes"), values::fileNameAsUtf8(file.path) != file.path);
  }
}

TEST_F(HostileTexts, InfoKeepsItsLines) {
  for (const File& file : files()) {
    const Outcome text = run("info --all" + file.quoted());
    // Lines of a block are indented; its name is not.
    const auto lines = linesIn(text.output);
    ASSERT_GE(lines.size(), 2U);
    EXPECT_FALSE(lines[0].starts_with("  "));
    for (std::size_t i = 1; i < lines.size(); ++i) EXPECT_TRUE(lines[i].starts_with("  ")) << lines[i];
    const auto objects = objectsIn(run("info --json" + file.quoted()).output);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(objects[0]["verdict"], "sound");
    EXPECT_EQ(objects[0]["kind"], file.kind->name);
  }
}

TEST_F(HostileTexts, JsonMakesTheSameFileAgain) {
  const std::string out = root_.path("again"), document = root_.path("document");
  const auto encodings = values::TextEncoding::names();
  std::size_t number = 0;
  for (const File& file : files())
    for (const std::string form : {"", " --pretty"}) {
      const std::string encoding = encodings[number++ % encodings.size()];
      const Outcome text = run("json" + form + " --encoding " + encoding + file.quoted());
      if (form.empty()) {
        EXPECT_EQ(linesIn(text.output).size(), 1U);
      }
      EXPECT_EQ(parsed(text.output)["kind"], file.kind->name);
      root_.write("document", Bytes::of(std::as_bytes(std::span(text.output))));
      const Outcome made = run("from-json " + document + " -o " + out);
      EXPECT_EQ(made.output, "");
      EXPECT_EQ(TempFolder::read(out), file.bytes) << file.kind->name << ' ' << file.version << ' ' << encoding;
    }
}

TEST_F(HostileTexts, MapPrintsOneLineForEachField) {
  for (const File& file : files()) {
    std::size_t fields = 0;
    (void)explain::mapFile(file.bytes.span(), file.kind->kind, [&](const explain::MapLine&) { ++fields; });
    EXPECT_GE(linesIn(run("map" + file.quoted()).output).size(), fields);
    EXPECT_EQ(linesIn(run("map" + file.quoted()).output).size(),
              linesIn(run("map --encoding cp1252" + file.quoted()).output).size());
    const auto objects = objectsIn(run("map --json" + file.quoted()).output);
    EXPECT_GE(objects.size(), fields);
    for (const json& object : objects) EXPECT_TRUE(object.is_object() && object.contains("offset")) << object;
    const Outcome page = run("map --html" + file.quoted());
    EXPECT_EQ(htmlFault(page.output, 2), "") << file.kind->name;
    const std::string data = page.output.substr(page.output.find(" id=\"data\">") + 11);
    EXPECT_EQ(parsed(data.substr(0, data.find("</script>")))["kind"], file.kind->name);
  }
}

TEST_F(HostileTexts, PicturesAndPagesAreWellFormed) {
  std::string all;
  for (const File& file : files()) {
    if (!canBeDrawn(file.kind->name)) {
      (void)run("draw" + file.quoted(), 1);
      continue;
    }
    EXPECT_EQ(svgFault(run("draw" + file.quoted()).output), "") << file.kind->name;
    EXPECT_EQ(htmlFault(run("draw --html" + file.quoted()).output, 0), "") << file.kind->name;
    if (file.kind->name == "sheet") all += " " + inShellQuotes(file.path);
  }
  EXPECT_EQ(htmlFault(run("draw --html --kind sheet" + all).output, 0), "");
}

TEST_F(HostileTexts, DiffPrintsOneLineForEachDifference) {
  const std::vector<File> all = files();
  for (std::size_t i = 0; i + 1 < all.size(); ++i) {
    const File &a = all[i], &b = all[i + 1];
    if (a.kind != b.kind) continue;
    const std::string both = " --kind " + a.kind->name + " " + inShellQuotes(a.path) + " " + inShellQuotes(b.path);
    const Outcome text = run("diff" + both, 1);
    const auto objects = objectsIn(run("diff --json" + both, 1).output);
    ASSERT_FALSE(objects.empty());
    EXPECT_TRUE(objects.back().contains("summary"));
    // The two files, the differences, their number.
    EXPECT_EQ(linesIn(text.output).size(), 3 + objects.back()["summary"]["differences"].get<std::size_t>());
    EXPECT_EQ(run("diff --kind " + a.kind->name + " " + inShellQuotes(a.path) + " " + inShellQuotes(a.path)).code, 0);
  }
}

TEST_F(HostileTexts, NewFilesAndTheirReportsAreSound) {
  const std::string out = root_.path(kFolder) + "/\x1b[1mout\n", to = " " + inShellQuotes(out);
  std::size_t made = 0;
  const auto make = [&](const std::string& command, const File& file, const std::string& from) {
    const std::string arguments = command + " --kind " + file.kind->name + " " + inShellQuotes(from);
    const auto report = objectsIn(checked(arguments + " --dry-run --json").output);
    EXPECT_EQ(report.size(), 1U) << arguments;
    const Outcome outcome = checked(arguments + to);
    EXPECT_LE(outcome.code, 1) << arguments;
    EXPECT_LE(linesIn(outcome.errors).size(), 1U) << outcome.errors;
    if (!std::filesystem::exists(out)) return;
    EXPECT_EQ(run("check --json --kind " + file.kind->name + to).errors, "");
    std::filesystem::remove(out);
    ++made;
  };
  for (const File& file : files()) {
    for (const int version : {52, 120, 180})
      make("convert --allow-loss --version " + std::to_string(version), file, file.path);
    const auto cut = damaged(file.bytes, file.kind->kind);
    ASSERT_TRUE(cut) << file.kind->name;
    make("recover", file, root_.write(std::string(kFolder) + "/cut" + nameFor(cut->size()), *cut));
  }
  EXPECT_GT(made, 16U);
}

// Damaged, foreign and missing files: the texts are in what is said of them.
TEST_F(HostileTexts, FaultsAndErrorsAreOneLine) {
  for (const File& file : files()) {
    const auto cut = damaged(file.bytes, file.kind->kind);
    ASSERT_TRUE(cut) << file.kind->name;
    const std::string path = root_.write(std::string(kFolder) + "/cut" + nameFor(cut->size()), *cut);
    const std::string arguments = " --kind " + file.kind->name + " " + inShellQuotes(path);
    EXPECT_EQ(linesIn(run("check" + arguments, 1).output).size(), 1U);
    (void)objectsIn(run("check --json" + arguments, 1).output);
    for (const char* verb : {"info", "map", "map --json"}) (void)run(verb + arguments, 1);
    EXPECT_EQ(htmlFault(run("map --html" + arguments, 1).output, 2), "");
    EXPECT_EQ(linesIn(run("json" + arguments, 1).errors).size(), 1U);
    if (canBeDrawn(file.kind->name)) {
      const Outcome picture = run("draw" + arguments, 1);
      EXPECT_EQ(linesIn(picture.errors).size(), 1U);
      EXPECT_EQ(svgFault(picture.output), "");
      EXPECT_EQ(htmlFault(run("draw --html" + arguments, 1).output, 0), "");
    }
    std::filesystem::remove(path);
  }
  for (std::size_t i = 0; i < 9; ++i) {
    const std::string none = inShellQuotes(root_.path(kFolder) + "/none" + nameFor(i));
    for (const std::string verb : {"check ", "info ", "json ", "map ", "map --json ", "map --html ", "draw ",
                                   "draw --html ", "from-json -o out ", "check --catalogue ", "check --files-from "})
      (void)run(verb + none, verb == "check --catalogue " ? 2 : 3);
    EXPECT_EQ(run("diff " + none + " " + none, 2).output, "");
    // As the value of an option.
    for (const std::string verb :
         {"check --kind ", "check --encoding ", "check --ext ", "check --only ", "map --offset ", "check --jobs ",
          "draw --encoding ", "diff --tolerance ", "diff --limit ", "convert --version ", "from-json --version ",
          "draw --html=", "check --json=", "format --version ", ""})
      (void)run(verb + none + " x", 2);
    (void)run("check x --catalogue " + none + "/c", 3);
  }
}

// Members and values of a JSON text are quoted in messages.
TEST_F(HostileTexts, MessagesAboutJsonAreOneLine) {
  const std::string out = root_.path("out");
  for (const std::string& text : hostileTexts()) {
    std::string bytes;
    values::TextEncoding().appendUtf8(bytes, text);
    const std::string name = json(bytes).dump();
    for (const std::string& document :
         {"{" + name + ":1}", "{\"format\":1,\"kind\":" + name + "}",
          "{\"format\":1,\"kind\":\"macro\",\"version\":180,\"record\":{" + name + ":1}}",
          "{\"format\":1,\"kind\":\"macro\",\"version\":180,\"record\":{\"macroHeadWord\":" + name + "}}",
          "{\"format\":1,\"kind\":\"macro\",\"version\":180,\"record\":{\"macroHead\":\"" + text + "\"}", text,
          "{\"format\":1,\"kind\":\"macro\",\"version\":180,\"encoding\":" + name + "}"}) {
      root_.write("document", Bytes::of(std::as_bytes(std::span(document))));
      const Outcome refused = run("from-json " + root_.path("document") + " -o " + out, 1);
      EXPECT_EQ(linesIn(refused.errors).size(), 1U) << refused.errors;
    }
  }
}

#if defined(TORVIO_WITH_SQLITE)

// The first column of each row; a blob as its bytes.
std::vector<std::string> valuesIn(const std::string& catalogue, const std::string& sql) {
  std::vector<std::string> all;
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open_v2(catalogue.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_stmt* query = nullptr;
  EXPECT_EQ(sqlite3_prepare_v2(database, sql.c_str(), -1, &query, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
  while (sqlite3_step(query) == SQLITE_ROW) {
    const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(query, 0));
    all.emplace_back(bytes != nullptr ? std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(query, 0)))
                                      : std::string());
  }
  (void)sqlite3_finalize(query);
  (void)sqlite3_close(database);
  return all;
}

TEST_F(HostileTexts, CatalogueHasThemExactly) {
  const std::string catalogue = root_.path("c'\n\x1b[1m.sqlite");
  for (const File& file : files()) {
    std::filesystem::remove(catalogue);
    (void)run("check -o " + inShellQuotes(catalogue) + file.quoted());
    EXPECT_EQ(valuesIn(catalogue, "SELECT path FROM file"), std::vector<std::string>{file.path});
    const archive::Facts facts = withFileRecord(file.kind->kind, [&](auto one) {
      const auto loaded = values::loadRecord<decltype(one)::kKind>(file.bytes.span());
      return archive::factsOf(*loaded.record, values::TextEncoding());
    });
    const std::pair<const char*, const std::optional<std::string>*> columns[] = {
        {"name", &facts.name},
        {"assembly", &facts.assembly},
        {"material", &facts.material},
        {"machine", &facts.machine},
        {"material_type", &facts.materialType},
        {"material_group", &facts.materialGroup},
        {"work_order", &facts.workOrder}};
    for (const auto& [column, value] : columns)
      EXPECT_EQ(valuesIn(catalogue, std::string("SELECT ") + column + " FROM file"),
                std::vector<std::string>{value->value_or("")})
          << column << " of " << file.kind->name;
    std::vector<std::string> parts, tools;
    for (const archive::PartFacts& part : facts.parts)
      parts.push_back(part.name + part.path + part.material + part.workOrder);
    for (const archive::ToolFacts& tool : facts.tools) tools.push_back(tool.specialTool);
    EXPECT_EQ(valuesIn(catalogue, "SELECT name || path || material || work_order FROM part ORDER BY position"), parts);
    EXPECT_EQ(valuesIn(catalogue, "SELECT special_tool FROM tool ORDER BY position"), tools);
    EXPECT_EQ(valuesIn(catalogue, "SELECT count(*) FROM sqlite_master WHERE type = 'table'"),
              std::vector<std::string>{"5"});
  }
}

#endif

}  // namespace
