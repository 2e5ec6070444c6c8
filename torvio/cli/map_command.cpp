#include <cstdio>
#include <new>
#include <string>

#include "torvio/archive/host_files.h"
#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/cli/output_file.h"
#include "torvio/explain/file_content.h"
#include "torvio/explain/map_filter.h"
#include "torvio/report/field_value.h"
#include "torvio/report/map_json.h"
#include "torvio/report/map_page.h"

namespace torvio {
namespace {

using namespace oldtorvio;

// Prints the lines of a map. The text is reused, since there may be millions of lines.
class LinePrinter {
 public:
  // With an encoding, texts are decoded.
  LinePrinter(OutputText& output, std::span<const std::byte> file, const std::optional<values::TextEncoding>& encoding)
      : output_(output), file_(file), encoding_(encoding) {}

  void operator()(const explain::MapLine& line) {
    char start[64];
    const auto offset = static_cast<unsigned long long>(line.offset), size = static_cast<unsigned long long>(line.size);
    if (line.size == 0)
      (void)std::snprintf(start, sizeof start, "%08llx        ", offset);
    else
      (void)std::snprintf(start, sizeof start, "%08llx %6llu ", offset, size);
    text_.assign(start).append(line.path);
    text_.append(line.size > 0 ? " = " : line.path.empty() ? "" : ": ");
    if (encoding_ && line.forms.size() == 1)
      explain::eachField(line,
                         [this](const auto& field) { report::appendDecodedValue(text_, field, file_, *encoding_); });
    else
      text_.append(line.value);
    output_.write(text_.append("\n"));
  }

 private:
  OutputText& output_;
  std::span<const std::byte> file_;
  std::optional<values::TextEncoding> encoding_;
  std::string text_;
};

// Prints offset, size, path and value of every field; for a damaged file up to the fault, and then what failed. If the
// file cannot be read, prints the reason on standard error.
class MapCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("map", "Print offset, size, path and value of every field of a file");
    addFile(*command, "FILE", file_, "The file")->required();
    addJudging(*command, judge_);
    command->add_option("--find", find_, "Print the fields of this name or path")
        ->type_name("FIELD")
        ->take_last()
        ->check([this](const std::string& text) {
          std::string error;
          filter_.path = explain::PathPattern::parsed(text, error);
          return filter_.path ? std::string() : inQuotes(text) + " is not a field path: " + error;
        });
    command->add_option("--offset", offset_, "Print the fields at these bytes: 500, 0x1f4, 0x1f4..0x200, 500..")
        ->type_name("A[..B]")
        ->take_last()
        ->check([this](const std::string& text) {
          filter_.range = explain::OffsetRange::parsed(text);
          return filter_.range ? std::string() : inQuotes(text) + " is neither an offset nor a range of offsets";
        });
    CLI::Option* json = command->add_flag("--json", json_, "Print a JSON object for each field, one per line");
    CLI::Option* html = command->add_flag("--html", html_, "Print an HTML page with bytes and fields side by side");
    addOutput(*command, output_);
    html->excludes(json)->excludes("--find")->excludes("--offset");
    addEncoding(*command, encodingName_);
    command->footer(help());
    return command;
  }

  ExitCode run() override try {
    if (isInputToo("map", output_, {file_})) return kUsageError;
    const explain::FileContent file(file_);
    if (!file.error().empty()) {
      printError(onOneLine(file_) + ": " + file.error());
      return kNotReadOrWritten;
    }
    const auto kind = archive::judge(file_, file.bytes(), judge_).kind;
    if (html_ || isPage()) return printPage(file, kind);
    return writeOutput(output_, [&](OutputText& output) { return printMap(output, file, kind); });
  } catch (const std::bad_alloc&) {
    printError(onOneLine(file_) + ": " + kNoMemory);
    return kNotReadOrWritten;
  }

