// The catalogue of an archive as an SQLite database.
#include "torvio/archive/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "src/sheet/sheet_io.h"
#include "tests/support/kind_files.h"
#include "tests/support/special_tool_files.h"
#include "tests/tools/run_torvio.h"

#if defined(TORVIO_WITH_SQLITE)
#include <sqlite3.h>

namespace {

using namespace oldtorvio;
using namespace testing_support;
namespace fs = std::filesystem;

// All rows of a query, their columns separated by "|". NULL is "-".
std::vector<std::string> rowsOf(const std::string& catalogue, const std::string& sql) {
  std::vector<std::string> rows;
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open_v2(catalogue.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK) << catalogue;
  // A process that was killed may not have ended yet.
  (void)sqlite3_busy_timeout(database, 10'000);
  sqlite3_stmt* query = nullptr;
  EXPECT_EQ(sqlite3_prepare_v2(database, sql.c_str(), -1, &query, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
  while (sqlite3_step(query) == SQLITE_ROW) {
    std::string row;
    for (int i = 0; i < sqlite3_column_count(query); ++i) {
      if (i > 0) row += '|';
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(query, i));
      row += text != nullptr ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(query, i))) : "-";
    }
    rows.push_back(row);
  }
  (void)sqlite3_finalize(query);
  (void)sqlite3_close(database);
  return rows;
}
std::string valueOf(const std::string& catalogue, const std::string& sql) {
  const auto rows = rowsOf(catalogue, sql);
  return rows.size() == 1 ? rows[0] : std::to_string(rows.size()) + " rows";
}

// Everything but the numbers of runs and the identity of rows, in the order of the paths.
std::vector<std::string> contentsOf(const std::string& catalogue) {
  std::vector<std::string> all = rowsOf(
      catalogue,
      "SELECT path, size, modified, kind, version, verdict, error, status, walked, fault_offset, fault_field,"
      " fault_reason, is_tolerated, name, assembly, width, height, thickness, material, material_group, material_type,"
      " machine, work_order, part_count, placement_count, shape_count, station_count, tool_count, warning_count"
      " FROM file ORDER BY path");
  for (const std::string table : {"part", "tool", "warning"})
    for (const std::string& row : rowsOf(catalogue, "SELECT f.path, t.* FROM " + table +
                                                        " t JOIN file f ON f.id = t.file"
                                                        " ORDER BY f.path, t.position"))
      // Without the identity of the file, which is the second column.
      all.push_back(row.substr(0, row.find('|')) + row.substr(row.find('|', row.find('|') + 1)));
  return all;
}

template <std::size_t N>
void setText(char (&field)[N], const std::string& text) {
  ASSERT_LT(text.size(), N);
  std::memcpy(field, text.c_str(), text.size() + 1);
}

Bytes nest(const std::string& label = "NEST") {
  auto sheet = std::make_unique<OldSheet>();
  sheet->machine.textWidth = 256;
  sheet->paramTable.version = 180;
  sheet->paramTable.nameLength = 7;
  setText(sheet->paramTable.name, "ST37-2");
  setText(sheet->sheetLabel, label);
  setText(sheet->materialGroup, "steel");
  setText(sheet->materialType, "St\xFC");
  sheet->width = 250;
  sheet->height = 125;
  sheet->thickness = 1.5F;
  auto& list = sheet->machine.stationsA;
  list.stations.resize(3);
  list.tools.resize(3);
  for (OldTool& tool : list.tools) tool.shapeCode = 1;
  list.tools[1].shapeCode = 108;
  setText(list.tools[1].specialToolPath, "C:\\TOOLS\\STAR.SPT");
  for (int i = 0; i < 2; ++i) {
    TorvPart& part = sheet->partList.parts.emplace_back();
    setText(part.partName, i == 0 ? "LID" : "BOX");
    setText(part.partFullDosName, i == 0 ? "C:\\LID.PRT" : "C:\\BOX.PRT");
    setText(part.woNumber, "W" + std::to_string(i));
    part.width = static_cast<float>(10 + i);
    part.patterns.resize(2);
    part.patterns[0].gridCount1 = 3;
    part.patterns[0].gridCount2 = 2;
    part.patterns[0].items.resize(1);
    part.patterns[0].items[0].toolNumber = 2 - i;
  }
  return Bytes().i16(180).add(written([&](auto& to) { return WriteOldSheet(to, 180, *sheet); }));
}

class Catalogues : public testing::Test {
 protected:
  Outcome check(const std::string& arguments = "") const {
    return torvio("check " + files_.path() + " --ext sheet=.nst -o " + catalogue_ + " " + arguments);
  }
  std::string value(const std::string& sql) const { return valueOf(catalogue_, sql); }

