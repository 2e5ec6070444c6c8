// torvio with files, pipes and full disks on a POSIX system.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/special_tool_files.h"
#include "tests/tools/run_torvio.h"

namespace {

using namespace testing_support;

class TorvioOnPosix : public testing::Test {
 protected:
  void SetUp() override {
    if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  }

  // A special tool whose map has about 20 lines for each shape.
  std::string toolOfShapes(std::size_t count) const {
    return folder_.write("shapes.spt", specialToolFile(60, std::vector<int>(count, 3)));
  }
  Outcome inFolder(const std::string& command) const { return runShell("cd " + folder_.path() + " && " + command); }
  std::string written(const std::string& name) const { return asText(TempFolder::read(folder_.path(name))); }

  std::vector<std::string> closedPipeCases() const {
    return {"map " + toolOfShapes(3000),
            "map " + tool_,
            "check " + tool_,
            "format part",
            "--help",
            "check --help",
            "--version"};
  }

  TempFolder folder_;
  std::string torvio_ = TORVIO_COMMAND;
  std::string tool_ = folder_.write("tool.spt", specialToolFile(60, {3}));
};

// ---- what cannot be read ---------------------------------------------------------------------------------

TEST_F(TorvioOnPosix, ReasonWhyAFileCannotBeReadIsInPlainWords) {
  std::filesystem::create_symlink("loop", folder_.path("loop"));
  std::filesystem::create_symlink("nowhere", folder_.path("dangling"));
  const struct {
    std::string path;
    const char* reason;
  } cases[] = {{folder_.path("none"), "cannot be opened: No such file or directory"},
               {folder_.path("dangling"), "cannot be opened: No such file or directory"},
               {tool_ + "/x", "cannot be opened: Not a directory"},
               {folder_.path("loop"), "cannot be opened: Too many levels of symbolic links"},
               {folder_.path(), "is a folder"},
               {folder_.path() + "/", "is a folder"},
               {"''", "cannot be opened: No such file or directory"}};
  for (const auto& one : cases) {
    const std::string shown = one.path == "''" ? "" : one.path;
    // A folder is walked.
    if (std::string(one.reason) != "is a folder") {
      const Outcome check = torvio("check " + one.path);
      EXPECT_EQ(check.code, 3) << one.path;
      EXPECT_EQ(check.output, shown + ": unreadable, " + one.reason + "\n");
      EXPECT_EQ(check.errors, "");
    }
    const Outcome map = torvio("map " + one.path);
    EXPECT_EQ(map.code, 3) << one.path;
    EXPECT_EQ(map.output, "");
    EXPECT_EQ(map.errors, "torvio: " + shown + ": " + one.reason + "\n");
  }
}

TEST_F(TorvioOnPosix, DeniedPermissionIsNamed) {
  std::filesystem::permissions(tool_, std::filesystem::perms::none);
  if (std::ifstream(tool_)) GTEST_SKIP() << "this user may read every file";
  const Outcome run = torvio("check " + tool_);
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output, tool_ + ": unreadable, cannot be opened: Permission denied\n");
}

TEST_F(TorvioOnPosix, FailedReadIsNotTreatedAsTheEndOfTheFile) {
  // Nothing is mapped at the first address of a process, so its memory cannot be read from there.
  constexpr const char* kUnreadable = "/proc/self/mem";
  if (!std::filesystem::exists(kUnreadable)) GTEST_SKIP() << "no file that opens and cannot be read";
  const Outcome check = torvio(std::string("check ") + kUnreadable);
  EXPECT_EQ(check.code, 3);
  EXPECT_EQ(check.output, std::string(kUnreadable) + ": unreadable, cannot be read: Input/output error\n");
  EXPECT_EQ(torvio(std::string("map ") + kUnreadable).code, 3);
}

TEST_F(TorvioOnPosix, FileAboveTheDocumentedSizeIsNotRead) {
  const std::string large = folder_.write("large", {});
  std::filesystem::resize_file(large, (std::uintmax_t{1} << 30U) + 1);
  const Outcome run = torvio("check " + large + " " + tool_);
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output.find(large + ": unreadable, is larger than 1024 MiB\n" + tool_ + ": sound, special-tool"), 0U)
      << run.output;
  EXPECT_NE(torvio("check --help").output.find("more than 1024 MiB"), std::string::npos);
}

TEST_F(TorvioOnPosix, FileThatDoesNotFitInMemoryLeavesTheOthersToBeChecked) {
  const std::string limited = "ulimit -v 500000; " + torvio_;
  if (runShell(limited + " --version").code != 0) GTEST_SKIP() << "torvio itself needs more than the limit";
  const std::string large = folder_.write("large", {});
  std::filesystem::resize_file(large, std::uintmax_t{900} << 20U);
  const Outcome check = runShell(limited + " check " + large + " " + tool_);
  EXPECT_EQ(check.code, 3);
  EXPECT_EQ(
      check.output.find(large + ": unreadable, cannot be read: not enough memory\n" + tool_ + ": sound, special-tool"),
      0U)
      << check.output;
  const Outcome map = runShell(limited + " map " + large);
  EXPECT_EQ(map.code, 3);
  EXPECT_EQ(map.errors, "torvio: " + large + ": cannot be read: not enough memory\n");
}

