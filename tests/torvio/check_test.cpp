// `torvio check` for archives, and the scan that it uses.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/kind_files.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"
#include "torvio/archive/scan.h"

namespace {

using namespace testing_support;
namespace archive = oldtorvio::archive;
namespace fs = std::filesystem;
using nlohmann::json;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}
std::vector<json> objectsOf(const std::string& text) {
  std::vector<json> objects;
  for (const std::string& line : linesOf(text)) {
    objects.push_back(json::parse(line, nullptr, false));
    EXPECT_FALSE(objects.back().is_discarded()) << line;
  }
  return objects;
}

class Check : public testing::Test {
 protected:
  Outcome inFolder(const std::string& command) const { return runShell(changeFolder(folder_.path()) + command); }
  Outcome check(const std::string& arguments) const { return inFolder(torvio_ + " check " + arguments); }
  void makeFolder(const std::string& name) const { fs::create_directories(folder_.path(name)); }
  // The names of the checked files, in order.
  std::vector<std::string> checkedBy(const std::string& arguments) const {
    std::vector<std::string> names;
    for (const json& object : objectsOf(check(arguments + " --json").output)) names.push_back(object["path"]);
    return names;
  }
  // Whether a command can run in a terminal of its own.
  bool hasTerminal() const { return kIsPosix && runShell("script --version >/dev/null 2>&1").code == 0; }

  TempFolder folder_;
  std::string torvio_ = TORVIO_COMMAND;
  Bytes sound_ = specialToolFile(60, {3});
  Bytes cut_ = sound_.cut(20);
};

// ---- which files ---------------------------------------------------------------------------------------

TEST_F(Check, FoldersAreWalkedInTheOrderOfNamesFilesFirst) {
  makeFolder("a/m/deep");
  makeFolder("a/b");
  for (const std::string name : {"a/z.spt", "a/c.spt", "a/m/1.spt", "a/m/deep/2.spt", "a/b/3.spt", "top.spt"})
    folder_.write(name, sound_);
  const std::vector<std::string> expected = {"a/c.spt", "a/z.spt", "a/b/3.spt", "a/m/1.spt", "a/m/deep/2.spt"};
  EXPECT_EQ(checkedBy("a"), expected);
  EXPECT_EQ(checkedBy("a/"), expected);
  std::vector<std::string> withOthers = {"top.spt"};
  withOthers.insert(withOthers.end(), expected.begin(), expected.end());
  withOthers.emplace_back("top.spt");
  EXPECT_EQ(checkedBy("top.spt a top.spt"), withOthers);
  EXPECT_EQ(check("a/b").output.find("a/b/3.spt: sound, special-tool, version 60"), 0U);
}

TEST_F(Check, EmptyFolderIsSound) {
  makeFolder("empty");
  const Outcome run = check("empty");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.output + run.errors, "");
}

TEST_F(Check, LinksToFoldersAreNotFollowed) {
  if (!kIsPosix) GTEST_SKIP() << "no links";
  makeFolder("a/b");
  makeFolder("outside");
  folder_.write("a/b/tool.spt", sound_);
  folder_.write("outside/other.spt", sound_);
  fs::create_directory_symlink("..", folder_.path("a/b/up"));
  fs::create_directory_symlink("../outside", folder_.path("a/out"));
  fs::create_symlink("b/tool.spt", folder_.path("a/link.spt"));
  EXPECT_EQ(checkedBy("a"), (std::vector<std::string>{"a/link.spt", "a/b/tool.spt"}));
  // One that is named is a folder.
  EXPECT_EQ(checkedBy("a/out"), (std::vector<std::string>{"a/out/other.spt"}));
}

TEST_F(Check, PipesInFoldersAreSkipped) {
  if (!kIsPosix) GTEST_SKIP() << "no pipes";
  makeFolder("a");
  folder_.write("a/tool.spt", sound_);
  EXPECT_EQ(inFolder("mkfifo a/pipe && timeout 60 " + torvio_ + " check a").code, 0);
}