  TempFolder files_, other_;
  std::string catalogue_ = other_.path("c.sqlite");
};

TEST_F(Catalogues, HasARowForEachFilePartToolAndWarning) {
  const std::string sheet = files_.write("a.nst", nest());
  const std::string cut = files_.write("cut.spt", specialToolFile(60, {3}).cut(20));
  const std::string text = files_.write("notes.txt", Bytes().i16(50).text(5, "hello"));
  EXPECT_EQ(check().code, 1);
  EXPECT_EQ(value("SELECT count(*) FROM file"), "3");
  EXPECT_EQ(value("SELECT size, kind, version, verdict, error, status, walked, fault_offset, is_tolerated, name, width,"
                  " height, thickness, material, material_group, material_type, work_order, part_count,"
                  " placement_count, shape_count, station_count, tool_count, warning_count FROM file WHERE path = '" +
                  sheet + "'"),
            std::to_string(nest().size()) + "|sheet|180|sound|-|0|" + std::to_string(nest().size()) +
                "|-|0|NEST|250.0|125.0|1.5|ST37-2|steel|St\u00FC|W0, W1|2|14|0|3|2|0");
  EXPECT_EQ(value("SELECT kind, version, verdict, status, walked, fault_offset, fault_field, fault_reason FROM file"
                  " WHERE path = '" +
                  cut + "'"),
            "special-tool|60|damaged|1|18|18|tool.dimension1|needs 4 bytes, the file has 2");
  EXPECT_EQ(value("SELECT kind, verdict FROM file WHERE path = '" + text + "'"), "-|foreign");
  EXPECT_EQ(rowsOf(catalogue_, "SELECT position, name, path, width, quantity, work_order FROM part ORDER BY position"),
            (std::vector<std::string>{"0|LID|C:\\LID.PRT|10.0|7|W0", "1|BOX|C:\\BOX.PRT|11.0|7|W1"}));
  EXPECT_EQ(rowsOf(catalogue_, "SELECT list, number, shape_code, special_tool FROM tool ORDER BY position"),
            (std::vector<std::string>{"machine.stationsA|1|1|-", "machine.stationsA|2|108|C:\\TOOLS\\STAR.SPT"}));
  EXPECT_EQ(value("SELECT started <= finished FROM run"), "1");
  EXPECT_FALSE(fs::exists(catalogue_ + "-wal"));
}

TEST_F(Catalogues, EveryKindAtEveryVersionIsEntered) {
  std::size_t count = 0;
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const std::string name = kind.name + std::to_string(version) + ".x";
      files_.write(name, kind.file(version));
      EXPECT_EQ(torvio("check --kind " + kind.name + " " + files_.path(name) + " --catalogue " + catalogue_).code, 0)
          << name;
      ++count;
    }
  EXPECT_EQ(value("SELECT count(*) FROM file WHERE status = 0"), std::to_string(count));
  EXPECT_EQ(value("SELECT count(DISTINCT kind) FROM file"), "8");
  EXPECT_EQ(value("SELECT count(*) > 0 FROM warning"), "1");
  EXPECT_EQ(value("SELECT count(*) FROM file f WHERE warning_count <> (SELECT count(*) FROM warning w WHERE w.file ="
                  " f.id)"),
            "0");
}

TEST_F(Catalogues, LaterRunReadsOnlyWhatHasChanged) {
  const std::string same = files_.write("same.nst", nest());
  const std::string changed = files_.write("changed.nst", nest());
  EXPECT_EQ(check().code, 0);
  const auto time = fs::last_write_time(same);
  // Damaged, but with the size and time that it had.
  files_.overwrite("same.nst", Bytes().i16(180).fill(nest().size() - 2, 0xFF));
  fs::last_write_time(same, time);
  files_.write("changed.nst", nest("OTHER"));
  files_.write("new.nst", nest());
  const Outcome run = check();
  EXPECT_EQ(run.code, 0) << run.output;
  EXPECT_EQ(value("SELECT verdict, examined_in, seen_in FROM file WHERE path = '" + same + "'"), "sound|1|2");
  EXPECT_EQ(value("SELECT name, examined_in, seen_in FROM file WHERE path = '" + changed + "'"), "OTHER|2|2");
  EXPECT_EQ(value("SELECT count(*) FROM file"), "3");
  EXPECT_EQ(value("SELECT count(*) FROM part"), "6");
  // Another time is enough to read it again.
  fs::last_write_time(same, time + std::chrono::seconds(1));
  EXPECT_EQ(check().code, 1);
  EXPECT_EQ(value("SELECT verdict FROM file WHERE path = '" + same + "'"), "damaged");
  EXPECT_EQ(value("SELECT count(*) FROM part"), "4");
}

