#include <cerrno>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/cli/output_file.h"
#include "torvio/explain/file_content.h"
#include "torvio/values/json_writer.h"
#include "torvio/values/text_encoding.h"

namespace torvio {
namespace {

using namespace oldtorvio;

// Prints the record of a file as JSON; for a damaged file, what was read and the fault.
class JsonCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("json", "Print the record of a file as JSON, without losing anything");
    addFile(*command, "FILE", file_, "The file")->required();
    addJudging(*command, judge_);
    addEncoding(*command, encoding_);
    command->add_flag("--pretty", isPretty_, "Print every member on a line of its own");
    addOutput(*command, output_);
    command->footer(
        "For a damaged file the JSON has what was read, and the fault. \"torvio from-json\"\n"
        "makes a file from the JSON of a sound one, \"torvio schema\" describes it.\n\n"
        "Examples:\n"
        "  torvio json --pretty nest.sheet -o nest.json\n"
        "      Write everything that a file holds, for an editor or a script.\n"
        "  torvio json nest.sheet | jq '.record.partList.parts | length'\n"
        "      Pick a value.\n\n" +
        wrapped("Encodings", values::TextEncoding::names()) + "\n\n" + fileHelp(kExitCodesOfOneFile));
    return command;
  }

  ExitCode run() override try {
    if (isInputToo("json", output_, {file_})) return kUsageError;
    const explain::FileContent file(file_);
    if (!file.error().empty()) {
      printError(onOneLine(file_) + ": " + file.error());
      return kNotReadOrWritten;
    }
    const auto [kind, report] = examined(file.bytes());
    const ExitCode code = write(file.bytes(), kind, report);
    if (code == kSound && report.fault) {
      printError(onOneLine(file_) + ": " + explain::describe(*report.fault));
      return kDamaged;
    }
    return code;
  } catch (const std::bad_alloc&) {
    printError(onOneLine(file_) + ": " + kNoMemory);
    return kNotReadOrWritten;
  }

 private:
  struct Examined {
    std::optional<frame::FileKind> kind;
    explain::FileReport report;
  };
  Examined examined(std::span<const std::byte> bytes) const {
    archive::Judgement judged = archive::judge(file_, bytes, judge_);
    if (judged.kind) return {judged.kind, std::move(judged.report)};
    return {std::nullopt, explain::mapFile(bytes, std::nullopt, [](const explain::MapLine&) {})};
  }

  ExitCode write(std::span<const std::byte> bytes, std::optional<frame::FileKind> kind,
                 const explain::FileReport& report) const {
    return writeOutput(output_, [&](OutputText& output) {
      values::writeFileAsJson([&](std::string_view text) { output.write(text); }, bytes, kind, report, encoding_,
                              isPretty_);
      return kSound;
    });
  }

  std::string file_;
  archive::JudgeOptions judge_;
  std::string encoding_{values::kDefaultEncoding};
  bool isPretty_ = false;
  std::string output_;
};

}  // namespace

std::unique_ptr<Command> makeJsonCommand() { return std::make_unique<JsonCommand>(); }

}  // namespace torvio
