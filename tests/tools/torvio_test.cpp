// What torvio prints, and its exit codes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/special_tool_files.h"
#include "tests/tools/run_torvio.h"
#include "torvio/explain/format_table.h"

namespace {

using namespace testing_support;

class Torvio : public testing::Test {
 protected:
  TempFolder folder_;
  std::string tool_ = folder_.write("tool.spt", specialToolFile(60, {3}));
  std::string cut_ = folder_.write("cut.spt", specialToolFile(60, {3}).cut(20));
};

TEST_F(Torvio, MapPrintsOffsetSizePathAndValueOfEveryField) {
  const Outcome run = torvio("map " + tool_);
  EXPECT_EQ(run.code, 0);
  for (const char* line :
       {"00000000      2 version = 60\n", "00000002      4 tool.orientation = 0.5\n",
        "00000006      4 tool.shapeCode = 108\n", " tool.firstValues[5] = 25\n", "     59 reserved = (dropped)\n",
        " shapes.shapes.count = 1\n", "      1 shapes.shapes[0].type = 3\n",
        "      8 shapes.shapes[0].x, y = ", " setupList.entryCount = 0\n"})
    EXPECT_NE(run.output.find(line), std::string::npos) << line << run.output;
}

TEST_F(Torvio, MapOfADamagedFileEndsWithTheFault) {
  const Outcome run = torvio("map " + cut_);
  EXPECT_EQ(run.code, 1);
  EXPECT_TRUE(
      run.output.ends_with("00000002      4 tool.orientation = 0.5\n00000006      4 tool.shapeCode = 108\n"
                           "0000000a      4 tool.specialToolIndex = 0\n0000000e      4 tool.auxWord1 = 0\n"
                           "FAULT at 00000012 in tool.dimension1: needs 4 bytes, the file has 2\n"))
      << run.output;
}

TEST_F(Torvio, CheckPrintsOneLineForEachFile) {
  const std::string longer = folder_.write("longer.spt", specialToolFile(60, {3}).zeros(7));
  const std::string byOne = folder_.write("by_one.spt", specialToolFile(60, {3}).zeros(1));
  const Outcome run = torvio("check " + tool_ + " " + cut_ + " " + longer + " " + byOne + " " + folder_.path("none"));
  const std::size_t size = specialToolFile(60, {3}).size();
  const std::string all = std::to_string(size);
  EXPECT_EQ(run.output, tool_ + ": sound, special-tool, version 60, status 0, " + all + " of " + all + " bytes\n" +
                            cut_ +
                            ": damaged, special-tool, version 60, status 1, 18 of 20 bytes, at 00000012 in "
                            "tool.dimension1: needs 4 bytes, the file has 2\n" +
                            longer + ": sound with losses, special-tool, version 60, status 0, " + all + " of " +
                            std::to_string(size + 7) + " bytes, 7 unread bytes after the last field\n" + byOne +
                            ": sound with losses, special-tool, version 60, status 0, " + all + " of " +
                            std::to_string(size + 1) + " bytes, 1 unread byte after the last field\n" +
                            folder_.path("none") + ": unreadable, cannot be opened: No such file or directory\n");
  EXPECT_EQ(run.errors, "");
}

// A file that could not be read has a higher code than a damaged one: it may be damaged too.
TEST_F(Torvio, CheckReturnsTheCodeOfTheWorstFileInAnyOrder) {
  const std::string longer = folder_.write("longer.spt", specialToolFile(60, {3}).zeros(7));
  const std::string refused = folder_.write("refused", Bytes().i16(50));
  const std::string missing = folder_.path("missing");
  const struct {
    std::vector<std::string> files;
    int code;
  } cases[] = {{{tool_}, 0},
               {{longer}, 0},
               {{cut_}, 1},
               {{refused}, 1},
               {{missing}, 3},
               {{tool_, longer}, 0},
               {{tool_, cut_}, 1},
               {{longer, refused, tool_}, 1},
               {{tool_, missing}, 3},
               {{cut_, missing}, 3},
               {{refused, tool_, missing}, 3}};
  for (const auto& one : cases) {
    std::vector<std::string> files = one.files;
    std::sort(files.begin(), files.end());
    do {
      std::string arguments = "check";
      for (const std::string& file : files) arguments += " " + file;
      const Outcome run = torvio(arguments);
      EXPECT_EQ(run.code, one.code) << arguments;
      EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), std::ssize(files)) << run.output;
    } while (std::next_permutation(files.begin(), files.end()));
  }
}