TEST_F(Catalogues, LaterRunPrintsWhatTheFirstDid) {
  files_.write("a.nst", nest());
  files_.write("cut.nst", nest().cut(4000));
  files_.write("long.nst", Bytes(nest()).zeros(3));
  files_.write("wrong.nst", Bytes().i16(300).zeros(100));
  files_.write("text", Bytes().text(20, "this is only a text"));
  files_.write("full.nst", sheetFile(180));
  for (const std::string& form : {std::string("--jobs 1 --summary"), std::string("--json --summary")}) {
    const Outcome first = check(form), second = check(form);
    EXPECT_EQ(first.code, 1);
    EXPECT_EQ(second.code, 1);
    EXPECT_EQ(first.output, second.output);
    EXPECT_EQ(first.output, torvio("check " + files_.path() + " --ext sheet=.nst " + form).output);
  }
  EXPECT_EQ(value("SELECT count(DISTINCT examined_in) FROM file"), "1");
}

TEST_F(Catalogues, OtherSettingsReadAllFilesAgain) {
  files_.write("a.nst", nest());
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(check("--kind part").code, 1);
  EXPECT_EQ(value("SELECT kind, verdict, examined_in FROM file"), "part|damaged|2");
  EXPECT_EQ(check("--encoding cp437").code, 0);
  EXPECT_EQ(value("SELECT kind, material_type, examined_in FROM file"), "sheet|St\u207F|3");
}

TEST_F(Catalogues, DeletedFilesAreRemovedOnlyFromFoldersThatWereRead) {
  files_.write("a.nst", nest());
  const std::string gone = files_.write("gone.nst", nest());
  const std::string elsewhere = other_.write("elsewhere.nst", nest());
  EXPECT_EQ(check(elsewhere).code, 0);
  EXPECT_EQ(value("SELECT count(*) FROM file"), "3");
  fs::remove(gone);
  fs::remove(elsewhere);
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(
      rowsOf(catalogue_, "SELECT path FROM file ORDER BY path"),
      (std::vector<std::string>{std::min(files_.path("a.nst"), elsewhere), std::max(files_.path("a.nst"), elsewhere)}));
  EXPECT_EQ(value("SELECT count(*) FROM part"), "4");
  // A folder that is gone is not one that was read.
  fs::remove_all(files_.path());
  EXPECT_EQ(check().code, 3);
  EXPECT_EQ(value("SELECT count(*) FROM file WHERE verdict <> 'unreadable'"), "2");
}

TEST_F(Catalogues, FolderWithTooLongPathsKeepsItsRows) {
  if (!kIsPosix) GTEST_SKIP() << "no such limit";
  files_.write("a.nst", nest());
  const std::string gone = files_.write("gone.nst", nest());
  EXPECT_EQ(check().code, 0);
  fs::remove(gone);
  const auto deepFolder = [](std::string path) {
    for (int i = 0; i < 15; ++i) path += '/' + std::string(200, 'd');
    fs::create_directories(path);
    return path;
  };
  // Longer paths are not made at once.
  const std::string outer = deepFolder(files_.path("x")) + "/inner", inner = other_.path("b");
  (void)deepFolder(inner);
  fs::rename(inner, outer);
  const Outcome run = check();
  fs::rename(outer, inner);
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(value("SELECT count(*) FROM file"), "2");
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(value("SELECT count(*) FROM file"), "1");
}

