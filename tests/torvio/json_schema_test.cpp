// The JSON Schemas: published as they are printed, and valid for what is written.
#include "torvio/values/json_schema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/files.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/random_files.h"
#include "torvio/values/all_members.h"
#include "torvio/values/json_writer.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using frame::FileKind;

TEST(JsonSchema, PublishedSchemasAreThoseThatArePrinted) {
  for (const frame::FileKindInfo& info : frame::kFileKinds) {
    const std::string schema = values::jsonSchema(info.kind);
    const std::string path = TORVIO_SOURCE "/docs/schema/" + std::string(info.name) + ".json";
    EXPECT_EQ(asText(TempFolder::read(path)), schema)
        << "torvio schema " << info.name << " > docs/schema/" << info.name << ".json rewrites it";
  }
}

TEST(JsonSchema, CommandPrintsTheSchemaOfAKind) {
  const Outcome run = torvio("schema macro");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.output, values::jsonSchema(FileKind::macro));
  EXPECT_EQ(torvio("schema punch").code, 2);
}

// An interpreter with the module jsonschema: that of the system has the packages of the system.
std::string interpreter() {
  for (const char* python : {"/usr/bin/python3", "python3"})
    if (runShell(std::string(python) + " -c \"import jsonschema; jsonschema.Draft202012Validator\"").code == 0)
      return python;
  return "";
}

TEST(JsonSchema, DocumentsOfEveryKindAreValidAndChangedOnesAreNot) {
  const std::string python = kIsPosix ? interpreter() : "";
  if (python.empty()) GTEST_SKIP() << "no Python with the module jsonschema (Debian: python3-jsonschema)";
  const TempFolder folder;
  const auto write = [&](const std::string& name, const std::string& text) {
    (void)folder.write(name, Bytes::of(std::as_bytes(std::span(text))));
  };
  int documents = 0;
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      constexpr FileKind kKind = decltype(file)::kKind;
      const std::string name(info.name);
      write(name + ".schema", values::jsonSchema(kKind));
      const std::vector<int> versions = versionsOf(kKind);
      for (const int version : {versions.front(), versions[versions.size() / 2], versions.back()}) {
        const auto loaded = values::loadRecord<kKind>(randomFile(kKind, version, 2).span());
        write(name + "." + std::to_string(++documents) + ".valid", values::jsonOf<kKind>(*loaded.record, version));
      }
      const auto record = std::make_unique<typename decltype(file)::Record>();
      fillWithAnything(kKind, record.get(), 3);
      const std::string any = values::jsonOf<kKind>(*record, 180);
      write(name + ".any.valid", any);
      // Of damaged files, and of one whose version is refused.
      const Bytes whole = randomFile(kKind, versions.back(), 2);
      for (const Bytes& bytes : {whole.cut(whole.size() / 2), Bytes().i16(1), Bytes().u8(1)}) {
        std::string damaged;
        values::writeFileAsJson([&](std::string_view piece) { damaged += piece; }, bytes.span(), kKind,
                                explain::checkFile(bytes.span(), kKind), "cp1252");
        write(name + "." + std::to_string(++documents) + ".valid", damaged);
      }
      nlohmann::json wrong = nlohmann::json::parse(any);
      wrong["record"]["extra"] = 1;
      write(name + ".extra.invalid", wrong.dump());
      wrong = nlohmann::json::parse(any);
      const auto& members = values::Members<typename decltype(file)::Record>::kInfos;
      const auto* stored = std::find_if(members.begin(), members.end(), [](const auto& one) { return one.isStored; });
      wrong["record"].erase(std::string(stored->name));
      write(name + ".missing.invalid", wrong.dump());
      wrong = nlohmann::json::parse(any);
      wrong["version"] = "180";
      write(name + ".type.invalid", wrong.dump());
    });
  const Outcome run = runShell(python + " " TORVIO_SOURCE "/tests/torvio/validate_json.py " + folder.path());
  EXPECT_EQ(run.code, 0) << run.output << run.errors;
  EXPECT_NE(run.output.find("valid: " + std::to_string(documents + 8) + ", invalid: 24"), std::string::npos)
      << run.output;
}

}  // namespace
