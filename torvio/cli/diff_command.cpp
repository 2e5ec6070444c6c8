#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/cli/progress.h"
#include "torvio/compare/diff_json.h"
#include "torvio/explain/file_content.h"
#include "torvio/values/text_encoding.h"

namespace torvio {
namespace {

using namespace oldtorvio;
using compare::Difference;
using compare::Side;
using Change = Difference::Change;

// The exit codes of this command. Lost output ends with kNotReadOrWritten, as elsewhere.
constexpr auto kSame = kSound;
constexpr auto kDifferent = static_cast<ExitCode>(1);
constexpr auto kTrouble = static_cast<ExitCode>(2);

std::string counted(std::uint64_t count, const std::string& what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

// One path for both files: "parts[3].width" and "parts[7].width" are "parts[3|7].width".
std::string joinedPaths(const std::string& a, const std::string& b) {
  if (a.empty()) return b;
  if (b.empty() || a == b) return a;
  std::string all;
  std::size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    if (a[i] != b[j]) return a + " | " + b;
    all += a[i];
    if (a[i] == '[') {
      const std::size_t endOfA = a.find(']', i), endOfB = b.find(']', j);
      const std::string ofA = a.substr(i + 1, endOfA - i - 1), ofB = b.substr(j + 1, endOfB - j - 1);
      all += ofA == ofB ? ofA : ofA + '|' + ofB;
      i = endOfA;
      j = endOfB;
    } else {
      ++i;
      ++j;
    }
  }
  return i == a.size() && j == b.size() ? all : a + " | " + b;
}

// ---- text for people -------------------------------------------------------------------------------------

struct Colours {
  const char *removed = "", *added = "", *moved = "", *faint = "", *none = "";
};
Colours coloursOf(bool areOn) {
  if (!areOn) return {};
  return {"\x1b[31m", "\x1b[32m", "\x1b[33m", "\x1b[2m", "\x1b[0m"};
}

// Prints differences in columns. A block of lines is held back until it is known how wide they are.
class TextPrinter {
 public:
  TextPrinter(const std::string& notStoredInA, const std::string& notStoredInB, bool isColoured)
      : notStoredInA_(notStoredInA), notStoredInB_(notStoredInB), colours_(coloursOf(isColoured)) {}

  // The paths of what is compared, with which every path begins.
  void setPlaces(std::string a, std::string b) {
    placeInA_ = std::move(a);
    placeInB_ = std::move(b);
  }

  void add(const Difference& difference) {
    lines_.push_back(
        {difference, joinedPaths(within(difference.pathInA, placeInA_), within(difference.pathInB, placeInB_))});
    if (lines_.size() == kBlock) flush();
  }
  void flush() {
    std::size_t width = 0;
    for (const Line& line : lines_) width = std::max(width, std::min(line.path.size(), kWidestPath));
    std::string text;
    for (const Line& line : lines_) {
      appendLine(text, line, width);
      text += '\n';
    }
    lines_.clear();
    print(text);
  }

 private:
  struct Line {
    Difference difference;
    std::string path;
  };
  static constexpr std::size_t kBlock = 256, kWidestPath = 48;

  static std::string within(const std::string& path, const std::string& place) {
    if (place.empty() || !path.starts_with(place)) return path;
    return path.substr(std::min(path.size(), place.size() + 1));
  }