TEST_F(Catalogues, CatalogueIsNeverReadAsAFile) {
  const std::string sheet = files_.write("a.nst", nest());
  const std::string name = fs::path(files_.path()).filename().string();
  std::vector<std::string> catalogues = {files_.path("c.sqlite"), files_.path() + "/../" + name + "/c.sqlite"};
  if (kIsPosix) {
    fs::create_directory_symlink(files_.path(), other_.path("folder"));
    fs::create_symlink(files_.path("c.sqlite"), other_.path("link"));
    catalogues.push_back(other_.path("folder") + "/c.sqlite");
    catalogues.push_back(other_.path("link"));
  }
  for (const std::string& catalogue : catalogues)
    for (const std::string& paths :
         {files_.path(), files_.path("c.sqlite") + " " + sheet, files_.path() + " " + catalogue}) {
      // The second run finds the catalogue of the first.
      for (int run = 0; run < 2; ++run) {
        const Outcome found = torvio("check " + paths + " --ext sheet=.nst -o " + catalogue + " --jobs 2");
        EXPECT_EQ(found.code, 0) << catalogue << ": " << found.errors;
        EXPECT_EQ(found.output.find(sheet + ": sound"), 0U) << catalogue << " " << paths << ": " << found.output;
        EXPECT_EQ(std::count(found.output.begin(), found.output.end(), '\n'), 1) << catalogue << ": " << found.output;
      }
      EXPECT_EQ(rowsOf(files_.path("c.sqlite"), "SELECT path FROM file"), std::vector<std::string>{sheet});
      fs::remove(files_.path("c.sqlite"));
    }
}

TEST_F(Catalogues, ConcurrentRunsKeepACatalogueInTheirFolder) {
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  for (int i = 0; i < 300; ++i) files_.write(std::to_string(i) + ".nst", nest());
  const std::string name = fs::path(files_.path()).filename().string();
  const std::string run =
      std::string(TORVIO_COMMAND) + " check . --ext sheet=.nst -o ../" + name + "/c.sqlite >/dev/null";
  std::string all = "cd " + files_.path() + "; for i in 1 2 3 4 5 6; do { " + run;
  all += "; echo $? >>" + other_.path("codes") + "; } & done; wait";
  (void)runShell(all);
  EXPECT_EQ(asText(TempFolder::read(other_.path("codes"))), "0\n0\n0\n0\n0\n0\n");
  EXPECT_EQ(valueOf(files_.path("c.sqlite"), "PRAGMA integrity_check"), "ok");
  EXPECT_EQ(valueOf(files_.path("c.sqlite"), "SELECT count(*) FROM file WHERE verdict = 'sound'"), "300");
  EXPECT_EQ(valueOf(files_.path("c.sqlite"), "SELECT count(*) FROM file"), "300");
}

TEST_F(Catalogues, UnreadableFilesAreTriedAgain) {
  if (!kIsPosix) GTEST_SKIP() << "no links";
  fs::create_symlink(files_.path("later"), files_.path("link.nst"));
  EXPECT_EQ(check().code, 3);
  EXPECT_EQ(value("SELECT verdict, error, size FROM file"), "unreadable|cannot be opened: No such file or directory|-");
  files_.write("later", nest());
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(value("SELECT count(*) FROM file WHERE verdict = 'sound'"), "2");
}

TEST_F(Catalogues, OnePathHasOneRowHoweverItIsWritten) {
  files_.write("a.nst", nest());
  EXPECT_EQ(check().code, 0);
  const std::string tool = TORVIO_COMMAND;
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  for (const std::string& path :
       {std::string("a.nst"), std::string("./a.nst"), std::string(".//./a.nst"), std::string(".")})
    EXPECT_EQ(runShell("cd " + files_.path() + " && " + tool + " check --ext sheet=.nst --catalogue " + catalogue_ +
                       " " + path)
                  .code,
              0);
  EXPECT_EQ(value("SELECT path, examined_in, seen_in FROM file"), files_.path("a.nst") + "|1|5");
}

TEST_F(Catalogues, HostileNamesAndTextsAreOnlyData) {
  const std::string evil = "'); DROP TABLE file; --<script>\n\x1b[2J";
  const std::string name = kIsPosix ? "x'); DROP TABLE file; --\n\x1b<b>.nst" : "x'); DROP TABLE file; --.nst";
  const std::string path = files_.write(name, nest(evil));
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(rowsOf(catalogue_, "SELECT path, name FROM file"), std::vector<std::string>{path + "|" + evil});
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(value("SELECT examined_in, seen_in FROM file"), "1|2");
}

TEST_F(Catalogues, NamesThatAreNotUtf8StayDistinct) {
  if (!kIsPosix) GTEST_SKIP() << "names of files are texts";
  files_.write("\xE4.nst", nest());
  files_.write("\xF6.nst", nest());
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(value("SELECT count(*), count(DISTINCT path), min(typeof(path)), min(examined_in), min(seen_in) FROM file"),
            "2|2|blob|1|2");
  EXPECT_EQ(value("SELECT count(*) FROM file WHERE hex(path) LIKE '%E42E6E7374'"), "1");
  fs::remove(files_.path("\xE4.nst"));
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(value("SELECT count(*) FROM file"), "1");
}