TEST_F(Check, LinkToNothingIsUnreadable) {
  if (!kIsPosix) GTEST_SKIP() << "no links";
  makeFolder("a");
  fs::create_symlink("nowhere", folder_.path("a/link"));
  const Outcome run = check("a");
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output, "a/link: unreadable, cannot be opened: No such file or directory\n");
}

TEST_F(Check, DeepFoldersNeedFewOpenFiles) {
  if (!kIsPosix) GTEST_SKIP() << "no limits";
  std::string path = "d";
  for (int i = 0; i < 300; ++i) path += "/d";
  makeFolder(path);
  folder_.write(path + "/tool.spt", sound_);
  const Outcome run = inFolder("ulimit -n 30; " + torvio_ + " check d");
  EXPECT_EQ(run.code, 0) << run.output;
  EXPECT_EQ(linesOf(run.output).size(), 1U);
}

TEST_F(Check, FolderThatCannotBeReadIsReportedAndTheOthersAreChecked) {
  if (!kIsPosix) GTEST_SKIP() << "no permissions";
  makeFolder("a/closed");
  makeFolder("a/open");
  folder_.write("a/open/tool.spt", sound_);
  fs::permissions(folder_.path("a/closed"), fs::perms::none);
  std::error_code error;
  if (fs::directory_iterator(folder_.path("a/closed"), error); !error) GTEST_SKIP() << "this user may read all folders";
  const Outcome run = check("a");
  fs::permissions(folder_.path("a/closed"), fs::perms::owner_all);
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output.find("a/closed: unreadable, cannot be opened: Permission denied\na/open/tool.spt: sound"), 0U);
}

TEST_F(Check, FilesOfAFolderThatCannotBeSearchedAreReported) {
  if (!kIsPosix) GTEST_SKIP() << "no permissions";
  makeFolder("a/listed");
  folder_.write("a/listed/tool.spt", sound_);
  fs::permissions(folder_.path("a/listed"), fs::perms::owner_read | fs::perms::owner_write);
  std::error_code error;
  const bool maySearch = fs::exists(folder_.path("a/listed/tool.spt"), error) && !error;
  const Outcome run = check("a");
  fs::permissions(folder_.path("a/listed"), fs::perms::owner_all);
  if (maySearch) GTEST_SKIP() << "this user may search all folders";
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.output, "a/listed/tool.spt: unreadable, cannot be opened: Permission denied\n");
}

TEST_F(Check, FoldersWithTooLongPathsAreReported) {
  if (!kIsPosix) GTEST_SKIP() << "no such limit";
  const auto deepFolder = [&](std::string path) {
    for (int i = 0; i < 15; ++i) {
      path += '/' + std::string(200, 'd');
      makeFolder(path);
      folder_.write(path + "/tool.spt", sound_);
    }
    return path;
  };
  // Longer paths are not made at once.
  const std::string outer = folder_.path(deepFolder("a")) + "/inner", inner = folder_.path("b");
  (void)deepFolder("b");
  fs::rename(inner, outer);
  const Outcome run = check("a");
  fs::rename(outer, inner);
  EXPECT_EQ(run.code, 3);
  const std::vector<std::string> lines = linesOf(run.output);
  ASSERT_GE(lines.size(), 17U);
  std::size_t tooLong = 0;
  for (const std::string& line : lines)
    if (line.find("/tool.spt: sound") == std::string::npos) {
      ++tooLong;
      EXPECT_TRUE(line.ends_with("d: unreadable, cannot be opened: File name too long")) << line;
    }
  EXPECT_EQ(tooLong, 1U);
}

// ---- lists ---------------------------------------------------------------------------------------------

