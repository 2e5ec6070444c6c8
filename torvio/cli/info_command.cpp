#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "torvio/archive/info.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

using namespace oldtorvio;

ExitCode codeOf(archive::Verdict verdict) {
  switch (verdict) {
    case archive::Verdict::sound:
    case archive::Verdict::soundWithLosses:
      return kSound;
    case archive::Verdict::unreadable:
      return kNotReadOrWritten;
    default:
      return kDamaged;
  }
}

// Prints a block of lines, or a JSON object on one line, for each file.
class InfoCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("info", "Print what files contain at a glance: names, sizes, parts, tools");
    addFiles(*command, "FILE", files_, "The files")->required();
    command->add_flag("--json", isJson_, "Print a JSON object for each file, one per line");
    command->add_flag("--all", isAll_, "Print all rows of long tables, as --json does");
    addJudging(*command, judge_);
    addEncoding(*command, encoding_);
    command->footer(
        "Examples:\n"
        "  torvio info nest.sheet\n"
        "      Show the size of a nest, its machine, parts and tools.\n"
        "  torvio info --json *.sheet | jq -r '[.label, .width, .height] | @tsv'\n"
        "      Make a table of many nests.\n\n" +
        wrapped("Encodings", values::TextEncoding::names()) + "\n\n" + fileHelp());
    return command;
  }

  ExitCode run() override {
    constexpr std::size_t kMostRows = 40;
    ExitCode worst = kSound;
    for (std::size_t i = 0; i < files_.size(); ++i) {
      const archive::Info info = infoOf(files_[i]);
      const std::string name = values::fileNameAsUtf8(files_[i]);
      if (isJson_)
        print(archive::infoJson(name, info));
      else
        print((i == 0 ? "" : "\n") + archive::infoText(name, info, isAll_ ? static_cast<std::size_t>(-1) : kMostRows));
      worst = std::max(worst, codeOf(info.verdict));
    }
    return worst;
  }

 private:
  archive::Info infoOf(const std::string& path) const try {
    const explain::FileContent file(path);
    if (!file.error().empty()) return archive::unreadableInfo(file.error());
    return archive::infoOf(path, file.bytes(), judge_, encodingNamed(encoding_));
  } catch (const std::bad_alloc&) {
    return archive::unreadableInfo(kNoMemory);
  }

  std::vector<std::string> files_;
  bool isJson_ = false, isAll_ = false;
  archive::JudgeOptions judge_;
  std::string encoding_;
};

}  // namespace

std::unique_ptr<Command> makeInfoCommand() { return std::make_unique<InfoCommand>(); }

}  // namespace torvio
