#include <string>

#include "torvio/cli/commands.h"
#include "torvio/cli/new_file_command.h"
#include "torvio/convert/recover.h"

namespace torvio {
namespace {

using namespace oldtorvio;

// Builds a loadable file from the sound part of a damaged one, and says what is lost.
class RecoverCommand : public NewFileCommand {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("recover", "Build a loadable file from the sound part of a damaged one");
    addShared(*command);
    command->footer(
        "Everything before the first fault is kept. A list that breaks there keeps its\n"
        "complete elements, so that no part has only some of its shapes; what follows has\n"
        "the defaults of a new record. The report says where the file breaks, which bytes\n"
        "are left out, which list is shorter, and which members have defaults: check\n"
        "those before the file is used. Nothing is written for a sound file. Unread bytes\n"
        "after the last field are dropped, and so are the surplus bytes that a save below\n"
        "version 152 stores. The version stays the same if files are saved in it.\n\n"
        "Examples:\n"
        "  torvio recover damaged.sheet recovered.sheet\n"
        "      Keep what is sound, and say what is lost.\n\n" +
        newFileHelp() +
        "\n\nExit code:\n"
        "  0  the new file was written, or would be; or IN is sound\n"
        "  1  nothing can be recovered, or IN is of unknown kind\n"
        "  2  the command line is wrong\n"
        "  3  IN could not be read, or OUT could not be written");
    return command;
  }

 private:
  std::string name() const override { return "recover"; }
  Made make(std::span<const std::byte> bytes, frame::FileKind kind) const override {
    convert::Recovered recovered = convert::recover(bytes, kind, encoding());
    std::string summary(frame::infoOf(kind).name);
    if (recovered.report.from) summary += " of version " + std::to_string(*recovered.report.from);
    if (recovered.isSound) summary += " is sound, nothing to recover";
    return {std::move(recovered.bytes), std::move(recovered.report), std::move(recovered.error), std::move(summary)};
  }
};

}  // namespace

std::unique_ptr<Command> makeRecoverCommand() { return std::make_unique<RecoverCommand>(); }

}  // namespace torvio
