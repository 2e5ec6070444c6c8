#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <new>
#include <string>

#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

using namespace oldtorvio;

// Prints the lines of a map. The text is reused, since there may be millions of lines.
class LinePrinter {
 public:
  void operator()(const explain::MapLine& line) {
    char start[64];
    const auto offset = static_cast<unsigned long long>(line.offset), size = static_cast<unsigned long long>(line.size);
    if (line.size == 0)
      (void)std::snprintf(start, sizeof start, "%08llx        ", offset);
    else
      (void)std::snprintf(start, sizeof start, "%08llx %6llu ", offset, size);
    text_.assign(start).append(line.path);
    text_.append(line.size > 0 ? " = " : line.path.empty() ? "" : ": ").append(line.value).append("\n");
    print(text_);
  }

 private:
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
    command->footer(fileHelp());
    return command;
  }

  ExitCode run() override try {
    const explain::FileContent file(file_);
    if (!file.error().empty()) {
      printError(onOneLine(file_) + ": " + file.error());
      return kNotReadOrWritten;
    }
    const auto kind = archive::judge(file_, file.bytes(), {kind_, {}}).kind;
    const explain::FileReport report = kind ? explain::mapFile(file.bytes(), *kind, LinePrinter()) : unknown(file);
    if (!report.fault) return kSound;
    print("FAULT " + describe(*report.fault) + "\n");
    return kDamaged;
  } catch (const std::bad_alloc&) {
    printError(onOneLine(file_) + ": " + kNoMemory);
    return kNotReadOrWritten;
  }

 private:
  // Maps the version word, which is all that is known of such a file.
  static explain::FileReport unknown(const explain::FileContent& file) {
    const auto word = file.bytes().first(std::min(file.bytes().size(), sizeof(std::int16_t)));
    bool isKnownVersion = false;
    explain::FileReport report = explain::mapFile(word, kFallbackKind, [](const explain::MapLine& line) {
      if (line.path == "version") LinePrinter()(line);
    });
    for (const frame::FileKindInfo& info : frame::kFileKinds)
      isKnownVersion = isKnownVersion || (report.version && info.accepts(*report.version));
    if (isKnownVersion)
      report.fault = explain::Fault{0, "version", "the contents fit no kind of this version; --kind chooses one"};
    else
      nameVersionOfUnknown(report);
    return report;
  }

  std::string file_;
  std::optional<frame::FileKind> kind_;
};

}  // namespace

std::unique_ptr<Command> makeMapCommand() { return std::make_unique<MapCommand>(); }

}  // namespace torvio
