// What all commands of torvio do alike: --ext, --output, help.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"

namespace {

using namespace testing_support;

class SharedOptions : public testing::Test {
 protected:
  TempFolder folder_;
  // A special tool that nothing but its contents or an option names as one.
  std::string tool_ = folder_.write("tool.abc", specialToolFile(60, {3}));
};

TEST_F(SharedOptions, EveryCommandThatReadsFilesTakesExtensions) {
  for (const std::string command : {"map ", "json ", "info --json ", "check "}) {
    const Outcome plain = torvio(command + tool_);
    EXPECT_EQ(plain.code, 0) << command;
    const std::string asKind = torvio(command + "--kind special-tool " + tool_).output;
    EXPECT_EQ(torvio(command + "--ext special-tool=.abc " + tool_).output, asKind) << command;
    EXPECT_EQ(torvio(command + "--ext sheet=.nst --ext special-tool=ABC " + tool_).output, asKind) << command;
    // The extension decides against the contents.
    const Outcome wrong = torvio(command + "--ext material=.abc " + tool_);
    EXPECT_EQ(wrong.code, 1) << command;
    EXPECT_NE(wrong.output, asKind) << command;
    for (const std::string hint : {"sheet", "sheet=", "sheet=.", "plate=.nst", "=.nst"}) {
      const Outcome refused = torvio(command + "--ext " + hint + " " + tool_);
      EXPECT_EQ(refused.code, 2) << hint;
      EXPECT_NE(refused.errors.find("--ext requires a kind and an extension such as sheet=.nst"), std::string::npos)
          << refused.errors;
    }
  }
  const std::string part = folder_.write("part.xyz", storedPartFile(180));
  EXPECT_EQ(torvio("draw --ext part=.xyz " + part).code, 0);
  EXPECT_EQ(torvio("draw --ext material=.xyz " + part).code, 1);
  EXPECT_EQ(torvio("diff --ext part=.xyz " + part + " " + part).code, 0);
}

TEST_F(SharedOptions, NoCommandReplacesTheFileThatItReads) {
  std::vector<std::string> outputs = {tool_, folder_.path() + "/./tool.abc"};
  if (kIsPosix) {
    outputs.push_back(folder_.path("link"));
    std::filesystem::create_symlink("tool.abc", outputs.back());
  }
  const std::string before = asText(TempFolder::read(tool_));
  for (const std::string command : {"map ", "json ", "draw ", "from-json "})
    for (const std::string& output : outputs) {
      const Outcome run = torvio(command + tool_ + " -o " + output);
      EXPECT_EQ(run.code, 2) << command << run.errors;
      EXPECT_EQ(run.output, "");
      EXPECT_NE(run.errors.find("\" is both a file to read and the output\n"), std::string::npos) << run.errors;
      EXPECT_EQ(asText(TempFolder::read(tool_)), before);
    }
}

TEST_F(SharedOptions, NoTextReplacesAFileOfAKnownKind) {
  for (const Kind& kind : kinds())
    for (const bool isDamaged : {false, true}) {
      Bytes bytes = kind.file(kind.versions.back());
      if (isDamaged) bytes = bytes.cut(bytes.size() - 1);
      const std::string out = folder_.write("data", bytes), before = asText(TempFolder::read(out));
      for (const std::string& arguments : {std::string("format macro"), std::string("schema part"), "json " + tool_,
                                           "map " + tool_, "map --html " + tool_, "draw --html " + tool_}) {
        const Outcome run = torvio(arguments + " -o " + out);
        EXPECT_EQ(run.code, 3) << arguments;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors, "torvio: " + out + ": is a " + kind.name + " file, which no text replaces\n");
        EXPECT_EQ(asText(TempFolder::read(out)), before) << arguments << " " << kind.name;
      }
    }
}

TEST_F(SharedOptions, TextsReplaceTexts) {
  const std::string part = folder_.write("part.abc", storedPartFile(180)), out = folder_.path("out");
  const std::vector<std::string> commands = {
      "format macro", "format macro --as kaitai", "schema part",        "json " + part, "json --pretty " + part,
      "map " + part,  "map --json " + part,       "map --html " + part, "draw " + part, "draw --html " + part};
  const std::string utf8Mark = "\xEF\xBB\xBF", utf16Mark = "\xFF\xFE";
  std::vector<std::string> texts = {"", "x", "\n\n", "\t\t", "a,b\n1,2\n", utf8Mark + "text", utf16Mark + "t"};
  const auto expectReplaced = [&](const std::string& text, const std::string& command, const std::string& printed) {
    (void)folder_.write("out", Bytes().text(text.size(), text));
    const Outcome run = torvio(command + " -o " + out);
    EXPECT_EQ(run.code, 0) << command << " over " << text.substr(0, 20) << ": " << run.errors;
    EXPECT_EQ(asText(TempFolder::read(out)), printed) << command << " over " << text.substr(0, 20);
  };
  for (const std::string& command : commands) {
    const std::string printed = torvio(command).output;
    expectReplaced(printed, command, printed);
    texts.push_back(printed);
  }
  const std::string schema = torvio("schema part").output;
  for (const std::string& text : texts) expectReplaced(text, "schema part", schema);
}