TEST_F(Check, ListNamesAFileInEachLine) {
  makeFolder("d");
  folder_.write("a b.spt", sound_);
  folder_.write("d/c.spt", sound_);
  std::ofstream(folder_.path("list"), std::ios::binary) << "a b.spt\n\nd\na b.spt";
  const std::vector<std::string> expected = {"a b.spt", "d/c.spt", "a b.spt"};
  EXPECT_EQ(checkedBy("--files-from list"), expected);
  if (kIsPosix) {
    EXPECT_EQ(checkedBy("--files-from - <list"), expected);
    EXPECT_EQ(checkedBy("d/c.spt --files-from - <list"),
              (std::vector<std::string>{"d/c.spt", "a b.spt", "d/c.spt", "a b.spt"}));
  }
  EXPECT_EQ(checkedBy("--files-from none --files-from list"), expected);
  EXPECT_EQ(check("--files-from none").code, 3);
  EXPECT_EQ(check("--files-from none").errors, "torvio: none: cannot be opened: No such file or directory\n");
}

TEST_F(Check, CarriageReturnEndsALineOfAListOnlyOnWindows) {
  folder_.write("a.spt", sound_);
  std::ofstream(folder_.path("list"), std::ios::binary) << "a.spt\r\n\r\n";
  if (kIsPosix)
    EXPECT_EQ(check("--files-from list").code, 3) << "a name may end with a carriage return";
  else
    EXPECT_EQ(checkedBy("--files-from list"), std::vector<std::string>{"a.spt"});
}

TEST_F(Check, ListThatCannotBeReadIsAnError) {
  if (!kIsPosix) GTEST_SKIP() << "a folder can be opened here";
  const Outcome run = check("--files-from .");
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.errors, "torvio: .: cannot be read to its end\n");
}

TEST_F(Check, ListWithNulsNamesAnyFile) {
  if (!kIsPosix) GTEST_SKIP() << "no such names";
  folder_.write("a\nb.spt", sound_);
  folder_.write("-x.spt", sound_);
  std::ofstream(folder_.path("list"), std::ios::binary) << std::string("a\nb.spt\0-x.spt\0", 15);
  EXPECT_EQ(checkedBy("--files-from list --null"), (std::vector<std::string>{"a\nb.spt", "-x.spt"}));
  EXPECT_EQ(inFolder("find . -name '*.spt' -print0 | " + torvio_ + " check --files-from - --null").code, 0);
}

TEST_F(Check, LinesThatCannotBeFileNamesAreReported) {
  folder_.write("a", sound_);
  std::ofstream(folder_.path("list"), std::ios::binary)
      << std::string("a\0b\n", 4) << std::string(70'000, 'x') << "\na\n";
  const Outcome run = check("--files-from list --kind special-tool");
  EXPECT_EQ(run.code, 3);
  const auto lines = linesOf(run.output);
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "a\\x00b: unreadable, is not a file name: it contains a NUL");
  EXPECT_TRUE(lines[1].ends_with("x: unreadable, is not a file name: longer than 65536 bytes"));
  EXPECT_EQ(lines[2].find("a: sound"), 0U);
}

// ---- several threads -----------------------------------------------------------------------------------

TEST_F(Check, OutputIsTheSameWithAnyNumberOfThreads) {
  for (int i = 0; i < 1500; ++i)
    folder_.write(std::to_string(i) + ".spt",
                  i % 5 == 0 ? cut_ : specialToolFile(60, std::vector<int>(static_cast<std::size_t>(i % 90), 3)));
  for (const std::string form : {"", " --json", " --only damaged", " --summary"}) {
    const Outcome one = check(". --jobs 1" + form);
    EXPECT_EQ(one.code, 1);
    for (const std::string jobs : {"2", "7", "64"}) {
      const Outcome run = check(". --jobs " + jobs + form);
      EXPECT_EQ(run.output, one.output) << jobs << form;
      EXPECT_EQ(run.code, 1);
    }
  }
}