TEST_F(Torvio, MapOfAFileThatCannotBeReadIsAnError) {
  for (const auto& [path, reason] : {std::pair(folder_.path("none"), "cannot be opened: No such file or directory"),
                                     std::pair(folder_.path(), "is a folder")}) {
    const Outcome run = torvio("map " + path);
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "torvio: " + path + ": " + reason + "\n");
  }
}

TEST_F(Torvio, FolderAmongTheFilesIsWalked) {
  const Outcome run = torvio("check " + folder_.path() + " " + tool_);
  EXPECT_EQ(run.code, 1);
  const std::string cut = folder_.path() + "/cut.spt: damaged, special-tool, ";
  const std::string tool = folder_.path() + "/tool.spt: sound, special-tool, ";
  EXPECT_EQ(run.output.find(cut), 0U) << run.output;
  EXPECT_NE(run.output.find("\n" + tool), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("\n" + tool_ + ": sound, special-tool, "), std::string::npos) << run.output;
}

TEST_F(Torvio, KindCanBeForcedBeforeOrAfterTheFiles) {
  for (const std::string& arguments : {"--kind special-tool " + tool_, tool_ + " --kind special-tool",
                                       "--kind=special-tool " + tool_, "--kind part --kind special-tool " + tool_})
    EXPECT_EQ(torvio("check " + arguments).code, 0) << arguments;
  const Outcome run = torvio("check " + tool_ + " --kind part " + tool_);
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.output.find(": damaged, part, version 60, status 1"), std::string::npos);
  EXPECT_EQ(torvio("map --kind group-part " + tool_).code, 1);
}

TEST_F(Torvio, FileOfUnknownKindIsReportedAsOne) {
  const std::string path = folder_.write("x", Bytes().i16(50).zeros(9));
  const Outcome run = torvio("check " + path);
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.output, path + ": foreign, 11 bytes, 50 is not a version of any kind of file\n");
  const Outcome map = torvio("map " + path);
  EXPECT_EQ(map.code, 1);
  EXPECT_EQ(map.output,
            "00000000      2 version = 50\nFAULT at 00000000 in version: 50 is not a version of any kind of file\n");
  const Outcome forced = torvio("map --kind sheet " + path);
  EXPECT_NE(forced.output.find("FAULT at 00000000 in version: 50 is not a version of a sheet file\n"),
            std::string::npos);
  const Outcome shorter = torvio("check " + folder_.write("y", Bytes().u8(1)));
  EXPECT_EQ(shorter.output, folder_.path("y") + ": foreign, 1 byte, too short for a version\n");
}

TEST_F(Torvio, FormatPrintsTheTableOfAKindOrOfARecord) {
  const Outcome kind = torvio("format macro");
  EXPECT_EQ(kind.code, 0);
  EXPECT_EQ(kind.output, oldtorvio::explain::formatTable(oldtorvio::explain::FileKind::macro));
  const Outcome record = torvio("format clamp-info");
  EXPECT_EQ(record.code, 0);
  EXPECT_EQ(record.output, oldtorvio::explain::recordTable("clamp-info"));
  EXPECT_NE(record.output, "");
}

std::vector<std::string> namesOfKinds() {
  std::vector<std::string> names;
  for (const auto& kind : oldtorvio::frame::kFileKinds) names.emplace_back(kind.name);
  return names;
}

void expectNames(const std::string& text, const std::vector<std::string>& names) {
  const auto isPartOfName = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-'; };
  for (const std::string& name : names) {
    bool isThere = false;
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; ++at)
      isThere = isThere || ((at == 0 || !isPartOfName(text[at - 1])) &&
                            (at + name.size() == text.size() || !isPartOfName(text[at + name.size()])));
    EXPECT_TRUE(isThere) << name << " is not in " << text;
  }
}