TEST_F(Catalogues, OtherFilesAreRefusedAndUnchanged) {
  const std::string input = files_.write("a.nst", nest());
  const std::string tiny = other_.write("tiny", Bytes().text(3, "abc"));
  const std::string sheet = other_.write("b.nst", nest());
  const std::string database = other_.path("d.sqlite");
  sqlite3* foreign = nullptr;
  ASSERT_EQ(sqlite3_open(database.c_str(), &foreign), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(foreign, "CREATE TABLE t (x)", nullptr, nullptr, nullptr), SQLITE_OK);
  (void)sqlite3_close(foreign);
  const std::string later = other_.path("later.sqlite");
  EXPECT_EQ(torvio("check " + input + " --catalogue " + later).code, 0);
  (void)rowsOf(later, "PRAGMA user_version = 2");
  for (const std::string& path : {tiny, sheet, database, later}) {
    const Bytes before = TempFolder::read(path);
    const Outcome run = torvio("check " + input + " --catalogue " + path);
    EXPECT_EQ(run.code, 3) << path;
    EXPECT_EQ(run.output, "") << path;
    EXPECT_EQ(run.errors.find("torvio: " + path + ": "), 0U) << run.errors;
    EXPECT_EQ(TempFolder::read(path), before) << path;
  }
  EXPECT_EQ(torvio("check " + input + " --catalogue " + other_.path("none/c.sqlite")).code, 3);
  // An empty file, as mktemp leaves one.
  EXPECT_EQ(torvio("check " + input + " --catalogue " + other_.write("empty", {})).code, 0);
}

TEST_F(Catalogues, TheCatalogueItselfIsNotAFileOfTheFolder) {
  files_.write("a.nst", nest());
  const std::string inside = files_.path("c.sqlite");
  for (int run = 0; run < 2; ++run)
    EXPECT_EQ(torvio("check " + files_.path() + " --catalogue " + inside + " --ext sheet=.nst").output.find("c.sqlite"),
              std::string::npos);
  EXPECT_EQ(valueOf(inside, "SELECT count(*) FROM file"), "1");
}

// ---- interrupted runs ----------------------------------------------------------------------------------