// ---- pipes -----------------------------------------------------------------------------------------------

TEST_F(TorvioOnPosix, PipeIsReadLikeAFile) {
  // Larger than the buffer of a pipe, and of a kind that is detected from the content.
  const std::string path = folder_.write("shapes", specialToolFile(60, std::vector<int>(5000, 3)));
  ASSERT_GT(std::filesystem::file_size(path), 200000U);

  const Outcome file = torvio("check " + path);
  EXPECT_EQ(file.code, 0) << file.output;
  const std::string verdict = file.output.substr(path.size());
  const Outcome input = runShell("cat " + path + " | " + torvio_ + " check /dev/stdin");
  EXPECT_EQ(input.code, 0);
  EXPECT_EQ(input.output, "/dev/stdin" + verdict);
  const Outcome redirected = runShell(torvio_ + " check /dev/stdin <" + path);
  EXPECT_EQ(redirected.output, "/dev/stdin" + verdict);
  const Outcome named = inFolder("mkfifo pipe && { cat shapes >pipe & " + torvio_ + " check pipe; }");
  EXPECT_EQ(named.code, 0);
  EXPECT_EQ(named.output, "pipe" + verdict);
  const Outcome map = runShell("cat " + path + " | " + torvio_ + " map /dev/stdin");
  EXPECT_EQ(map.code, 0);
  EXPECT_EQ(map.output, torvio("map " + path).output);
}

TEST_F(TorvioOnPosix, PipeOfADamagedFileIsReportedAsDamaged) {
  const Outcome run = runShell("head -c 20 " + tool_ + " | " + torvio_ + " check --kind special-tool /dev/stdin");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.output,
            "/dev/stdin: damaged, special-tool, version 60, status 1, 18 of 20 bytes, at 00000012 in tool.dimension1: "
            "needs 4 "
            "bytes, the file has 2\n");
}

TEST_F(TorvioOnPosix, EmptyPipeIsAnEmptyFile) {
  const Outcome run = runShell(torvio_ + " check /dev/stdin </dev/null");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.output, "/dev/stdin: foreign, 0 bytes, too short for a version\n");
}

// ---- what cannot be written ------------------------------------------------------------------------------

TEST_F(TorvioOnPosix, FullDiskIsAnError) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
  for (const std::string& arguments :
       {"map " + tool_, "check " + tool_, "check " + tool_ + " none", "map " + toolOfShapes(3000),
        std::string("format part"), std::string("--help"), std::string("map --help"), std::string("--version")}) {
    const Outcome run = torvio(arguments + " >/dev/full");
    EXPECT_EQ(run.code, 3) << arguments;
    EXPECT_EQ(run.errors, "torvio: cannot write the output: No space left on device\n") << arguments;
  }
}

TEST_F(TorvioOnPosix, ClosedOutputIsAnErrorForWhatIsPrinted) {
  for (const std::string& arguments : {"map " + tool_, "check " + tool_, std::string("--help")}) {
    const Outcome run = torvio(arguments + " >&-");
    EXPECT_EQ(run.code, 3) << arguments;
    EXPECT_EQ(run.errors, "torvio: cannot write the output: Bad file descriptor\n") << arguments;
  }
  EXPECT_EQ(torvio("nonsense >&-").code, 2) << "prints nothing there";
  EXPECT_EQ(written("tool.spt"), asText(specialToolFile(60, {3}))) << "not taken for the output";
}

// Runs the command with its output going to a pipe without a reader. Its exit code goes to a file.
std::string intoClosedPipe(const std::string& command) {
  return "rm -f pipe; mkfifo pipe; exec 3<>pipe 4>pipe 3<&-; { " + command + "; echo $? >code; } >&4 2>errors";
}

TEST_F(TorvioOnPosix, ClosedPipeEndsTheToolByItsSignal) {
#if defined(SIGPIPE)
  const auto before = std::signal(SIGPIPE, SIG_DFL);
  for (const std::string& arguments : closedPipeCases()) {
    (void)inFolder("(" + intoClosedPipe(torvio_ + " " + arguments) + ")");
    EXPECT_EQ(written("code"), "141\n") << arguments;
    EXPECT_EQ(written("errors").find("torvio:"), std::string::npos) << written("errors");
  }
  (void)std::signal(SIGPIPE, before);
#endif
}

TEST_F(TorvioOnPosix, ClosedPipeEndsTheToolQuietlyWhereItsSignalIsIgnored) {
  for (const std::string& arguments : closedPipeCases()) {
    (void)inFolder("(trap '' PIPE; " + intoClosedPipe(torvio_ + " " + arguments) + ")");
    EXPECT_EQ(written("code"), "3\n") << arguments;
    EXPECT_EQ(written("errors"), "") << arguments;
  }
}