TEST(Scans, ResultsAreTakenInOrderHoweverLongTheyTake) {
  const TempFolder folder;
  std::vector<std::string> paths;
  for (int i = 0; i < 600; ++i) paths.push_back(folder.write(std::to_string(i), specialToolFile(60, {3})));
  archive::ScanOptions options;
  options.jobs = 8;
  std::atomic<int> atATime = 0, most = 0;
  options.known = [&](const archive::FileResult& file) -> std::optional<archive::FileResult> {
    most = std::max(most.load(), ++atATime);
    std::this_thread::sleep_for(std::chrono::microseconds(std::hash<std::string>()(file.path) % 2000));
    --atATime;
    return std::nullopt;
  };
  std::vector<std::string> taken;
  archive::scan(std::make_shared<archive::FileNames>(paths), options,
                [&](const archive::FileResult& result) { taken.push_back(result.path); });
  EXPECT_EQ(taken, paths);
  EXPECT_GT(most, 1);
}

TEST(Scans, NoMoreFilesAreOpenedAfterAnError) {
  const TempFolder folder;
  for (int i = 0; i < 3000; ++i) folder.write(std::to_string(i), specialToolFile(60, {3}));
  for (const unsigned jobs : {1U, 4U}) {
    archive::ScanOptions options;
    options.jobs = jobs;
    std::atomic<int> seen = 0;
    options.known = [&](const archive::FileResult&) {
      ++seen;
      return std::optional<archive::FileResult>();
    };
    const auto names = std::make_shared<archive::FileNames>(std::vector<std::string>{folder.path()});
    EXPECT_THROW(archive::scan(names, options, [](const archive::FileResult&) { throw std::runtime_error("full"); }),
                 std::runtime_error);
    EXPECT_LE(seen, 300);
  }
}

TEST(Scans, ErrorOfAThreadIsThatOfTheScan) {
  const TempFolder folder;
  for (int i = 0; i < 20; ++i) folder.write(std::to_string(i), specialToolFile(60, {3}));
  for (const unsigned jobs : {1U, 4U}) {
    archive::ScanOptions options;
    options.jobs = jobs;
    options.known = [&](const archive::FileResult& file) -> std::optional<archive::FileResult> {
      if (file.path.ends_with("7")) throw std::runtime_error("broken");
      return std::nullopt;
    };
    const auto names = std::make_shared<archive::FileNames>(std::vector<std::string>{folder.path()});
    EXPECT_THROW(archive::scan(names, options, [](const archive::FileResult&) {}), std::runtime_error);
  }
}

TEST(Scans, FoldersOfManyNamesAreReadPieceByPiece) {
  if (!kIsPosix) GTEST_SKIP() << "so many files take many minutes";
  const TempFolder folder;
  constexpr std::size_t kNames = archive::FileNames::kSortedNames + 500;
  for (std::size_t i = 0; i < kNames; ++i) std::ofstream(folder.path(std::to_string(i)));
  archive::FileNames names({folder.path()});
  std::vector<std::string> found;
  while (const auto file = names.next()) found.push_back(file->path);
  EXPECT_EQ(found.size(), kNames);
  EXPECT_TRUE(std::is_sorted(found.begin(), found.begin() + archive::FileNames::kSortedNames));
  std::sort(found.begin(), found.end());
  EXPECT_EQ(std::unique(found.begin(), found.end()), found.end());
}

// ---- verdicts and exit codes -----------------------------------------------------------------------------

TEST_F(Check, ForeignFilesChangeTheExitCodeOnlyIfTheyAreNamed) {
  makeFolder("a");
  folder_.write("a/notes.txt", Bytes().i16(50).text(48, "notes"));
  folder_.write("a/tool.spt", sound_);
  const Outcome found = check("a");
  EXPECT_EQ(found.code, 0);
  EXPECT_EQ(found.output.find("a/notes.txt: foreign, 50 bytes, 50 is not a version of any kind of file\n"), 0U)
      << found.output;
  EXPECT_EQ(check("a/notes.txt").code, 1);
  std::ofstream(folder_.path("list")) << "a/notes.txt\n";
  EXPECT_EQ(check("--files-from list").code, 1);
}

TEST_F(Check, HighestExitCodeIsReturned) {
  makeFolder("a");
  folder_.write("a/1.spt", sound_);
  EXPECT_EQ(check("a").code, 0);
  folder_.write("a/2.spt", Bytes().i16(9000).zeros(50));
  EXPECT_EQ(check("a").code, 1);
  EXPECT_NE(check("a").output.find("a/2.spt: refused version, special-tool, version 9000, status -1"),
            std::string::npos);
  EXPECT_EQ(check("a none").code, 3);
  EXPECT_EQ(check("none a").code, 3);
}

