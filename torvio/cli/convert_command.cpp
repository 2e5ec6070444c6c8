#include <limits>
#include <string>

#include "torvio/cli/commands.h"
#include "torvio/cli/new_file_command.h"
#include "torvio/convert/convert.h"

namespace torvio {
namespace {

using namespace oldtorvio;

// Saves a file in another version, and says what that version cannot store.
class ConvertCommand : public NewFileCommand {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("convert", "Save a file in another version, and report what that loses");
    command->add_option("--version", version_, "The version of the new file")
        ->type_name("VERSION")
        ->required()
        ->take_last()
        ->check(inRange(0, int{std::numeric_limits<std::int16_t>::max()}));
    addShared(*command);
    command->add_flag("--allow-loss", options_.allowLoss, "Make the new file even if something is lost or changed");
    command->footer(
        "The report lists each member that the new version cannot store, or stores with\n"
        "another value: once for all elements of a list, with a count and the first of\n"
        "them. A lost member has the default of a new record. Bytes that no load keeps\n"
        "are left out. In the same version, the new file is a clean copy: it has all that\n"
        "a load reads, and no other bytes.\n\n"
        "A sheet that a save below version 152 has ruined is fixed. Any other damaged\n"
        "file is refused: see \"torvio recover\".\n\n"
        "Examples:\n"
        "  torvio convert old.sheet new.sheet --version 180\n"
        "      Save an old nest in the newest version.\n"
        "  torvio convert --dry-run nest.sheet --version 112\n"
        "      Only say what an older version would lose.\n\n" +
        newFileHelp() +
        "\n\nExit code:\n"
        "  0  the new file was written, or would be\n"
        "  1  it is refused: something would be lost, IN is damaged or of unknown kind,\n"
        "     or no file is saved in this version\n"
        "  2  the command line is wrong\n"
        "  3  IN could not be read, or OUT could not be written");
    return command;
  }

 private:
  std::string name() const override { return "convert"; }
  Made make(std::span<const std::byte> bytes, frame::FileKind kind) const override {
    convert::ConvertOptions options = options_;
    options.encoding = encoding();
    convert::Converted converted = convert::convert(bytes, kind, version_, options);
    const convert::Report& report = converted.report;
    std::string summary(frame::infoOf(kind).name);
    if (report.from) summary += " of version " + std::to_string(*report.from);
    summary += " to version " + std::to_string(version_);
    if (!converted.bytes.empty() && report.isComplete()) summary += ", nothing is lost";
    if (!converted.error.empty() && report.newSize > 0) converted.error += "; --allow-loss writes it anyway";
    return {std::move(converted.bytes), std::move(converted.report), std::move(converted.error), std::move(summary)};
  }

  int version_ = 0;
  convert::ConvertOptions options_;
};

}  // namespace

std::unique_ptr<Command> makeConvertCommand() { return std::make_unique<ConvertCommand>(); }

}  // namespace torvio