// `head` ends after a line, which closes the pipe. A pipeline has the code of its last command, so the tool's
// goes to a file.
constexpr const char* kIntoHead = "; echo $? >code; } 2>errors | head -n 1";

TEST_F(TorvioOnPosix, MapStopsEarlyForAClosedPipe) {
  const std::string file = toolOfShapes(20000);
  double start = processorSecondsOfCommands();
  EXPECT_EQ(torvio("map " + file + " >/dev/null").code, 0);
  const double complete = processorSecondsOfCommands() - start;
  start = processorSecondsOfCommands();
  const Outcome run = inFolder("(trap '' PIPE; { " + torvio_ + " map " + file + kIntoHead + ")");
  const double stopped = processorSecondsOfCommands() - start;
  EXPECT_EQ(run.output, "00000000      2 version = 60\n");
  EXPECT_EQ(written("code"), "3\n");
  EXPECT_EQ(written("errors"), "");
  EXPECT_LT(stopped, complete / 2);
}

TEST_F(TorvioOnPosix, CheckOpensNoMoreFilesForAClosedPipe) {
  // The last one is a pipe without a writer, so opening it would block.
  std::string arguments = "check";
  for (int i = 0; i < 2000; ++i) arguments += " tool.spt";
  const Outcome run =
      inFolder("mkfifo pipe; (trap '' PIPE; { timeout 60 " + torvio_ + " " + arguments + " pipe" + kIntoHead + ")");
  EXPECT_EQ(run.output.find("tool.spt: sound, special-tool, version 60, status 0"), 0U) << run.output;
  EXPECT_EQ(written("code"), "3\n");
  EXPECT_EQ(written("errors"), "");
}

// ---- names -----------------------------------------------------------------------------------------------

TEST_F(TorvioOnPosix, EveryFileNameIsAccepted) {
  const Bytes tool = specialToolFile(60, {3});
  for (const std::string name : {"-x", "--kind", "--help", "--", "++", "[a,b]", "[]", "{}",  "map", "check", "a b",
                                 "%s", "a\\nb",  "-",      "-h", "'",  "\"",    "=",  "a=b", "/",   "\1[x]"}) {
    if (name == "/") continue;
    folder_.write(name, tool);
    std::string quoted;
    for (const char c : name) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    const std::string shown = name == "\1[x]" ? "\\x01[x]" : name;
    for (const std::string before : {"check --kind special-tool -- '", "check --kind special-tool -- tool.spt '"}) {
      const Outcome run = inFolder(torvio_ + " " + before + quoted + "'");
      EXPECT_EQ(run.code, 0) << name << ": " << run.output << run.errors;
      EXPECT_NE(("\n" + run.output).find("\n" + shown + ": sound, special-tool, version 60, status 0"),
                std::string::npos)
          << name << ": " << run.output;
    }
    const Outcome map = inFolder(torvio_ + " map --kind special-tool -- '" + quoted + "'");
    EXPECT_EQ(map.output.find("00000000      2 version = 60\n"), 0U) << name << map.errors;
    if (name.starts_with('-')) continue;
    EXPECT_EQ(inFolder(torvio_ + " check '" + quoted + "' --kind special-tool").code, 0) << name;
  }
}

TEST_F(TorvioOnPosix, NameWithControlCharactersStaysOnItsLine) {
  const std::string name = "a\nb\r\tc\x1b[2J\x7f.spt";
  folder_.write(name, specialToolFile(60, {3}).cut(20));
  const std::string shown = "a\\nb\\r\\tc\\x1b[2J\\x7f.spt";
  const Outcome run = inFolder(torvio_ + " check '" + name + "' 'none\n'");
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output.find(shown + ": damaged, special-tool, version 60, status 1, "), 0U) << run.output;
  EXPECT_TRUE(run.output.ends_with("\nnone\\n: unreadable, cannot be opened: No such file or directory\n"))
      << run.output;
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 2);
  const Outcome map = inFolder(torvio_ + " map 'none\n'");
  EXPECT_EQ(map.errors, "torvio: none\\n: cannot be opened: No such file or directory\n");
}

TEST_F(TorvioOnPosix, WrongArgumentWithControlCharactersIsShownEscaped) {
  for (const std::string arguments :
       {"'a\n\x1b'", "check '--a\n\x1b'", "check --kind 'a\n\x1b' x", "format 'a\n\x1b'"}) {
    const Outcome run = torvio(arguments);
    EXPECT_EQ(run.code, 2) << arguments;
    EXPECT_NE(run.errors.find("a\\n\\x1b\""), std::string::npos) << run.errors;
    EXPECT_EQ(run.errors.find('\x1b'), std::string::npos) << run.errors;
  }
}

TEST_F(TorvioOnPosix, NameWithNonAsciiLettersIsPrintedUnchanged) {
  const std::string name = "gr\xc3\xbc\xc3\x9f.spt";
  folder_.write(name, specialToolFile(60, {3}));
  EXPECT_EQ(inFolder(torvio_ + " check " + name).output.find(name + ": sound, special-tool"), 0U);
}

}  // namespace