TEST_F(Check, OptionOnlyHidesLinesAndChangesNothingElse) {
  folder_.write("1.spt", sound_);
  folder_.write("2.spt", cut_);
  folder_.write("3.spt", Bytes(sound_).zeros(1));
  EXPECT_EQ(checkedBy(". --only damaged"), std::vector<std::string>{"./2.spt"});
  EXPECT_EQ(checkedBy("--only damaged . --only sound-with-losses"), (std::vector<std::string>{"./2.spt", "./3.spt"}));
  const Outcome run = check(". --only unreadable --summary");
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.output.find("\n3 files\n"), std::string::npos) << run.output;
  EXPECT_EQ(check(". --only nonsense").code, 2);
}

TEST_F(Check, ExtensionsNameKinds) {
  folder_.write("a.NST", sheetFile(180).cut(3000));
  folder_.write("b.prt", storedPartFile(110));
  const Outcome run = check("--ext sheet=.nst a.NST --ext part=prt b.prt");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.output.find("a.NST: damaged, sheet, version 180, status 1"), 0U) << run.output;
  EXPECT_NE(run.output.find("\nb.prt: sound, part, version 110"), std::string::npos) << run.output;
  for (const std::string hint : {"sheet", "sheet=", "sheet=.", "nonsense=.x", "=.x"})
    EXPECT_EQ(check("--ext " + hint + " b.prt").code, 2) << hint;
}

TEST_F(Check, WarningsAreInTheLineOfTheirFile) {
  folder_.write("a.nst", sheetFile(180));
  const Outcome run = check("--kind sheet a.nst");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(linesOf(run.output).size(), 1U);
  EXPECT_NE(run.output.find("; warning text-fills-field in "), std::string::npos) << run.output;
  EXPECT_NE(run.output.find(" more warnings\n"), std::string::npos);
  const json object = objectsOf(check("--kind sheet a.nst --json").output).at(0);
  EXPECT_GT(object["warnings"].size(), 3U);
  EXPECT_EQ(object["warnings"][0].size(), 3U);
}

TEST_F(Check, TotalsAreByKindVersionAndVerdict) {
  makeFolder("a");
  for (const int version : {52, 60, 60})
    folder_.write("a/" + std::to_string(version) + std::to_string(std::rand()) + ".spt", specialToolFile(version, {3}));
  folder_.write("a/cut.spt", cut_);
  folder_.write("a/nest", sheetFile(180));
  folder_.write("a/notes", Bytes().i16(50).zeros(30));
  const Outcome run = check("a --summary --only unreadable");
  EXPECT_EQ(run.output,
            "kind          version  sound  damaged  foreign\n"
            "special-tool       52      1        0        0\n"
            "special-tool       60      2        1        0\n"
            "sheet             180      1        0        0\n"
            "-                   -      0        0        1\n"
            "all                        4        1        1\n"
            "6 files, 1 with warnings\n");
  const json summary = objectsOf(check("a --summary --json").output).back()["summary"];
  EXPECT_EQ(summary["files"], 6);
  EXPECT_EQ(summary["withWarnings"], 1);
  EXPECT_EQ(summary["verdicts"], (json{{"sound", 4}, {"damaged", 1}, {"foreign", 1}}));
  EXPECT_EQ(summary["kinds"].size(), 4U);
  EXPECT_EQ(summary["kinds"][1],
            (json{{"kind", "special-tool"}, {"version", 60}, {"verdicts", {{"sound", 2}, {"damaged", 1}}}}));
  EXPECT_EQ(summary["kinds"][3]["kind"], nullptr);
  // A program that reads the lines gets nothing else.
  EXPECT_EQ(linesOf(check("a").output).size(), 6U);
}

