// The tool itself: what it prints and its exit codes.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "src/part/part_io.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/part_files.h"
#include "torvio/explain/format_table.h"

namespace {

using namespace testing_support;

struct Outcome {
  int code = -1;
  std::string output;
};

Outcome torvio(const std::string& arguments) {
  Outcome run;
  run.code = runCommand(std::string(TORVIO_COMMAND) + " " + arguments, run.output);
  return run;
}

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

TEST_F(Torvio, CheckPrintsOneLineAFile) {
  const std::string longer = folder_.write("longer.spt", specialToolFile(60, {3}).zeros(7));
  const Outcome run = torvio("check " + tool_ + " " + cut_ + " " + longer + " " + folder_.path("none"));
  EXPECT_EQ(run.code, 1);
  const std::string size = std::to_string(specialToolFile(60, {3}).size());
  const std::string more = std::to_string(specialToolFile(60, {3}).size() + 7);
  EXPECT_EQ(run.output, tool_ + ": special-tool, version 60, status 0, " + size + " of " + size + " bytes\n" + cut_ +
                            ": special-tool, version 60, status 1, 18 of 20 bytes, at 00000012 in tool.dimension1: "
                            "needs 4 bytes, the file has 2\n" +
                            longer + ": special-tool, version 60, status 0, " + size + " of " + more +
                            " bytes, the rest is not looked at\n" + folder_.path("none") +
                            ": unknown kind, version -, status -2, 0 of 0 bytes, cannot be opened\n");
  EXPECT_EQ(torvio("check " + tool_ + " " + longer).code, 0);
}

TEST_F(Torvio, KindCanBeForced) {
  EXPECT_EQ(torvio("check --kind special-tool " + tool_).code, 0);
  const Outcome run = torvio("check --kind part " + tool_);
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.output.find(": part, version 60, status 1"), std::string::npos);
  EXPECT_EQ(torvio("map --kind group-part " + tool_).code, 1);
}

TEST_F(Torvio, FileOfNoKindIsToldSo) {
  const Outcome run = torvio("check " + folder_.write("x", Bytes().i16(50).zeros(9)));
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.output.find("unknown kind, version 50, status -1, 2 of 11 bytes, at 00000000 in version: 50 is no "
                            "version of a part file"),
            std::string::npos)
      << run.output;
}

TEST_F(Torvio, FormatPrintsTheTableOfAKindOrOfARecord) {
  const Outcome kind = torvio("format macro");
  EXPECT_EQ(kind.code, 0);
  EXPECT_EQ(kind.output, oldtorvio::map::formatTable(oldtorvio::map::FileKind::macro));
  const Outcome record = torvio("format clamp-info");
  EXPECT_EQ(record.code, 0);
  EXPECT_EQ(record.output, oldtorvio::map::recordTable("clamp-info"));
  EXPECT_NE(record.output, "");
}

TEST_F(Torvio, MisuseGivesTwoAndHelpZero) {
  for (const char* arguments : {"", "map", "check", "nonsense", "map a b", "check --kind nonsense x",
                                "check --nonsense x", "format", "format nonsense", "format macro part"})
    EXPECT_EQ(torvio(arguments).code, 2) << arguments;
  for (const char* arguments : {"--help", "map --help", "check --help", "format --help", "--version"}) {
    const Outcome run = torvio(arguments);
    EXPECT_EQ(run.code, 0) << arguments;
    EXPECT_FALSE(run.output.empty());
  }
}

}  // namespace