TEST_F(SharedOptions, EmptyValuesAreRefusedAndReplaceNothing) {
  const std::string before = asText(TempFolder::read(tool_));
  const auto expectRefusal = [&](const std::string& command, const std::string& arguments, const std::string& option) {
    const Outcome run = torvio(command + " " + arguments + " " + tool_ + " " + tool_);
    EXPECT_EQ(run.code, 2) << command << " " << arguments;
    EXPECT_EQ(run.output, "") << command << " " << arguments;
    EXPECT_EQ(run.errors,
              "torvio: " + command + ": " + option + " has an empty value\nTry \"torvio " + command + " --help\".\n");
    EXPECT_EQ(asText(TempFolder::read(tool_)), before) << command << " " << arguments;
  };
  // The next argument is not the value.
  for (const std::string command : {"json", "map", "draw", "from-json", "format", "schema"})
    expectRefusal(command, "--output=", "--output");
  expectRefusal("draw", "--html --output=", "--output");
  for (const std::string option : {"--catalogue", "--files-from", "--kind", "--only", "--json"})
    expectRefusal("check", option + "=", option);
  expectRefusal("diff", "--part=", "--part");
  expectRefusal("map", "--find=", "--find");
  EXPECT_EQ(torvio("--none= " + tool_).errors, "torvio: --none has an empty value\nTry \"torvio --help\".\n");

  expectRefusal("draw", "--html -o \"\"", "--output");
  expectRefusal("draw", "--html --output \"\"", "--output");
  expectRefusal("check", "-o \"\"", "--catalogue");
  expectRefusal("check", "--files-from \"\"", "--files-from");
  expectRefusal("diff", "--part \"\"", "--part");

  // After "--" it is the name of a file.
  EXPECT_EQ(torvio("check -- --output=").output,
            "--output=: unreadable, cannot be opened: No such file or directory\n");
}

TEST_F(SharedOptions, DocumentsAreWrittenToTheOutput) {
  for (const std::string& arguments :
       {std::string("format macro"), std::string("format sheet --as kaitai"), std::string("format shape"),
        std::string("schema part"), "json " + tool_, "map " + tool_}) {
    const std::string out = folder_.path("out");
    const Outcome run = torvio(arguments + " -o " + out);
    EXPECT_EQ(run.code, 0) << arguments;
    EXPECT_EQ(run.output + run.errors, "") << arguments;
    const std::string printed = torvio(arguments).output;
    EXPECT_EQ(asText(TempFolder::read(out)), printed) << arguments;
    EXPECT_EQ(torvio(arguments + " --output=-").output, printed) << arguments;
    const Outcome nowhere = torvio(arguments + " -o " + folder_.path("no/such/folder"));
    EXPECT_EQ(nowhere.code, 3) << arguments;
    EXPECT_EQ(nowhere.errors.find("torvio: " + folder_.path("no/such/folder") + ": cannot be created"), 0U)
        << nowhere.errors;
    std::filesystem::remove(out);
  }
}

TEST_F(SharedOptions, LostOutputIsAnErrorWhateverElseIsReported) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device";
  const std::string damaged = folder_.write("damaged.spt", specialToolFile(60, {3}).cut(20));
  for (const std::string& arguments :
       {"convert --json " + damaged + " out --version 60", "convert " + damaged + " out --version 60",
        "json " + damaged, "json --pretty " + damaged, "map " + damaged, "diff " + damaged + " " + damaged,
        "check " + damaged, "info " + damaged}) {
    const Outcome run = torvio(arguments + " >/dev/full");
    EXPECT_EQ(run.code, 3) << arguments;
    const std::string error = "torvio: cannot write the output: No space left on device\n";
    EXPECT_TRUE(run.errors.ends_with(error)) << arguments << ": " << run.errors;
    EXPECT_EQ(run.errors.find(error), run.errors.rfind(error)) << arguments << ": " << run.errors;
  }
  EXPECT_FALSE(std::filesystem::exists("out"));
}

