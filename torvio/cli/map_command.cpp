#include <cstdio>
#include <new>
#include <string>

#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/explain/detect.h"
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
    const auto detected = kind_ ? std::nullopt : explain::detect(file_, file.bytes());
    const auto kind = detected ? std::optional(detected->kind) : kind_;
    explain::FileReport report = explain::mapFile(file.bytes(), kind.value_or(kFallbackKind), LinePrinter());
    if (!report.fault) return kSound;
    if (!kind) nameVersionOfUnknown(report);
    print("FAULT " + describe(*report.fault) + "\n");
    return kDamaged;
  } catch (const std::bad_alloc&) {
    printError(onOneLine(file_) + ": " + kNoMemory);
    return kNotReadOrWritten;
  }

 private:
  std::string file_;
  std::optional<frame::FileKind> kind_;
};

}  // namespace

std::unique_ptr<Command> makeMapCommand() { return std::make_unique<MapCommand>(); }

}  // namespace torvio