TEST_F(Catalogues, KilledRunsLoseAndDoubleNothing) {
  if (!kIsPosix) GTEST_SKIP() << "no kill";
  constexpr int kFiles = 6000;
  const Bytes sound = nest(), cut = nest().cut(3000), full = sheetFile(180);
  for (int i = 0; i < kFiles; ++i) {
    const std::string folder = "f" + std::to_string(i / 500);
    if (i % 500 == 0) fs::create_directory(files_.path(folder));
    files_.write(folder + "/" + std::to_string(i) + ".nst", i % 7 == 0 ? cut : i % 11 == 0 ? full : sound);
  }
  const std::string command =
      std::string(TORVIO_COMMAND) + " check " + files_.path() + " --ext sheet=.nst --catalogue ";
  int interrupted = 0;
  std::string before = "0";
  for (int i = 1; i <= 12; ++i) {
    const std::string delay = "0." + std::string(i < 10 ? "0" : "") + std::to_string(i);
    const Outcome run = runShell("timeout -s KILL " + delay + " " + command + catalogue_ + " >/dev/null");
    if (run.code == 1) continue;
    ++interrupted;
    if (!fs::exists(catalogue_) || rowsOf(catalogue_, "SELECT 1 FROM sqlite_master WHERE name = 'file'").empty())
      continue;
    EXPECT_EQ(value("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(value("PRAGMA foreign_key_check"), "0 rows");
    EXPECT_EQ(
        value("SELECT count(*) FROM file f WHERE part_count <> (SELECT count(*) FROM part p WHERE p.file = f.id)"),
        "0");
    // Nothing that was written is lost.
    const std::string now = value("SELECT count(*) FROM file");
    EXPECT_GE(std::stoi(now), std::stoi(before));
    before = now;
  }
  EXPECT_GT(interrupted, 0);
  EXPECT_EQ(runShell(command + catalogue_ + " >/dev/null").code, 1);
  const std::string complete = other_.path("complete.sqlite");
  EXPECT_EQ(runShell(command + complete + " >/dev/null").code, 1);
  EXPECT_EQ(value("SELECT count(*) FROM file"), std::to_string(kFiles));
  EXPECT_EQ(contentsOf(catalogue_), contentsOf(complete));
}

// ---- two runs at a time --------------------------------------------------------------------------------

TEST_F(Catalogues, TwoConcurrentRunsMakeOneCatalogue) {
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  constexpr int kFiles = 300;
  for (int i = 0; i < kFiles; ++i) files_.write(std::to_string(i) + ".nst", nest());
  const std::string command = std::string(TORVIO_COMMAND) + " check " + files_.path() +
                              " --ext sheet=.nst --catalogue " + catalogue_ + " >/dev/null";
  const Outcome both = runShell(command + " & " + command + "; other=$?; wait $! || exit 101; exit $other");
  EXPECT_EQ(both.code, 0) << both.errors;
  EXPECT_EQ(both.errors, "");
  EXPECT_EQ(value("SELECT count(*) FROM file WHERE verdict = 'sound'"), std::to_string(kFiles));
  EXPECT_EQ(value("SELECT count(*) FROM part"), std::to_string(2 * kFiles));
  EXPECT_EQ(value("SELECT count(*) FROM run WHERE finished IS NOT NULL"), "2");
  EXPECT_EQ(value("PRAGMA journal_mode"), "delete");
  EXPECT_FALSE(fs::exists(catalogue_ + "-wal"));
}

// The earlier run enters a file that the later one has seen already.
TEST_F(Catalogues, RunThatEndsLastKeepsWhatTheOtherHasWritten) {
  namespace archive = oldtorvio::archive;
  const std::string folder = files_.path();
  archive::FileResult file;
  file.verdict = archive::Verdict::sound;
  file.size = file.report.size = 5;
  file.modified = 7;
  archive::FileResult again = file;
  file.path = folder + "/new.nst";
  again.path = folder + "/known.nst";
  again.isKnown = true;
  {
    archive::Catalogue earlier(catalogue_, "s");
    archive::Catalogue later(catalogue_, "s");
    later.add(file);
    archive::FileResult known = again;
    known.isKnown = false;
    later.add(known);
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    later.add(file);  // writes all three
    earlier.add(file);
    earlier.add(again);
    earlier.finish({});
    later.finish({folder});
  }
  EXPECT_EQ(rowsOf(catalogue_, "SELECT path, seen_in FROM file ORDER BY path"),
            (std::vector<std::string>{folder + "/known.nst|2", folder + "/new.nst|2"}));
}

TEST_F(Catalogues, LockOfAnotherProcessIsWaitedFor) {
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(catalogue_.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  try {
    const oldtorvio::archive::Catalogue refused(catalogue_, "", std::chrono::milliseconds(100));
    ADD_FAILURE() << "opened";
  } catch (const oldtorvio::archive::CatalogueError& error) {
    EXPECT_EQ(error.what(), catalogue_ + ": is locked by another process");
  }
  files_.write("a.nst", nest());
  std::thread release([other] {
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    (void)sqlite3_close(other);
  });
  const Outcome run = check();
  release.join();
  EXPECT_EQ(run.code, 0) << run.errors;
  EXPECT_EQ(value("SELECT count(*) FROM file"), "1");
}

TEST_F(Catalogues, FullDiskIsAnError) {
  if (!kIsPosix) GTEST_SKIP() << "no POSIX shell";
  for (int i = 0; i < 500; ++i) files_.write(std::to_string(i) + ".nst", nest());
  const std::string command =
      std::string(TORVIO_COMMAND) + " check " + files_.path() + " --ext sheet=.nst --catalogue " + catalogue_;
  // Files may have 64 blocks.
  const Outcome run = runShell("(trap '' XFSZ; ulimit -f 64; " + command + " >/dev/null)");
  EXPECT_EQ(run.code, 3);
  EXPECT_EQ(run.errors.find("torvio: " + catalogue_ + ": "), 0U) << run.errors;
  // The next run has room.
  EXPECT_EQ(check().code, 0);
  EXPECT_EQ(value("SELECT count(*) FROM file"), "500");
}

}  // namespace

#else

TEST(Catalogues, AreAnErrorWithoutSqlite) {
  EXPECT_FALSE(oldtorvio::archive::Catalogue::isAvailable());
  EXPECT_THROW(oldtorvio::archive::Catalogue("c.sqlite", ""), oldtorvio::archive::CatalogueError);
}

#endif