 private:
  static std::string help() {
    return "FIELD is one or more names separated by dots, anywhere in a path. A record or\n"
           "list selects everything in it. An index selects entries of a list; without one,\n"
           "all are selected.\n"
           "  width             every width\n"
           "  shapes.x          the x of all shapes\n"
           "  shapes[3]         all of shape 3; also shapes[2..5], shapes[*]\n"
           "  parts[0].**.*Count  below part 0, at any depth, names that end in Count\n\n"
           "A selects the field that contains this byte, A..B all fields that overlap these\n"
           "bytes, both ends included. With --find and --offset, a field has to match both.\n\n"
           "JSON: {\"offset\":2,\"size\":4,\"field\":\"width\",\"type\":\"f32\",\"value\":12.5}. Texts are\n"
           "strings up to their first NUL, raw bytes strings of hexadecimal digits, reserved\n"
           "bytes null; \"note\" says what the value leaves out. Fields that are stored as one\n"
           "item have one object each. A damaged file ends with\n"
           "{\"offset\":40,\"field\":\"height\",\"fault\":\"needs 4 bytes, the file has 2\"}.\n\n"
           "Texts are printed byte by byte unless --encoding, --json or --html is given. An\n"
           "OUT that ends in \".html\" implies --html without --json, --find and --offset.\n"
           "--html takes files of up to " +
           std::to_string(report::MapPage::kLargestMiB) + " MiB and " +
           std::to_string(report::MapPage::kMostFields / 1'000'000) +
           " million fields.\n\n"
           "Examples:\n"
           "  torvio map damaged.sheet | tail\n"
           "      Show where a damaged file breaks, and the last fields before.\n"
           "  torvio map nest.sheet --find parts.partName --encoding cp1252\n"
           "      Print the names of all parts.\n"
           "  torvio map nest.sheet --offset 0x1f4..0x200\n"
           "      Say what these bytes are.\n"
           "  torvio map nest.sheet -o nest.html\n"
           "      Make a page that shows bytes and fields side by side.\n\n" +
           wrapped("Encodings", values::TextEncoding::names()) + "\n\n" + fileHelp(kExitCodesOfOneFile);
  }

  // An output with the name of a page is one, unless options say otherwise.
  bool isPage() const { return isPageName(output_) && !json_ && filter_.isEmpty(); }

  ExitCode printMap(OutputText& output, const explain::FileContent& file, std::optional<frame::FileKind> kind) const {
    const values::TextEncoding forJson = encodingNamed(encodingName_);
    LinePrinter lines(output, file.bytes(), values::TextEncoding::named(encodingName_));
    std::string json;
    bool found = filter_.isEmpty();
    const auto sink = [&](const explain::MapLine& line) {
      if (!filter_.isEmpty() && !filter_.accepts(line)) return;
      found = true;
      if (!json_) return lines(line);
      json.clear();
      report::appendJsonLine(json, line, filter_, file.bytes(), forJson);
      output.write(json);
    };
    const explain::FileReport report = explain::mapFile(file.bytes(), kind, sink, filter_.wanted());
    if (!found) printError(onOneLine(file_) + ": no field " + (filter_.path ? "matches" : "is at these bytes"));
    if (!report.fault) return kSound;
    if (json_) {
      std::string line;
      report::appendJsonFault(line, *report.fault);
      output.write(line);
    } else {
      output.write("FAULT " + explain::describe(*report.fault) + "\n");
    }
    return kDamaged;
  }

  ExitCode printPage(const explain::FileContent& file, std::optional<frame::FileKind> kind) const {
    const report::MapPageText page =
        report::mapPage(archive::lastName(file_), file.bytes(), kind, encodingNamed(encodingName_));
    if (!page.refusal.empty()) return failed(file_, page.refusal);
    return writeOutput(output_, [&](OutputText& output) {
      output.write(page.html);
      return page.report.fault ? kDamaged : kSound;
    });
  }

  static ExitCode failed(const std::string& file, const std::string& why) {
    printError(onOneLine(file) + ": " + why);
    return kNotReadOrWritten;
  }

  std::string file_, output_, find_, offset_, encodingName_;
  explain::MapFilter filter_;
  bool json_ = false, html_ = false;
  archive::JudgeOptions judge_;
};

}  // namespace

std::unique_ptr<Command> makeMapCommand() { return std::make_unique<MapCommand>(); }

}  // namespace torvio
