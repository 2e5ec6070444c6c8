#include "torvio/cli/command_line.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "torvio/archive/host_files.h"
#include "torvio/cli/help_text.h"
#include "torvio/cli/output.h"

namespace torvio {
namespace {

constexpr std::size_t kFirstColumn = 16;

// Omits "TEXT REQUIRED" and the like: the usage line shows what is required.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string name) const override {
    constexpr std::string_view kOptions = "[OPTIONS]";
    std::string usage = CLI::Formatter::make_usage(app, std::move(name));
    for (const CLI::Option* option : app->get_options())
      if (!option->get_positional() && option->get_required())
        usage.insert(usage.find(kOptions) + kOptions.size(), " " + option->get_name() + " " + valueName(*option));
    return usage;
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    return option->get_positional() || option->get_type_size() == 0 ? "" : " " + valueName(*option);
  }
  std::string make_option_desc(const CLI::Option* option) const override {
    return inLines(option->get_description(), kHelpWidth - kFirstColumn);
  }
};

void describe(CLI::App& app) {
  const auto formatter = std::make_shared<HelpFormatter>();
  formatter->column_width(kFirstColumn);
  formatter->label("SUBCOMMAND", "COMMAND");
  formatter->label("Positionals", "Arguments");
  app.formatter(formatter);
  app.allow_windows_style_options(false);
  app.set_help_flag("-h,--help", "Print this help and exit");
}

ExitCode usageErrorOfTool(const std::string& error) {
  printError(error + "\nTry \"torvio --help\".");
  return kUsageError;
}

// CLI11 takes the next argument as the value of "--output=".
constexpr const char* kEmptyValue = " has an empty value";
bool hasEmptyValue(const std::string& argument) {
  return argument.starts_with("--") && argument.find('=') == argument.size() - 1;
}
CLI::Validator isNotEmpty(const std::string& name) {
  return {[name](const std::string& value) { return value.empty() ? name + kEmptyValue : std::string(); }, ""};
}

std::vector<std::string> namesOf(const std::vector<const CLI::App*>& commands) {
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (const CLI::App* command : commands) names.push_back(command->get_name());
  return names;
}

// Prints the help of a command: "help check" is "check --help".
class HelpCommand : public Command {
 public:
  explicit HelpCommand(const CommandLine& line) : line_(line) {}

  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("help", "Print the help of a command");
    command->add_option("COMMAND", name_, "A command; without it the list of commands is printed")
        ->check(oneOf(namesOf(line_.commands()), "command", "Commands"));
    command->footer(kExitCodesWithoutFiles);
    return command;
  }

  ExitCode run() override {
    const CLI::App& tool = line_.tool();
    // help() of the tool itself would be that of the command that runs.
    print(name_.empty() ? tool.get_formatter()->make_help(&tool, tool.get_name(), CLI::AppFormatMode::Normal)
                        : tool.get_subcommand(name_)->help(tool.get_name()));
    return kSound;
  }

 private:
  const CommandLine& line_;
  std::string name_;
};

}  // namespace

CommandLine::CommandLine()
    : app_("Shows and checks the older binary files of a sheet-metal fabrication suite.", "torvio"),
      commands_(allCommands()) {
  app_.set_version_flag("--version", "torvio " TORVIO_VERSION, "Print the version and exit");
  app_.require_subcommand(1);
  app_.footer(std::string("\"torvio help COMMAND\" describes a command.\n\n") + kExitCodes);
  describe(app_);
  for (const std::unique_ptr<Command>& command : commands_) add(*command);
  commands_.push_back(std::make_unique<HelpCommand>(*this));
  add(*commands_.back());
}

void CommandLine::add(Command& command) {
  CLI::App* const added = command.addTo(app_);
  describe(*added);
  added->group("Commands");
  for (CLI::Option* option : added->get_options())
    if (!option->get_positional() && option->get_type_size() > 0) option->check(isNotEmpty(option->get_name()));
  added->callback([this, runs = &command] { chosen_ = runs; });
}

std::vector<const CLI::App*> CommandLine::commands() const {
  return app_.get_subcommands([](const CLI::App*) { return true; });
}

ExitCode CommandLine::run(int argc, char** argv) {
  if (argc < 2) {
    (void)std::fputs(app_.help().c_str(), stderr);
    return kUsageError;
  }
  for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i)
    if (const std::string argument = argv[i]; hasEmptyValue(argument)) return emptyValue(argument, argv[1]);
  // CLI11 expects them in reverse order.
  std::vector<std::string> arguments;
  for (int i = argc - 1; i > 0; --i) arguments.push_back(marked(argv[i]));
  try {
    app_.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    print(app_.help());
    return kSound;
  } catch (const CLI::CallForVersion& version) {
    // "torvio konvert a b --version 180" does not ask for the version of torvio.
    if (!app_.remaining(true).empty()) return wrongArguments("");
    print(version.what() + std::string("\n"));
    return kSound;
  } catch (const CLI::ArgumentMismatch& error) {
    return wrongArguments(onOneLine(withoutValue(error.what())));
  } catch (const CLI::ValidationError& error) {
    const std::string text = error.what();  // starts with the name of the argument
    return wrongArguments(text.substr(text.find(": ") + 2));
  } catch (const CLI::ParseError& error) {
    // It may quote an argument.
    return wrongArguments(onOneLine(error.what()));
  }
  return chosen_->run();
}

// "--kind requires a KIND" for an error that begins with "--kind: ".
std::string CommandLine::withoutValue(const std::string& error) const {
  const std::string name = error.substr(0, error.find(':'));
  for (const CLI::App* command : app_.get_subcommands())
    if (const CLI::Option* option = command->get_option_no_throw(name))
      return name + " requires a " + valueName(*option);
  return error;
}

// Of an argument "--output=" after that command.
ExitCode CommandLine::emptyValue(const std::string& argument, const std::string& command) const {
  const std::string error = onOneLine(argument.substr(0, argument.size() - 1)) + kEmptyValue;
  const std::vector<std::string> names = namesOf(commands());
  if (std::find(names.begin(), names.end(), command) != names.end()) return usageError(command, error);
  return usageErrorOfTool(error);
}

ExitCode CommandLine::wrongArguments(std::string error) const {
  const auto chosen = app_.get_subcommands();
  const bool isAboutCommand = !chosen.empty() && app_.remaining().empty();
  const std::string command = isAboutCommand ? chosen.front()->get_name() : "";
  // An unexpected argument is more helpful to report than a missing one.
  const std::vector<std::string> unexpected = app_.remaining(true);
  if (!unexpected.empty()) {
    const std::string& first = unexpected.front();
    const bool isCommand = chosen.empty() && !first.starts_with('-');
    error = isCommand ? "unknown command " + inQuotes(first) + "\n" + wrapped("Commands", namesOf(commands()))
                      : "unexpected argument " + inQuotes(first);
    if (isAboutCommand && first.starts_with('-') && oldtorvio::archive::existsFile(first))
      error += "; put \"--\" before the name of a file that begins with \"-\"";
  } else if (chosen.empty()) {
    error = "a command is required\n" + wrapped("Commands", namesOf(commands()));
  }
  return isAboutCommand ? usageError(command, error) : usageErrorOfTool(error);
}

}  // namespace torvio
