// torvio: shows what is in a file, and where a damaged file fails.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/explain/file_content.h"

namespace {

using namespace torvio;

constexpr std::size_t kHelpWidth = 80;

// "Kinds: part, group-part, ...", wrapped to the width of the help.
std::string list(const std::string& caption, const std::vector<std::string>& names) {
  std::string text, line = caption + ":";
  for (const std::string& name : names) {
    const std::string next = " " + name + (&name == &names.back() ? "" : ",");
    if (line.size() + next.size() > kHelpWidth) {
      text += line + "\n";
      line = " ";
    }
    line += next;
  }
  return text + line;
}

// Omits "TEXT REQUIRED" and the like: the usage line shows what is required.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    return option->get_positional() || option->get_type_size() == 0 ? "" : " " + option->get_type_name();
  }
};

// CLI11 splits an argument "[a,b]" in two and drops "++", but both may be file names. A mark before them prevents that.
constexpr char kMark = '\1';
bool isChanged(const std::string& argument) {
  return argument == "++" || argument.starts_with('[') || argument.starts_with(kMark);
}
std::string marked(const std::string& argument) { return isChanged(argument) ? kMark + argument : argument; }
std::string unmarked(const std::string& argument) {
  return argument.starts_with(kMark) && isChanged(argument.substr(1)) ? argument.substr(1) : argument;
}

constexpr const char* kExitCodes =
    "Exit code:\n"
    "  0  every file is sound\n"
    "  1  a file is damaged, or its kind or version is unknown\n"
    "  2  the command line is wrong\n"
    "  3  a file could not be read, or the output could not be written\n"
    "With several files, the highest code is returned.";

std::string fileHelp() {
  return list("Kinds", kindNames()) + "\n\nA FILE may be a pipe. A file of more than " +
         std::to_string(oldtorvio::explain::FileContent::kLargestMiB) +
         " MiB is not read.\nArguments after \"--\" are files, even if they begin with \"-\".\n\n" + kExitCodes;
}

class CommandLine {
 public:
  CommandLine() {
    app_.set_version_flag("--version", "torvio " TORVIO_VERSION, "Print the version and exit");
    app_.require_subcommand(1);
    app_.footer(std::string("\"torvio COMMAND --help\" describes a command.\n\n") + kExitCodes);
    for (CLI::App* app : {&app_, map_, check_, format_}) {
      const auto formatter = std::make_shared<HelpFormatter>();
      formatter->column_width(16);
      formatter->label("SUBCOMMAND", "COMMAND");
      formatter->label("Positionals", "Arguments");
      app->formatter(formatter);
      app->allow_windows_style_options(false);
      app->set_help_flag("-h,--help", "Print this help and exit");
      if (app != &app_) app->group("Commands");
    }

    map_->add_option("FILE", file_, "The file")->required();
    check_->add_option("FILE", files_, "The files")->required();
    for (CLI::App* command : {map_, check_}) {
      command->add_option("--kind", kind_, "Read as this kind of file instead of detecting the kind")
          ->type_name("KIND")
          ->take_last()
          ->check(oneOf(kindNames(), "kind", "Kinds"));
      command->footer(fileHelp());
    }
    std::vector<std::string> tables = kindNames();
    for (const std::string& record : recordNames()) tables.push_back(record);
    format_->add_option("KIND", table_, "A kind of file, or a record that files embed")
        ->required()
        ->check(oneOf(tables, "kind or record", "Kinds and records"));
    format_->footer(list("Kinds", kindNames()) + "\n\n" + list("Records", recordNames()) +
                    "\n\nExit code: 0, 2 for a wrong command line, 3 if the output could not be written.");
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
    } catch (const CLI::ArgumentMismatch&) {
      // No other option has a value.
      return usageError("--kind requires a KIND");
    } catch (const CLI::ValidationError& error) {
      const std::string text = error.what();  // starts with the name of the argument
      return usageError(text.substr(text.find(": ") + 2));
    } catch (const CLI::ParseError& error) {
      return usageError(error.what());
    }
    const auto forced = kindNamed(kind_);
    if (*format_) return formatCommand(table_);
    if (*map_) return mapCommand(unmarked(file_), forced);
    for (std::string& file : files_) file = unmarked(file);
    return checkCommand(files_, forced);
  }

 private:
  static CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& one, const std::string& all) {
    return {[=](std::string& name) {
              const bool isKnown = std::find(names.begin(), names.end(), name) != names.end();
              return isKnown ? std::string() : "unknown " + one + " " + quoted(name) + "\n" + list(all, names);
            },
            ""};
  }

  static std::string quoted(const std::string& argument) { return '"' + onOneLine(unmarked(argument)) + '"'; }

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
      error = isCommand ? "unknown command " + quoted(first) + "\n" + list("Commands", commandNames())
                        : "unexpected argument " + quoted(first);
    } else if (commands.empty()) {
      error = "a command is required\n" + list("Commands", commandNames());
    }
    printError((isAboutCommand ? command + ": " : "") + error + "\nTry \"torvio " +
               (isAboutCommand ? command + " " : "") + "--help\".");
    return kUsageError;
  }

  CLI::App app_{"Explains the older binary files of a sheet-metal fabrication suite byte by byte.", "torvio"};
  CLI::App* map_ = app_.add_subcommand("map", "Print offset, size, path and value of every field of a file");
  CLI::App* check_ = app_.add_subcommand("check", "Print a line for each file: kind, version, status, bytes, fault");
  CLI::App* format_ = app_.add_subcommand("format", "Print the stored form of a kind of file as a Markdown table");
  std::string file_, kind_, table_;
  std::vector<std::string> files_;
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
