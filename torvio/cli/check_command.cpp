#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "torvio/archive/catalogue.h"
#include "torvio/archive/host_files.h"
#include "torvio/archive/result_json.h"
#include "torvio/archive/scan.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/cli/progress.h"
#include "torvio/explain/file_content.h"
#include "torvio/values/text_encoding.h"

namespace torvio {
namespace {

using namespace oldtorvio;
using archive::FileResult;
using archive::Verdict;

// ---- names of verdicts --------------------------------------------------------------------------------

// As an argument: "sound-with-losses".
std::string argumentOf(Verdict verdict) {
  std::string name(archive::nameOf(verdict));
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::vector<std::string> verdictArguments() {
  std::vector<std::string> names;
  names.reserve(archive::kVerdicts);
  for (int i = 0; i < archive::kVerdicts; ++i) names.push_back(argumentOf(static_cast<Verdict>(i)));
  return names;
}

// ---- one line for a file ------------------------------------------------------------------------------

std::string versionText(const FileResult& result) {
  return "version " + (result.report.version ? std::to_string(*result.report.version) : "-");
}

std::string countOf(std::uint64_t count, const char* one) {
  return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
}

constexpr std::size_t kMostWarningsInLine = 3;

std::string lineFor(const FileResult& result) {
  std::string text = onOneLine(result.path) + ": " + std::string(archive::nameOf(result.verdict)) + ", ";
  if (!result.error.empty()) return text + onOneLine(result.error) + "\n";
  if (!result.kind) return text + archive::whyForeign(result) + "\n";
  const explain::FileReport& report = result.report;
  text.append(frame::infoOf(*result.kind).name).append(", ").append(versionText(result));
  text += ", status " + std::to_string(report.status);
  text += ", " + std::to_string(report.walked) + " of " + std::to_string(report.size) + " bytes";
  if (report.fault)
    text += ", " + explain::describe(*report.fault);
  else if (report.tolerated)
    text += ", " + explain::describe(*report.tolerated) + ", which is tolerated";
  else if (!report.endsExactly())
    text += ", " + report.unread();
  for (std::size_t i = 0; i < result.warnings.size() && i < kMostWarningsInLine; ++i) {
    const archive::Warning& warning = result.warnings[i];
    text += "; warning " + warning.code + " in " + warning.field + ": " + warning.text;
  }
  if (result.warnings.size() > kMostWarningsInLine)
    text += "; " + countOf(result.warnings.size() - kMostWarningsInLine, "more warning");
  return text + "\n";
}

// ---- totals -------------------------------------------------------------------------------------------

class Totals {
 public:
  void add(const FileResult& result) {
    const auto verdict = static_cast<std::size_t>(result.verdict);
    // A refused version may be any number: these files share a line.
    const bool hasVersion = result.kind && result.verdict != Verdict::refusedVersion && result.report.version;
    const int kind = result.kind ? static_cast<int>(*result.kind) : kNoKind;
    ++counts_[{kind, hasVersion ? *result.report.version : kNoVersion}][verdict];
    ++all_[verdict];
    ++files_;
    if (!result.warnings.empty()) ++withWarnings_;
  }

  std::uint64_t files() const { return files_; }

  // A table with a column for each verdict that occurs.
  std::string table() const {
    std::vector<std::vector<std::string>> rows(1, {"kind", "version"});
    for (std::size_t i = 0; i < all_.size(); ++i)
      if (all_[i] > 0) rows[0].emplace_back(archive::nameOf(static_cast<Verdict>(i)));
    const auto addRow = [&](std::string kind, std::string version, const Counts& counts) {
      rows.push_back({std::move(kind), std::move(version)});
      for (std::size_t i = 0; i < all_.size(); ++i)
        if (all_[i] > 0) rows.back().push_back(std::to_string(counts[i]));
    };
    for (const auto& [key, counts] : counts_) addRow(kindText(key), versionText(key), counts);
    addRow("all", "", all_);

    std::vector<std::size_t> widths(rows[0].size());
    for (const auto& row : rows)
      for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    std::string text;
    for (const auto& row : rows) {
      text += row[0] + std::string(widths[0] - row[0].size(), ' ');
      for (std::size_t i = 1; i < row.size(); ++i) text += "  " + std::string(widths[i] - row[i].size(), ' ') + row[i];
      text += '\n';
    }
    text += countOf(files_, "file");
    if (withWarnings_ > 0) text += ", " + std::to_string(withWarnings_) + " with warnings";
    return text + "\n";
  }

  std::string object() const {
    std::string text = "{\"summary\":{\"files\":" + std::to_string(files_);
    text += ",\"withWarnings\":" + std::to_string(withWarnings_);
    text += ",\"verdicts\":";
    appendCounts(text, all_);
    text += ",\"kinds\":[";
    for (const auto& [key, counts] : counts_) {
      if (text.back() != '[') text += ',';
      text += "{\"kind\":";
      key.first == kNoKind ? void(text += "null") : values::appendJsonString(text, kindText(key));
      text += ",\"version\":" + (key.second == kNoVersion ? "null" : std::to_string(key.second)) + ",\"verdicts\":";
      appendCounts(text, counts);
      text += '}';
    }
    return text + "]}}\n";
  }

 private:
  using Counts = std::array<std::uint64_t, archive::kVerdicts>;
  using Key = std::pair<int, int>;
  // After all kinds and before all versions.
  static constexpr int kNoKind = 100;
  static constexpr int kNoVersion = -100'000;

  static std::string kindText(const Key& key) {
    return key.first == kNoKind ? "-" : std::string(frame::infoOf(static_cast<explain::FileKind>(key.first)).name);
  }
  static std::string versionText(const Key& key) { return key.second == kNoVersion ? "-" : std::to_string(key.second); }
  static void appendCounts(std::string& to, const Counts& counts) {
    to += '{';
    for (std::size_t i = 0; i < counts.size(); ++i) {
      if (counts[i] == 0) continue;
      if (to.back() != '{') to += ',';
      values::appendJsonString(to, archive::nameOf(static_cast<Verdict>(i)));
      to += ':' + std::to_string(counts[i]);
    }
    to += '}';
  }

  std::map<Key, Counts> counts_;
  Counts all_{};
  std::uint64_t files_ = 0, withWarnings_ = 0;
};

ExitCode codeOf(const FileResult& result) {
  switch (result.verdict) {
    case Verdict::sound:
    case Verdict::soundWithLosses:
      return kSound;
    case Verdict::foreign:
      // An archive has other files as well. One that was named is expected to be of the suite.
      return result.isNamed ? kDamaged : kSound;
    case Verdict::unreadable:
      return kNotReadOrWritten;
    default:
      return kDamaged;
  }
}

// ---- the number of files, for the time left -------------------------------------------------------------

// Counts the files in a separate thread, while they are read.
class Counter {
 public:
  Counter(const std::vector<std::string>& paths, Progress& progress)
      : thread_([this, paths, &progress] {
          std::uint64_t total = 0;
          archive::FileNames names(paths);
          while (!isStopped_ && names.next()) ++total;
          if (!isStopped_) progress.setTotal(total);
        }) {}
  Counter(const Counter&) = delete;
  Counter& operator=(const Counter&) = delete;
  ~Counter() {
    isStopped_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> isStopped_ = false;
  std::thread thread_;
};

// ---- the command ----------------------------------------------------------------------------------------

// Prints a line for each file: its path and verdict, then kind, version, status, read and total bytes, the fault and
// warnings; or why it could not be read.
class CheckCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("check", "Judge files and folders: a line for each file");
    addFiles(*command, "PATH", paths_, "Files, and folders with all that is in them");
    addFile(*command, "--files-from", list_, "Also check the files that FILE lists, one per line; - is standard input")
        ->type_name("FILE")
        ->take_last();
    command->add_flag("--null", isNullSeparated_, "With --files-from: names end with NUL, not with a newline")
        ->needs("--files-from");
    addJudging(*command, judge_);
    command->add_option("--only", only_, "Print only files with this verdict; may be repeated")
        ->type_name("VERDICT")
        ->allow_extra_args(false)
        ->check(oneOf(verdictArguments(), "verdict", "Verdicts"));
    command->add_flag("--json", isJson_, "Print a JSON object for each file, one per line");
    CLI::Option* const summary = command->add_flag("--summary", isSummaryWanted_, "Print totals at the end");
    command->add_flag("--no-summary", isSummaryUnwanted_, "Print no totals")->excludes(summary);
    addFile(*command, "-o,--catalogue", catalogue_,
            "Keep the result in this SQLite database. A later run reads only files that have changed")
        ->type_name("FILE")
        ->take_last();
    addEncoding(*command, encoding_);
    command->add_option("--jobs", jobs_, "Number of threads, by default one for each processor")
        ->type_name("N")
        ->take_last()
        ->check(inRange(1, 256));
    command->footer(help());
    return command;
  }

  ExitCode run() override {
    if (paths_.empty() && list_.empty()) {
      return usageError("check", "PATH is required");
    }
    if (catalogue_ == "-") return usageError("check", "a catalogue cannot be -; \"./-\" is a file of that name");
    ListFile list(list_);
    if (!list.error().empty()) {
      printError(onOneLine(list_) + ": cannot be opened: " + list.error());
      return kNotReadOrWritten;
    }
    try {
      return check(list.file());
    } catch (const archive::CatalogueError& error) {
      printError(onOneLine(error.what()));
      return kNotReadOrWritten;
    }
  }

 private:
  // The list of --files-from.
  class ListFile {
   public:
    explicit ListFile(const std::string& path) {
      if (path.empty()) return;
      file_ = path == "-" ? stdin : archive::openFile(path, "rb");
      if (file_ == nullptr) error_ = std::generic_category().message(errno);
    }
    ListFile(const ListFile&) = delete;
    ListFile& operator=(const ListFile&) = delete;
    // Left open: a thread may still read it after an error, and the process is about to end.
    ~ListFile() = default;

    std::FILE* file() const { return file_; }
    const std::string& error() const { return error_; }

   private:
    std::FILE* file_ = nullptr;
    std::string error_;
  };

  static std::string help() {
    return "A line has the verdict, kind, version, the status that a load returns, the bytes\n"
           "that it reads, where a damaged file breaks, and warnings of values that are\n"
           "suspicious although the file is sound.\n"
           "\n"
           "In a folder, links to folders, pipes and devices are skipped; links to files\n"
           "are not. A PATH may be a pipe. A file of more than " +
           std::to_string(explain::FileContent::kLargestMiB) +
           " MiB is not read.\n"
           "Arguments after \"--\" are paths, even if they begin with \"-\".\n"
           "\n"
           "Totals are printed by default if standard output is a terminal and there are\n"
           "several files. They and the exit code include files that --only hides.\n"
           "--encoding is for texts in the catalogue.\n"
           "\n" +
           wrapped("Kinds", kindNames()) + "\n" + wrapped("Verdicts", verdictArguments()) + "\n" +
           wrapped("Encodings", values::TextEncoding::names()) +
           "\n\n"
           "Examples:\n"
           "  torvio check nest.sheet\n"
           "      Judge one file.\n"
           "  torvio check --only damaged --only refused-version /archive\n"
           "      List what cannot be loaded in a folder and all folders in it.\n"
           "  torvio check /archive --ext sheet=.nst -o archive.sqlite\n"
           "      Keep the result in a database; all files .nst are sheets.\n"
           "  find . -name '*.spt' -print0 | torvio check --null --files-from -\n"
           "      Judge the files that another command finds.\n"
           "\n"
           "Exit code:\n"
           "  0  every file is sound, perhaps with losses; a foreign file in a folder does\n"
           "     not count\n"
           "  1  a file is damaged, of a refused version, or named and foreign\n"
           "  2  the command line is wrong\n"
           "  3  a file or folder could not be read, or the output could not be written\n"
           "With several files, the highest code is returned.";
  }

  archive::ScanOptions scanOptions() const {
    archive::ScanOptions options;
    options.judge = judge_;
    options.encoding = encodingNamed(encoding_);
    options.withFacts = !catalogue_.empty();
    // A single file needs no thread.
    const bool isOneFile = list_.empty() && paths_.size() == 1 && !archive::isFolder(paths_[0]);
    options.jobs = isOneFile ? 1 : jobs_ > 0 ? jobs_ : std::max(1U, std::thread::hardware_concurrency());
    return options;
  }

  ExitCode check(std::FILE* list) {
    const auto names = std::make_shared<archive::FileNames>(paths_, list, isNullSeparated_ ? '\0' : '\n');
    archive::ScanOptions options = scanOptions();
    std::shared_ptr<archive::Catalogue> catalogue;
    if (!catalogue_.empty()) {
      catalogue = std::make_shared<archive::Catalogue>(catalogue_,
                                                       archive::catalogueSettings(TORVIO_VERSION, judge_, encoding_));
      options.known = [catalogue](const FileResult& file) { return catalogue->find(file); };
      options.isExcluded = [catalogue](const std::string& path) { return catalogue->isOwnFile(path); };
    }

    const bool isOnTerminal = isTerminal(stdout);
    Progress progress;
    std::unique_ptr<Counter> counter;
    if (progress.isShown() && list == nullptr) counter = std::make_unique<Counter>(paths_, progress);
    Totals totals;
    ExitCode worst = kSound;
    std::vector<std::string> unreadFolders;
    archive::scan(names, options, [&](FileResult& result) {
      totals.add(result);
      worst = std::max(worst, codeOf(result));
      if (result.isFolder && catalogue) unreadFolders.push_back(result.path);
      if (isPrinted(result)) {
        if (isOnTerminal) progress.clear();
        print(isJson_ ? archive::resultJson(result) : lineFor(result));
      }
      if (catalogue && !result.isFolder) catalogue->add(std::move(result));
      progress.count();
    });
    progress.clear();
    if (catalogue) catalogue->finish(archive::completeFolders(paths_, unreadFolders));
    if (isSummaryWanted_ || (isOnTerminal && !isSummaryUnwanted_ && !isJson_ && totals.files() > 1))
      print(isJson_ ? totals.object() : totals.table());
    if (names->hasFailed()) {
      printError(onOneLine(list_) + ": cannot be read to its end");
      return kNotReadOrWritten;
    }
    return worst;
  }

  bool isPrinted(const FileResult& result) const {
    return only_.empty() || std::find(only_.begin(), only_.end(), argumentOf(result.verdict)) != only_.end();
  }

  std::vector<std::string> paths_;
  std::string list_;
  bool isNullSeparated_ = false;
  archive::JudgeOptions judge_;
  std::vector<std::string> only_;
  bool isJson_ = false;
  bool isSummaryWanted_ = false, isSummaryUnwanted_ = false;
  std::string catalogue_;
  std::string encoding_{values::kDefaultEncoding};
  unsigned jobs_ = 0;
};

}  // namespace

std::unique_ptr<Command> makeCheckCommand() { return std::make_unique<CheckCommand>(); }

}  // namespace torvio