  void appendLine(std::string& to, const Line& line, std::size_t width) const {
    const Difference& one = line.difference;
    const bool isInA = one.change == Change::onlyInA, isInB = one.change == Change::onlyInB,
               isMoved = one.change == Change::moved;
    const char* const colour = isInA ? colours_.removed : isInB ? colours_.added : isMoved ? colours_.moved : "";
    to.append(colour).append(isInA ? "- " : isInB ? "+ " : isMoved ? "> " : "~ ").append(line.path);
    if (*colour != '\0') to += colours_.none;
    to.append(width - std::min(width, line.path.size()) + 2, ' ');
    if (isMoved) to += "moved  ";
    if (one.isOwnName) {
      appendValue(to, shortened(one.name), colour);
      return;
    }
    if (isInA) {
      appendValue(to, one.a, colours_.removed);
    } else if (isInB || isMoved) {
      appendValue(to, one.b, colour);
    } else {
      one.notStoredIn == Side::a ? appendValue(to, notStoredInA_, colours_.faint)
                                 : appendValue(to, one.a, colours_.removed);
      to += " -> ";
      one.notStoredIn == Side::b ? appendValue(to, notStoredInB_, colours_.faint)
                                 : appendValue(to, one.b, colours_.added);
    }
    if (!one.name.empty()) {
      to.append("  ");
      appendValue(to, "in " + shortened(one.name), colours_.faint);
    }
  }
  static std::string shortened(const std::string& name) {
    constexpr std::size_t kLongestName = 40;
    if (name.size() <= kLongestName) return name;
    std::size_t end = kLongestName;
    while ((static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80) --end;
    return name.substr(0, end) + "...";
  }
  void appendValue(std::string& to, const std::string& value, const char* colour) const {
    to.append(colour).append(value);
    if (*colour != '\0') to += colours_.none;
  }

  const std::string &notStoredInA_, &notStoredInB_;
  Colours colours_;
  std::string placeInA_, placeInB_;
  std::vector<Line> lines_;
};

// ---- the command -----------------------------------------------------------------------------------------

class DiffCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("diff", "Show where two files differ, member by member");
    addFile(*command, "A", files_[0].path, "A file")->required();
    addFile(*command, "B", files_[1].path, "The file to compare it with")->required();
    addJudging(*command, judge_);
    addKindOption(*command, "--kind-a", "Read A as this kind of file", files_[0]);
    addKindOption(*command, "--kind-b", "Read B as this kind of file", files_[1]);
    command
        ->add_option("--part", part_,
                     "Compare this part of a sheet or group part file, by its name or its position, from 0")
        ->type_name("PART")
        ->take_last();
    command
        ->add_option("--tolerance", options_.tolerance, "Real numbers that differ by no more are the same (0 to 1e300)")
        ->type_name("NUMBER")
        ->take_last()
        ->check(isTolerance());
    command->add_flag("--common", options_.commonOnly,
                      "Leave out the version and members that the version of one of the files does not store");
    addEncoding(*command, options_.encoding);
    command->add_option("--limit", limit_, "Print no more than N differences, and count the rest")
        ->type_name("N")
        ->take_last()
        ->check(inRange(std::int64_t{0}, std::int64_t{1'000'000'000}));
    command->add_flag("--json", isJson_, "Print a JSON object for each difference, one per line");
    command->add_flag("-q,--quiet", isQuiet_, "Print nothing: only the exit code matters");
    command->footer(help());
    return command;
  }

  ExitCode run() override try {
    for (File& file : files_)
      if (!read(file)) return kTrouble;
    return compareFiles();
  } catch (const std::bad_alloc&) {
    printError("diff: not enough memory");
    return kTrouble;
  }

 private:
  struct File {
    std::string path;
    std::optional<frame::FileKind> wanted;
    std::unique_ptr<explain::FileContent> content;
    archive::Judgement judgement;
  };

  static void addKindOption(CLI::App& command, const std::string& name, const std::string& help, File& file) {
    command
        .add_option_function<std::string>(
            name, [&file](const std::string& kind) { file.wanted = kindNamed(kind); }, help)
        ->type_name("KIND")
        ->take_last()
        ->check(oneOf(kindNames(), "kind", "Kinds"));
  }
  static CLI::Validator isTolerance() {
    return {[](std::string& text) {
              double value = 0;
              const bool isNumber = CLI::detail::lexical_cast(text, value);
              return isNumber && value >= 0 && value <= 1e300
                         ? std::string()
                         : "--tolerance requires a number from 0 to 1e300, not " + inQuotes(text);
            },
            ""};
  }

  static std::string help() {
    return "The records in the files are compared, so that bytes which no load reads do not\n"
           "count. Elements of lists are matched first: parts and other records with a name\n"
           "by name, the rest by content.\n"
           "\n"
           "  ~ width             12.5 -> 13     changed\n"
           "  - marks[3]          {...}          only in A\n"
           "  + marks[5]          {...}          only in B\n"
           "  > parts[7|2]        moved          from [7] in A to [2] in B\n"
           "  ~ parts[3|4].width  20 -> 30       changed; it is parts[3] in A, parts[4] in B\n"
           "\n"
           "A part file can be compared with a sheet or group part file: with the part that\n"
           "--part chooses, or else the one with the name of the file, or the only one. The\n"
           "parts of a group part file, a machine and a material are found in a sheet, a\n"
           "material also in a machine. Members that only one of the two kinds of file\n"
           "stores are then left out, and so is where a part is placed.\n"
           "\n"
           "Members that the version of one file does not store are marked: the load of the\n"
           "older file sets them. --common leaves them out.\n"
           "\n"
           "An object of --json has change (changed, onlyInA, onlyInB, moved), fieldInA and\n"
           "fieldInB, a and b with the complete values, name of the innermost element that\n"
           "has one, and notStoredIn (a or b). The last line has a member summary instead,\n"
           "with same, differences, printed and notStored, and each file with its kind and\n"
           "version.\n"
           "\n"
           "Examples:\n"
           "  torvio diff nest.sheet nest_old.sheet\n"
           "      Show what has changed in a nest.\n"
           "  torvio diff --quiet a.part b.part && echo same\n"
           "      Test whether two parts are the same.\n"
           "  torvio diff plate.part nest.sheet --part PLATE\n"
           "      Compare a part with its copy in a nest.\n"
           "\n" +
           wrapped("Kinds", kindNames()) + "\n" + wrapped("Encodings", values::TextEncoding::names()) +
           "\n\n"
           "A or B may be a pipe. A file of more than " +
           std::to_string(explain::FileContent::kLargestMiB) +
           " MiB is not read.\n"
           "Arguments after \"--\" are files, even if they begin with \"-\".\n"
           "\n"
           "Exit code:\n"
           "  0  the same\n"
           "  1  different\n"
           "  2  the command line is wrong, a file could not be read, is of unknown kind or\n"
           "     version, or is damaged: then what could be read of it is compared\n"
           "  3  the output could not be written";
  }

  // Says why there is nothing to compare.
  bool read(File& file) const {
    file.content = std::make_unique<explain::FileContent>(file.path);
    if (!file.content->error().empty()) {
      printError(onOneLine(file.path) + ": " + file.content->error());
      return false;
    }
    archive::JudgeOptions options = judge_;
    if (file.wanted) options.kind = file.wanted;
    file.judgement = archive::judge(file.path, file.content->bytes(), options);
    if (!file.judgement.kind) {
      const explain::FileReport report =
          explain::mapFile(file.content->bytes(), std::nullopt, [](const explain::MapLine&) {});
      printError(onOneLine(file.path) + ": " +
                 (report.fault ? report.fault->reason : std::string("of unknown kind; --kind chooses one")));
      return false;
    }
    return true;
  }

  ExitCode compareFiles() {
    const auto sideOf = [&](const File& file) {
      compare::FileToCompare side{file.content->bytes(), *file.judgement.kind, {}, file.path};
      if (*file.judgement.kind != frame::FileKind::part) side.part = part_;
      return side;
    };
    if (!part_.empty() && *files_[0].judgement.kind == frame::FileKind::part &&
        *files_[1].judgement.kind == frame::FileKind::part) {
      printError("diff: --part is for sheets and group part files");
      return kTrouble;
    }
    constexpr std::size_t kLongestOfText = 60;
    options_.longestValue = isJson_ ? 0 : kLongestOfText;
    const std::string notStoredInA = notStoredText(files_[0]), notStoredInB = notStoredText(files_[1]);
    const bool isColoured = !isJson_ && isTerminal(stdout) && isColourWanted();
    TextPrinter printer(notStoredInA, notStoredInB, isColoured);
    std::uint64_t printed = 0;
    const auto sink = [&](const Difference& difference) {
      if (isQuiet_) return false;
      if (limit_ && printed >= static_cast<std::uint64_t>(*limit_)) return true;
      ++printed;
      if (isJson_)
        print(compare::differenceJson(difference));
      else
        printer.add(difference);
      return true;
    };
    const compare::FileDifferences found =
        compare::diffFiles(sideOf(files_[0]), sideOf(files_[1]), options_, sink, [&](const auto& begun) {
          if (isQuiet_ || isJson_) return;
          print(lineFor("A", files_[0], begun.a) + lineFor("B", files_[1], begun.b));
          printer.setPlaces(begun.a.place, begun.b.place);
        });
    if (!found.error.empty()) {
      printError((found.errorIn == Side::none ? "diff" : onOneLine(files_[found.errorIn == Side::a ? 0 : 1].path)) +
                 ": " + onOneLine(found.error));
      return kTrouble;
    }
    if (!isQuiet_) {
      printer.flush();
      print(isJson_ ? compare::summaryJson(found, printed, judged(files_[0]), judged(files_[1]))
                    : summaryText(found, printed));
    }
    return codeOf(found);
  }

  static bool isColourWanted() {
    const char* const none = std::getenv("NO_COLOR");
    return none == nullptr || *none == '\0';
  }
  static std::string notStoredText(const File& file) {
    const auto& version = file.judgement.report.version;
    return "(not in version " + std::to_string(version.value_or(0)) + ')';
  }

  ExitCode codeOf(const compare::FileDifferences& found) const {
    bool isTrouble = false;
    for (const File& file : files_) {
      if (!file.judgement.report.fault) continue;
      printError(onOneLine(file.path) + ": damaged " + explain::describe(*file.judgement.report.fault));
      isTrouble = true;
    }
    if (isTrouble || found.a.status != 0 || found.b.status != 0) return kTrouble;
    return found.areSame ? kSame : kDifferent;
  }

  static std::string summaryText(const compare::FileDifferences& found, std::uint64_t printed) {
    std::string text;
    if (printed < found.differences) text += "... and " + std::to_string(found.differences - printed) + " more\n";
    const bool isDamaged = found.a.status != 0 || found.b.status != 0;
    if (found.areSame) return text + (isDamaged ? "No differences in what could be read\n" : "No differences\n");
    text += counted(found.differences, "difference");
    if (found.notStored > 0)
      text += ", " + std::to_string(found.notStored) + " of them in members that one of the versions does not store";
    return text + "\n";
  }
  static std::string lineFor(const std::string& name, const File& file, const compare::ComparedFile& compared) {
    std::string text = name + "  " + onOneLine(file.path) + ": ";
    text += frame::infoOf(*file.judgement.kind).name;
    if (compared.version) text += ", version " + std::to_string(*compared.version);
    if (!compared.place.empty()) text += ", " + compared.place;
    if (!compared.part.empty()) text += ' ' + compared.part;
    const explain::FileReport& report = file.judgement.report;
    if (!report.fault && report.walked < report.size) text += ", " + report.unread();
    return text + '\n';
  }

  static compare::JudgedFile judged(const File& file) {
    return {file.path, *file.judgement.kind, file.judgement.report};
  }

  File files_[2];
  archive::JudgeOptions judge_;
  std::string part_;
  compare::DiffOptions options_;
  std::optional<std::int64_t> limit_;
  bool isJson_ = false, isQuiet_ = false;
};

}  // namespace

std::unique_ptr<Command> makeDiffCommand() { return std::make_unique<DiffCommand>(); }

}  // namespace torvio