TEST_F(Check, JsonHasAnObjectForEachFile) {
  folder_.write("1.spt", sound_);
  folder_.write("2.spt", cut_);
  const auto objects = objectsOf(check("1.spt 2.spt none --json").output);
  ASSERT_EQ(objects.size(), 3U);
  const auto size = sound_.size();
  EXPECT_EQ(objects[0], (json{{"path", "1.spt"},
                              {"verdict", "sound"},
                              {"kind", "special-tool"},
                              {"version", 60},
                              {"size", size},
                              {"status", 0},
                              {"walked", size}}));
  EXPECT_EQ(objects[1]["verdict"], "damaged");
  EXPECT_EQ(objects[1]["fault"],
            (json{{"offset", 18}, {"field", "tool.dimension1"}, {"reason", "needs 4 bytes, the file has 2"}}));
  EXPECT_EQ(
      objects[2],
      (json{{"path", "none"}, {"verdict", "unreadable"}, {"error", "cannot be opened: No such file or directory"}}));
}

// ---- names -----------------------------------------------------------------------------------------------

TEST_F(Check, NamesCannotAffectLinesOrTerminals) {
  if (!kIsPosix) GTEST_SKIP() << "no such names";
  const std::vector<std::pair<std::string, std::string>> names = {
      {"a\nb.spt", "a\\nb.spt"},
      {"\x1b]0;title\x07.spt", "\\x1b]0;title\\x07.spt"},
      {"c1\xC2\x9B"
       "2J.spt",
       "c1\\u009b2J.spt"},
      {"line\xE2\x80\xA8.spt", "line\\u2028.spt"},
      {"\xE2\x80\xAE"
       "tps.spt",
       "\\u202etps.spt"},
      {"latin\xE4.spt", "latin\\xe4.spt"},
      {"\xC0\x8A.spt", "\\xc0\\x8a.spt"},
      {"<script>&\"'.spt", "<script>&\"'.spt"},
      {"'; DROP TABLE file; --.spt", "'; DROP TABLE file; --.spt"},
      {"\u00E4\u20AC\U0001F600.spt", "\u00E4\u20AC\U0001F600.spt"},
  };
  for (const auto& [name, shown] : names) {
    const TempFolder folder;
    folder.write(name, sound_);
    const Outcome lines = torvio("check " + folder.path());
    EXPECT_EQ(lines.code, 0) << shown << lines.output;
    EXPECT_EQ(lines.output.find(folder.path() + "/" + shown + ": sound, special-tool"), 0U) << lines.output;
    EXPECT_EQ(linesOf(lines.output).size(), 1U);

    const std::string text = torvio("check --json " + folder.path()).output;
    for (const char* dangerous : {"\x1b", "\x07", "\xC2\x9B", "\xE2\x80\xA8", "\xE2\x80\xAE", "\xE4.", "\xC0"})
      EXPECT_EQ(text.find(dangerous), std::string::npos) << text;
    const auto objects = objectsOf(text);
    ASSERT_EQ(objects.size(), 1U) << shown;
    const std::string full = folder.path() + "/" + name;
    if (objects[0].contains("pathBytes")) {
      std::string bytes;
      const std::string digits = objects[0]["pathBytes"];
      for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
      EXPECT_EQ(bytes, full);
    } else {
      EXPECT_EQ(objects[0]["path"], full);
    }
  }
}

// ---- misuse, output --------------------------------------------------------------------------------------

TEST_F(Check, MisuseIsAnError) {
  for (const std::string arguments :
       {"", "--null x", "--jobs 0 x", "--jobs 1000 x", "--jobs x x", "--summary --no-summary x",
        "--encoding nonsense x", "--only", "--ext", "--catalogue", "-o - x"}) {
    const Outcome run = check(arguments);
    EXPECT_EQ(run.code, 2) << arguments;
    EXPECT_EQ(run.output, "") << arguments;
    EXPECT_NE(run.errors.find("--help\"."), std::string::npos) << run.errors;
  }
}

