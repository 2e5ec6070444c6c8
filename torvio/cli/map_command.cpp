#include <cstdio>
#include <filesystem>
#include <new>
#include <string>

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
  LinePrinter(std::span<const std::byte> file, const std::optional<values::TextEncoding>& encoding)
      : file_(file), encoding_(encoding) {}

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
    print(text_.append("\n"));
  }

 private:
  std::span<const std::byte> file_;
  std::optional<values::TextEncoding> encoding_;
  std::string text_;
};

// Prints the fields of a map that the filter accepts as JSON.
class JsonPrinter {
 public:
  JsonPrinter(std::span<const std::byte> file, const values::TextEncoding& encoding, const explain::MapFilter& filter)
      : file_(file), encoding_(encoding), filter_(filter) {}

  void operator()(const explain::MapLine& line) {
    text_.clear();
    if (line.size == 0) report::appendJsonRemark(text_, line);
    explain::eachField(line, [this](const explain::MapField& field) {
      if (filter_.accepts(field.offset, field.size, field.path))
        report::appendJsonField(text_, field, file_, encoding_);
    });
    print(text_);
  }

 private:
  std::span<const std::byte> file_;
  const values::TextEncoding& encoding_;
  const explain::MapFilter& filter_;
  std::string text_;
};

// Prints offset, size, path and value of every field; for a damaged file up to the fault, and then what failed. If the
// file cannot be read, prints the reason on standard error.
class MapCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("map", "Print offset, size, path and value of every field of a file");
    addFile(*command, "FILE", file_, "The file")->required();
    addKind(*command, kind_);
    command->add_option("--find", find_, "Print the fields of this name or path, see below")
        ->type_name("FIELD")
        ->take_last()
        ->check([this](const std::string& text) {
          std::string error;
          filter_.path = explain::PathPattern::parsed(text, error);
          return filter_.path ? std::string() : inQuotes(text) + " is no field: " + error;
        });
    command->add_option("--offset", offset_, "Print the fields at these bytes: 500, 0x1f4, 0x1f4..0x200, 500..")
        ->type_name("A[..B]")
        ->take_last()
        ->check([this](const std::string& text) {
          filter_.range = explain::OffsetRange::parsed(text);
          return filter_.range ? std::string() : inQuotes(text) + " is no offset and no range of offsets";
        });
    CLI::Option* json = command->add_flag("--json", json_, "Print one JSON object for each field, one a line");
    CLI::Option* html = command->add_flag("--html", html_, "Print an HTML page with bytes and fields side by side");
    addFile(*command, "-o,--output", output_, "Write the page to this file")->type_name("OUT")->needs(html);
    html->excludes(json)->excludes("--find")->excludes("--offset");
    addEncoding(*command, encodingName_, "The code page of the texts (cp1252)");
    command->footer(help());
    return command;
  }

  ExitCode run() override try {
    const explain::FileContent file(file_);
    if (!file.error().empty()) {
      printError(onOneLine(file_) + ": " + file.error());
      return kNotReadOrWritten;
    }
    const auto kind = archive::judge(file_, file.bytes(), {kind_, {}}).kind;
    const auto encoding = values::TextEncoding::named(encodingName_);
    return html_ ? printPage(file, kind, encoding.value_or(values::TextEncoding())) : printMap(file, kind, encoding);
  } catch (const std::bad_alloc&) {
    printError(onOneLine(file_) + ": " + kNoMemory);
    return kNotReadOrWritten;
  }

 private:
  static std::string help() {
    return "FIELD is one or more names with dots between, wherever they are in a path. A\n"
           "record or list selects everything in it. An index selects entries of a list,\n"
           "no index all of them.\n"
           "  width             every width\n"
           "  shapes.x          the x of all shapes\n"
           "  shapes[3]         all of shape 3; also shapes[2..5], shapes[*]\n"
           "  parts[0].**.*Count   below part 0, at any depth, names that end in Count\n\n"
           "A alone is the field that contains this byte, A..B the fields that overlap these\n"
           "bytes, both included. With --find and --offset, a field has to be in both.\n\n"
           "JSON: {\"offset\":2,\"size\":4,\"path\":\"width\",\"type\":\"f32\",\"value\":12.5}. Texts are\n"
           "strings up to their first NUL, raw bytes strings of hexadecimal digits, reserved\n"
           "bytes null; \"note\" says what the value leaves out. Fields that are stored as one\n"
           "item have one object each. A damaged file ends with\n"
           "{\"offset\":40,\"path\":\"height\",\"fault\":\"needs 4 bytes, the file has 2\"}.\n\n"
           "Texts are printed byte by byte unless --encoding, --json or --html is given.\n"
           "--html takes files of up to " +
           std::to_string(report::MapPage::kLargestMiB) + " MiB and " +
           std::to_string(report::MapPage::kMostFields / 1'000'000) + " million fields.\n\n" +
           wrapped("Encodings", values::TextEncoding::names()) + "\n\n" + fileHelp();
  }

  ExitCode printMap(const explain::FileContent& file, std::optional<frame::FileKind> kind,
                    const std::optional<values::TextEncoding>& encoding) const {
    const values::TextEncoding forJson = encoding.value_or(values::TextEncoding());
    LinePrinter lines(file.bytes(), encoding);
    JsonPrinter json(file.bytes(), forJson, filter_);
    bool found = filter_.isEmpty();
    const auto sink = [&](const explain::MapLine& line) {
      if (!filter_.isEmpty() && !filter_.accepts(line)) return;
      found = true;
      json_ ? json(line) : lines(line);
    };
    const explain::FileReport report = mapAs(file.bytes(), kind, sink);
    if (!found) printError(onOneLine(file_) + ": no field " + (filter_.path ? "matches" : "is at these bytes"));
    if (!report.fault) return kSound;
    if (json_) {
      std::string line;
      report::appendJsonFault(line, *report.fault);
      print(line);
    } else {
      print("FAULT " + describe(*report.fault) + "\n");
    }
    return kDamaged;
  }

  ExitCode printPage(const explain::FileContent& file, std::optional<frame::FileKind> kind,
                     const values::TextEncoding& encoding) const {
    constexpr std::uint64_t kMiB = 1024 * 1024;
    const std::string tooLarge = "is too large for a page, which shows up to ";
    if (file.bytes().size() > report::MapPage::kLargestMiB * kMiB)
      return failed(file_, tooLarge + std::to_string(report::MapPage::kLargestMiB) + " MiB");
    report::MapPage page(std::filesystem::path(file_).filename().string(), file.bytes(), encoding);
    const explain::FileReport report = mapAs(file.bytes(), kind, [&](const explain::MapLine& line) { page.add(line); });
    if (page.hasTooManyFields())
      return failed(file_, tooLarge + std::to_string(report::MapPage::kMostFields) + " fields");
    const std::string html = page.html(kind ? frame::infoOf(*kind).name : std::string_view(), report);
    const ExitCode written = output_.empty() ? (print(html), kSound) : writePage(html);
    return written != kSound ? written : report.fault ? kDamaged : kSound;
  }

  ExitCode writePage(const std::string& html) const {
    if (isSameFile(file_, output_)) return failed(output_, "is the file that is shown");
    try {
      OutputText output(output_);
      output.write(html);
      output.commit();
      return kSound;
    } catch (const OutputError& error) {
      return failed(output_, error.what());
    }
  }

  static ExitCode failed(const std::string& file, const std::string& why) {
    printError(onOneLine(file) + ": " + why);
    return kNotReadOrWritten;
  }

  std::string file_, output_, find_, offset_, encodingName_;
  explain::MapFilter filter_;
  bool json_ = false, html_ = false;
  std::optional<frame::FileKind> kind_;
};

}  // namespace

std::unique_ptr<Command> makeMapCommand() { return std::make_unique<MapCommand>(); }

}  // namespace torvio
