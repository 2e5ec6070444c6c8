#include "torvio/cli/command.h"

#include <algorithm>

#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

constexpr std::size_t kHelpWidth = 80;

constexpr char kMark = '\1';
bool isMisread(const std::string& argument) {
  return argument == "++" || argument.starts_with('[') || argument.starts_with(kMark);
}

}  // namespace

std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> all;
  all.push_back(makeMapCommand());
  all.push_back(makeCheckCommand());
  all.push_back(makeInfoCommand());
  all.push_back(makeDiffCommand());
  all.push_back(makeDrawCommand());
  all.push_back(makeFormatCommand());
  all.push_back(makeJsonCommand());
  all.push_back(makeFromJsonCommand());
  all.push_back(makeSchemaCommand());
  all.push_back(makeConvertCommand());
  all.push_back(makeRecoverCommand());
  return all;
}

std::string marked(const std::string& argument) { return isMisread(argument) ? kMark + argument : argument; }
std::string unmarked(const std::string& argument) {
  return argument.starts_with(kMark) && isMisread(argument.substr(1)) ? argument.substr(1) : argument;
}

CLI::Option* addFile(CLI::App& command, const std::string& name, std::string& file, const std::string& help) {
  return command.add_option(name, file, help)->transform(unmarked);
}
CLI::Option* addFiles(CLI::App& command, const std::string& name, std::vector<std::string>& files,
                      const std::string& help) {
  return command.add_option(name, files, help)->transform(unmarked);
}

CLI::Option* addKind(CLI::App& command, std::optional<oldtorvio::frame::FileKind>& kind) {
  return command
      .add_option_function<std::string>(
          "--kind", [&kind](const std::string& name) { kind = kindNamed(name); },
          "Read as this kind of file instead of detecting the kind")
      ->type_name("KIND")
      ->take_last()
      ->check(oneOf(kindNames(), "kind", "Kinds"));
}

CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& one, const std::string& all) {
  return {[=](std::string& name) {
            const bool isKnown = std::find(names.begin(), names.end(), name) != names.end();
            return isKnown ? std::string() : "unknown " + one + " " + inQuotes(name) + "\n" + wrapped(all, names);
          },
          ""};
}

std::string wrapped(const std::string& caption, const std::vector<std::string>& names) {
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

std::string inQuotes(const std::string& argument) { return '"' + onOneLine(unmarked(argument)) + '"'; }

const char* const kExitCodes =
    "Exit code:\n"
    "  0  every file is sound\n"
    "  1  a file is damaged, or its kind or version is unknown\n"
    "  2  the command line is wrong\n"
    "  3  a file could not be read, or the output could not be written\n"
    "With several files, the highest code is returned.";

std::string fileHelp() {
  return wrapped("Kinds", kindNames()) + "\n\nA FILE may be a pipe. A file of more than " +
         std::to_string(oldtorvio::explain::FileContent::kLargestMiB) +
         " MiB is not read.\nArguments after \"--\" are files, even if they begin with \"-\".\n\n" + kExitCodes;
}

}  // namespace torvio
