#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/explain/detect.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

using namespace oldtorvio;

struct Checked {
  std::string kind;
  explain::FileReport report;
};

Checked checked(const std::string& path, std::span<const std::byte> bytes, std::optional<explain::FileKind> forced) {
  if (forced) return {std::string(frame::infoOf(*forced).name), explain::checkFile(bytes, *forced)};
  if (auto detected = explain::detect(path, bytes))
    return {std::string(frame::infoOf(detected->kind).name), std::move(detected->report)};
  Checked unknown{"unknown kind", explain::checkFile(bytes, kFallbackKind)};
  nameVersionOfUnknown(unknown.report);
  return unknown;
}

struct Verdict {
  std::string text;
  ExitCode code;
};

Verdict check(const std::string& path, std::optional<explain::FileKind> forced) try {
  const explain::FileContent file(path);
  if (!file.error().empty()) return {file.error(), kNotReadOrWritten};
  const auto& [kind, report] = checked(path, file.bytes(), forced);
  std::string text = kind + ", version " + (report.version ? std::to_string(*report.version) : "-");
  text += ", status " + std::to_string(report.status);
  text += ", " + std::to_string(report.walked) + " of " + std::to_string(report.size) + " bytes";
  if (report.fault)
    text += ", " + describe(*report.fault);
  else if (report.tolerated)
    text += ", " + describe(*report.tolerated) + ", which is tolerated";
  else if (!report.endsExactly())
    text += ", " + report.unread();
  return {text, report.status == 0 ? kSound : kDamaged};
} catch (const std::bad_alloc&) {
  return {kNoMemory, kNotReadOrWritten};
}

// Prints one line for each file: its path, then kind, version, status, read and total bytes and the fault, or why it
// could not be read.
class CheckCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("check", "Print a line for each file: kind, version, status, bytes, fault");
    addFiles(*command, "FILE", files_, "The files")->required();
    addKind(*command, kind_);
    command->footer(fileHelp());
    return command;
  }

  ExitCode run() override {
    ExitCode worst = kSound;
    for (const std::string& path : files_) {
      const Verdict verdict = check(path, kind_);
      print(onOneLine(path) + ": " + verdict.text + "\n");
      worst = std::max(worst, verdict.code);
    }
    return worst;
  }

 private:
  std::vector<std::string> files_;
  std::optional<frame::FileKind> kind_;
};

}  // namespace

std::unique_ptr<Command> makeCheckCommand() { return std::make_unique<CheckCommand>(); }

}  // namespace torvio