TEST_F(SharedOptions, HyphenIsStandardOutputOrRefused) {
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  const std::string inFolder = "cd " + folder_.path() + " && " + TORVIO_COMMAND + " ";
  EXPECT_EQ(runShell(inFolder + "json tool.abc --ext special-tool=.abc -o tool.json").code, 0);
  EXPECT_EQ(runShell(inFolder + "from-json tool.json -o out.spt").code, 0);
  const Outcome printed = runShell(inFolder + "from-json tool.json -o -");
  EXPECT_EQ(printed.code, 0) << printed.errors;
  EXPECT_EQ(printed.output, asText(TempFolder::read(folder_.path("out.spt"))));
  EXPECT_EQ(runShell(inFolder + "from-json tool.json -o - >/dev/full").code, 3);

  for (const std::string command : {"convert --version 60", "recover"}) {
    const Outcome run = runShell(inFolder + command + " tool.abc -");
    EXPECT_EQ(run.code, 2) << command;
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors.find(": OUT cannot be -, since the report is printed; \"./-\" is a file of that name\n"),
              std::string::npos)
        << run.errors;
  }
  const Outcome catalogue = runShell(inFolder + "check tool.abc -o -");
  EXPECT_EQ(catalogue.code, 2);
  EXPECT_EQ(catalogue.errors.find("torvio: check: a catalogue cannot be -; \"./-\" is a file of that name\n"), 0U)
      << catalogue.errors;
  EXPECT_FALSE(std::filesystem::exists(folder_.path("-")));
  EXPECT_EQ(runShell(inFolder + "convert --allow-loss --version 60 --ext special-tool=.abc tool.abc ./-").code, 0);
  EXPECT_TRUE(std::filesystem::exists(folder_.path("-")));
}

TEST_F(SharedOptions, SignalLeavesNoUnfinishedFile) {
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  for (const std::string signal : {"TERM", "HUP"}) {
    const TempFolder folder;
    // The page is begun when torvio waits for the pipe.
    const Outcome run = runShell("cd " + folder.path() + "; mkfifo in; " + TORVIO_COMMAND +
                                 " draw --html in -o out.html & pid=$!; for i in $(seq 200); do"
                                 " [ -e " +
                                 folder.path() +
                                 "/.torvio-*.tmp ] && echo begun && break; sleep 0.05; done;"
                                 " kill -" +
                                 signal + " $pid; wait $pid; echo $?; ls -A " + folder.path());
    EXPECT_EQ(run.output, std::string("begun\n") + (signal == "TERM" ? "143" : "129") + "\nin\n") << run.errors;
  }
}

TEST_F(SharedOptions, UsageShowsRequiredOptions) {
  EXPECT_NE(torvio("convert --help").output.find("\nUsage: torvio convert [OPTIONS] --version VERSION IN [OUT]\n"),
            std::string::npos)
      << torvio("convert --help").output;
  EXPECT_NE(torvio("from-json --help").output.find("\nUsage: torvio from-json [OPTIONS] --output OUT [IN]\n"),
            std::string::npos);
  EXPECT_NE(torvio("check --help").output.find("\nUsage: torvio check [OPTIONS] [PATH...]\n"), std::string::npos);
}

TEST_F(SharedOptions, FileNameThatBeginsWithAHyphenIsExplained) {
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  folder_.write("-name", specialToolFile(60, {3}));
  const std::string inFolder = "cd " + folder_.path() + " && " + TORVIO_COMMAND;
  const Outcome run = runShell(inFolder + " map -name");
  EXPECT_EQ(run.code, 2);
  EXPECT_EQ(run.errors,
            "torvio: map: unexpected argument \"-name\"; put \"--\" before the name of a file that begins with "
            "\"-\"\nTry \"torvio map --help\".\n");
  EXPECT_EQ(runShell(inFolder + " map -none").errors,
            "torvio: map: unexpected argument \"-none\"\nTry \"torvio map --help\".\n");
  EXPECT_EQ(runShell(inFolder + " map --kind special-tool -- -name").code, 0);
}

TEST_F(SharedOptions, VersionOfAnUnknownCommandIsAnError) {
  const Outcome run = torvio("konvert a b --version 180");
  EXPECT_EQ(run.code, 2);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors.find("torvio: unknown command \"konvert\"\nCommands: check, "), 0U) << run.errors;
}

TEST_F(SharedOptions, HelpOfACommandIsPrintedByHelp) {
  EXPECT_EQ(torvio("help").output, torvio("--help").output);
  EXPECT_EQ(torvio("help check").output, torvio("check --help").output);
  EXPECT_EQ(torvio("help help").output, torvio("help --help").output);
  const Outcome unknown = torvio("help nonsense");
  EXPECT_EQ(unknown.code, 2);
  EXPECT_EQ(unknown.errors.find("torvio: help: unknown command \"nonsense\"\nCommands: check, info, "), 0U)
      << unknown.errors;
}

}  // namespace