TEST_F(Check, FullDiskIsAnErrorWithManyFilesAndThreads) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device";
  for (int i = 0; i < 500; ++i) folder_.write(std::to_string(i) + ".spt", sound_);
  for (const std::string form : {"", " --json", " --jobs 1", " --only damaged --summary"}) {
    const Outcome run = check(". --jobs 4" + form + " >/dev/full");
    EXPECT_EQ(run.code, 3) << form;
    EXPECT_EQ(run.errors, "torvio: cannot write the output: No space left on device\n") << form;
  }
}

TEST_F(Check, ClosedPipeEndsAScanThatWaitsForAnotherPipe) {
  if (!kIsPosix) GTEST_SKIP() << "no pipes";
  std::string files;
  for (int i = 0; i < 250; ++i) files += " tool.spt";
  folder_.write("tool.spt", sound_);
  // While the results are printed, a thread opens the pipe "in", which has no writer. That of the output has no reader.
  (void)inFolder("(trap '' PIPE; mkfifo out in; exec 3<>out 4>out 3<&-; { timeout 60 " + torvio_ + " check --jobs 2" +
                 files + " in" + files + "; echo $? >code; } >&4 2>errors)");
  EXPECT_EQ(asText(TempFolder::read(folder_.path("code"))), "3\n");
  EXPECT_EQ(asText(TempFolder::read(folder_.path("errors"))), "");
}

TEST_F(Check, ProgressIsShownOnATerminalOnly) {
  if (!hasTerminal()) GTEST_SKIP() << "no terminal";
  folder_.write("a.spt", sound_);
  std::ofstream(folder_.path("slow.sh")) << "for i in 1 2 3 4 5 6 7 8; do echo a.spt; sleep 0.15; done | " << torvio_
                                         << " check --files-from - >out\n";
  (void)inFolder("script -qec 'sh slow.sh' /dev/null >shown </dev/null");
  const std::string shown = asText(TempFolder::read(folder_.path("shown")));
  EXPECT_NE(shown.find(" files/s"), std::string::npos) << shown;
  EXPECT_TRUE(shown.ends_with("\r\x1b[K")) << shown;
  EXPECT_EQ(linesOf(asText(TempFolder::read(folder_.path("out")))).size(), 8U);
  const Outcome piped = inFolder("sh slow.sh");
  EXPECT_EQ(piped.errors, "");
}

TEST_F(Check, TotalsAreShownOnATerminal) {
  if (!hasTerminal()) GTEST_SKIP() << "no terminal";
  folder_.write("a.spt", sound_);
  const auto shown = [&](const std::string& arguments) {
    (void)inFolder("script -qec '" + torvio_ + " check " + arguments + "' /dev/null >shown </dev/null");
    return asText(TempFolder::read(folder_.path("shown")));
  };
  EXPECT_NE(shown("a.spt a.spt").find("2 files"), std::string::npos);
  EXPECT_EQ(shown("a.spt").find("1 file"), std::string::npos);
  EXPECT_EQ(shown("a.spt a.spt --no-summary").find("2 files"), std::string::npos);
  EXPECT_EQ(shown("a.spt a.spt --json").find("summary"), std::string::npos);
}

TEST_F(Check, MemoryDoesNotGrowWithTheNumberOfFiles) {
  if (!kIsPosix) GTEST_SKIP() << "no limits";
  folder_.write("a.spt", sound_);
  std::ofstream list(folder_.path("list"));
  // The names take more than the limit.
  const std::string name = "." + std::string(190, '/') + "a.spt\n";
  for (int i = 0; i < 200'000; ++i) list << name;
  list.close();
  const std::string limited = "ulimit -d 36000; " + torvio_;
  if (inFolder(limited + " --version").code != 0) GTEST_SKIP() << "torvio itself needs more than the limit";
  const Outcome run = inFolder(limited + " check --files-from list --jobs 2 --only damaged --summary");
  EXPECT_EQ(run.code, 0) << run.errors;
  EXPECT_NE(run.output.find("\n200000 files\n"), std::string::npos) << run.output;
}

}  // namespace
