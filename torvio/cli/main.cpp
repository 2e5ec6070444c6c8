// torvio: shows what is in a file, and where a damaged file fails.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "torvio/cli/command.h"
#include "torvio/cli/output.h"

namespace {

using namespace torvio;

// Omits "TEXT REQUIRED" and the like: the usage line shows what is required.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    return option->get_positional() || option->get_type_size() == 0 ? "" : " " + option->get_type_name();
  }
};

class CommandLine {
 public:
  CommandLine() {
    app_.set_version_flag("--version", "torvio " TORVIO_VERSION, "Print the version and exit");
    app_.require_subcommand(1);
    app_.footer(std::string("\"torvio COMMAND --help\" describes a command.\n\n") + kExitCodes);
    describe(app_);
    for (const std::unique_ptr<Command>& command : commands_) {
      CLI::App* const added = command->addTo(app_);
      describe(*added);
      added->group("Commands");
      added->callback([this, runs = command.get()] { chosen_ = runs; });
    }
  }

  ExitCode run(int argc, char** argv) {
    if (argc < 2) {
      (void)std::fputs(app_.help().c_str(), stderr);
      return kUsageError;
    }
    // CLI11 expects them in reverse order.
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) arguments.push_back(marked(argv[i]));
    try {
      app_.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
      print(app_.help());
      return kSound;
    } catch (const CLI::CallForVersion& version) {
      print(version.what() + std::string("\n"));
      return kSound;
    } catch (const CLI::ArgumentMismatch& error) {
      return usageError(onOneLine(withoutValue(error.what())));
    } catch (const CLI::ValidationError& error) {
      const std::string text = error.what();  // starts with the name of the argument
      return usageError(text.substr(text.find(": ") + 2));
    } catch (const CLI::ParseError& error) {
      // It may quote an argument.
      return usageError(onOneLine(error.what()));
    }
    return chosen_->run();
  }

 private:
  static void describe(CLI::App& app) {
    const auto formatter = std::make_shared<HelpFormatter>();
    formatter->column_width(16);
    formatter->label("SUBCOMMAND", "COMMAND");
    formatter->label("Positionals", "Arguments");
    app.formatter(formatter);
    app.allow_windows_style_options(false);
    app.set_help_flag("-h,--help", "Print this help and exit");
  }

  // "--kind requires a KIND" for an error that begins with "--kind: ".
  std::string withoutValue(const std::string& error) const {
    const std::string name = error.substr(0, error.find(':'));
    for (const CLI::App* command : app_.get_subcommands())
      if (const CLI::Option* option = command->get_option_no_throw(name))
        return name + " requires a " + option->get_type_name();
    return error;
  }

  std::vector<std::string> commandNames() const {
    std::vector<std::string> names;
    for (const CLI::App* command : app_.get_subcommands([](const CLI::App*) { return true; }))
      names.push_back(command->get_name());
    return names;
  }

  ExitCode usageError(std::string error) const {
    const auto commands = app_.get_subcommands();
    const bool isAboutCommand = !commands.empty() && app_.remaining().empty();
    const std::string command = isAboutCommand ? commands.front()->get_name() : "";
    // An unexpected argument is more helpful to report than a missing one.
    const std::vector<std::string> unexpected = app_.remaining(true);
    if (!unexpected.empty()) {
      const std::string& first = unexpected.front();
      const bool isCommand = commands.empty() && !first.starts_with('-');
      error = isCommand ? "unknown command " + inQuotes(first) + "\n" + wrapped("Commands", commandNames())
                        : "unexpected argument " + inQuotes(first);
    } else if (commands.empty()) {
      error = "a command is required\n" + wrapped("Commands", commandNames());
    }
    printError((isAboutCommand ? command + ": " : "") + error + "\nTry \"torvio " +
               (isAboutCommand ? command + " " : "") + "--help\".");
    return kUsageError;
  }

  CLI::App app_{"Explains the older binary files of a sheet-metal fabrication suite byte by byte.", "torvio"};
  std::vector<std::unique_ptr<Command>> commands_ = allCommands();
  Command* chosen_ = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    const torvio::ExitCode code = CommandLine().run(argc, argv);
    torvio::finishOutput();
    return code;
  } catch (const torvio::OutputError& error) {
    if (!error.isClosedPipe()) torvio::printError(error.what());
  } catch (const std::bad_alloc&) {
    torvio::printError("not enough memory");
  }
  return torvio::kNotReadOrWritten;
}