TEST_F(Torvio, HelpIsPlainTextThatFitsATerminal) {
  for (const std::string command : {"", "map ", "check ", "format "}) {
    const Outcome run = torvio(command + "--help");
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(torvio(command + "-h").output, run.output);
    EXPECT_NE(run.output.find("Usage: torvio " + command + "[OPTIONS]"), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("TEXT"), std::string::npos) << run.output;
    std::size_t column = 0;
    for (const char c : run.output) {
      column = c == '\n' ? 0 : column + 1;
      EXPECT_LE(column, 80U) << run.output;
      EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << static_cast<int>(c) << " in " << run.output;
    }
  }
  expectNames(torvio("--help").output, {"map", "check", "format"});
}

TEST_F(Torvio, HelpNamesTheKindsAndTheRecords) {
  for (const char* command : {"map", "check", "format"})
    expectNames(torvio(std::string(command) + " --help").output, namesOfKinds());
  std::vector<std::string> records;
  for (const std::string& name : oldtorvio::explain::recordNames()) records.emplace_back(name);
  expectNames(torvio("format --help").output, records);
}

TEST_F(Torvio, UnknownNameIsReportedWithTheValidOnes) {
  const Outcome map = torvio("map --kind nonsense " + tool_);
  const Outcome check = torvio("check " + tool_ + " --kind nonsense");
  const Outcome format = torvio("format nonsense");
  const Outcome command = torvio("nonsense");
  for (const Outcome& run : {map, check, format, command}) {
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_NE(run.errors.find("\"nonsense\""), std::string::npos) << run.errors;
  }
  for (const Outcome& run : {map, check, format}) expectNames(run.errors, namesOfKinds());
  std::vector<std::string> records;
  for (const std::string& name : oldtorvio::explain::recordNames()) records.emplace_back(name);
  expectNames(format.errors, records);
  expectNames(command.errors, {"map", "check", "format"});
}

TEST_F(Torvio, MisuseIsExplainedOnStandardErrorOnly) {
  const struct {
    std::string arguments;
    const char* reason;
  } cases[] = {{"map", "torvio: map: FILE is required\n"},
               {"check", "torvio: check: PATH is required\n"},
               {"format", "torvio: format: KIND is required\n"},
               {"map a b", "torvio: map: unexpected argument \"b\"\n"},
               {"format macro part", "torvio: format: unexpected argument \"part\"\n"},
               {"check --nonsense x", "torvio: check: unexpected argument \"--nonsense\"\n"},
               {"check --nonsense", "torvio: check: unexpected argument \"--nonsense\"\n"},
               {"map --version", "torvio: map: unexpected argument \"--version\"\n"},
               {"check x --kind", "torvio: check: --kind requires a KIND\n"},
               {"--kind part check x", "torvio: unexpected argument \"--kind\"\n"},
               {"--nonsense", "torvio: unexpected argument \"--nonsense\"\n"}};
  for (const auto& one : cases) {
    const Outcome run = torvio(one.arguments);
    EXPECT_EQ(run.code, 2) << one.arguments;
    EXPECT_EQ(run.output, "") << one.arguments;
    EXPECT_EQ(run.errors.find(one.reason), 0U) << one.arguments << ": " << run.errors;
    EXPECT_NE(run.errors.find("--help\"."), std::string::npos) << run.errors;
  }
}

// Absolute paths begin with "/"; options begin with "-" on every host.
TEST_F(Torvio, NameThatBeginsWithASlashIsAFile) {
  const Outcome run = torvio("check /kind /h");
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output.find("/kind: unreadable, cannot be opened: "), 0U) << run.output;
  EXPECT_NE(run.output.find("\n/h: unreadable, cannot be opened: "), std::string::npos) << run.output;
}

TEST_F(Torvio, WithoutArgumentsTheHelpIsAnError) {
  const Outcome run = torvio("");
  EXPECT_EQ(run.code, 2);
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.errors, torvio("--help").output);
}

TEST_F(Torvio, VersionIsPrintedWithTheName) {
  const Outcome run = torvio("--version");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.output, "torvio " TORVIO_VERSION "\n");
}

}  // namespace
