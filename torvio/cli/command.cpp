#include "torvio/cli/command.h"

#include <algorithm>

#include "torvio/archive/host_files.h"
#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/help_text.h"
#include "torvio/cli/output.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

// Markers in the descriptions of validators, which CLI11 appends to the name of a value after ":".
constexpr const char* kFileMark = "FILE";
std::string listMark(const std::vector<std::string>& values) {
  std::string text = "{";
  for (const std::string& value : values) text += (text.size() > 1 ? "," : "") + value;
  return text + "}";
}

// "sheet=.nst".
std::optional<oldtorvio::archive::ExtensionHint> hintIn(const std::string& argument) {
  const std::size_t equals = argument.find('=');
  if (equals == std::string::npos || equals + 1 == argument.size()) return std::nullopt;
  const auto kind = kindNamed(argument.substr(0, equals));
  if (!kind) return std::nullopt;
  const std::string extension = argument.substr(equals + 1);
  if (extension == ".") return std::nullopt;
  return oldtorvio::archive::ExtensionHint{extension.front() == '.' ? extension : "." + extension, *kind};
}

CLI::Validator isHint() {
  std::vector<std::string> beginnings = kindNames();
  for (std::string& kind : beginnings) kind += "=.";
  return {[](std::string& argument) {
            return hintIn(argument) ? std::string()
                                    : "--ext requires a kind and an extension such as sheet=.nst, not " +
                                          inQuotes(argument) + "\n" + wrapped("Kinds", kindNames());
          },
          listMark(beginnings)};
}

constexpr char kMark = '\1';
bool isMisread(const std::string& argument) {
  return argument == "++" || argument.starts_with('[') || argument.starts_with(kMark);
}

}  // namespace

std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> all;
  all.push_back(makeCheckCommand());
  all.push_back(makeInfoCommand());
  all.push_back(makeMapCommand());
  all.push_back(makeDrawCommand());
  all.push_back(makeDiffCommand());
  all.push_back(makeJsonCommand());
  all.push_back(makeFromJsonCommand());
  all.push_back(makeConvertCommand());
  all.push_back(makeRecoverCommand());
  all.push_back(makeFormatCommand());
  all.push_back(makeSchemaCommand());
  return all;
}

std::string marked(const std::string& argument) { return isMisread(argument) ? kMark + argument : argument; }
std::string unmarked(const std::string& argument) {
  return argument.starts_with(kMark) && isMisread(argument.substr(1)) ? argument.substr(1) : argument;
}

CLI::Option* addFile(CLI::App& command, const std::string& name, std::string& file, const std::string& help) {
  return command.add_option(name, file, help)->transform(unmarked, kFileMark);
}
CLI::Option* addFiles(CLI::App& command, const std::string& name, std::vector<std::string>& files,
                      const std::string& help) {
  return command.add_option(name, files, help)->transform(unmarked, kFileMark);
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

void addJudging(CLI::App& command, oldtorvio::archive::JudgeOptions& options) {
  addKind(command, options.kind);
  command
      .add_option_function<std::vector<std::string>>(
          "--ext",
          [&options](const std::vector<std::string>& hints) {
            for (const std::string& hint : hints)
              if (auto parsed = hintIn(hint)) options.extensions.push_back(std::move(*parsed));
          },
          "Files of this extension are of this kind, as in sheet=.nst; may be repeated")
      ->type_name("KIND=.EXT")
      ->allow_extra_args(false)
      ->check(isHint());
}

CLI::Option* addEncoding(CLI::App& command, std::string& name) {
  return command.add_option("--encoding", name, "Code page of the texts in the files (cp1252)")
      ->type_name("NAME")
      ->take_last()
      ->check(oneOf(oldtorvio::values::TextEncoding::names(), "encoding", "Encodings"));
}

oldtorvio::values::TextEncoding encodingNamed(const std::string& name) {
  return oldtorvio::values::TextEncoding::named(name).value_or(oldtorvio::values::TextEncoding());
}

CLI::Option* addOutput(CLI::App& command, std::string& output) {
  return addFile(command, "-o,--output", output,
                 "Write to this file instead of standard output; files of the suite are not replaced")
      ->type_name("OUT")
      ->take_last();
}

CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& one, const std::string& all) {
  return {[=](std::string& name) {
            const bool isKnown = std::find(names.begin(), names.end(), name) != names.end();
            return isKnown ? std::string() : "unknown " + one + " " + inQuotes(name) + "\n" + wrapped(all, names);
          },
          listMark(names)};
}

CLI::Validator inRange(std::int64_t least, std::int64_t most) {
  return {[=](std::string& text) {
            std::int64_t value = 0;
            const bool isInside = CLI::detail::lexical_cast(text, value) && value >= least && value <= most;
            return isInside ? std::string()
                            : inQuotes(text) + " is not a number from " + std::to_string(least) + " to " +
                                  std::to_string(most);
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

std::string valueName(const CLI::Option& option) {
  const std::string name = option.get_positional() ? option.get_name(true) : option.get_type_name();
  return name.substr(0, name.find(':'));
}

std::vector<std::string> acceptedValues(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t open = type.find(":{");
  if (open == std::string::npos) return {};
  std::vector<std::string> values(1);
  for (std::size_t i = open + 2; i < type.size() && type[i] != '}'; ++i)
    type[i] == ',' ? void(values.emplace_back()) : values.back().push_back(type[i]);
  return values;
}

bool takesFile(const CLI::Option& option) { return option.get_type_name().ends_with(std::string(":") + kFileMark); }

namespace {

// The kind of the file of that name; none for a text, for what is no regular file, and for files of no known kind.
std::optional<oldtorvio::frame::FileKind> kindOfData(const std::string& path) {
  // The formats have no magic number, but no text begins with a version word below this one: its second character would
  // be a control character before the tab.
  constexpr int kTextsFrom = 0x0900;
  if (!oldtorvio::archive::measuresOf(path)) return std::nullopt;
  const oldtorvio::explain::FileContent file(path);
  const auto judged = oldtorvio::archive::judge(path, file.bytes(), {});
  return judged.report.version.value_or(kTextsFrom) < kTextsFrom ? judged.kind : std::nullopt;
}

}  // namespace

ExitCode writeOutput(const std::string& output, const std::function<ExitCode(OutputText&)>& write) {
  if (const auto kind = kindOfData(output)) {
    printError(onOneLine(output) + ": is a " + std::string(oldtorvio::frame::infoOf(*kind).name) +
               " file, which no text replaces");
    return kNotReadOrWritten;
  }
  try {
    OutputText text(output);
    const ExitCode code = write(text);
    text.commit();
    return code;
  } catch (const OutputError& error) {
    if (output.empty() || output == "-") throw;
    printError(onOneLine(output) + ": " + error.what());
    return kNotReadOrWritten;
  }
}

bool isPageName(const std::string& output) { return output.ends_with(".html") || output.ends_with(".htm"); }

bool isInputToo(const std::string& command, const std::string& output, const std::vector<std::string>& inputs) {
  if (output.empty() || output == "-") return false;
  const auto isOutput = [&](const std::string& input) {
    if (!input.empty()) return isSameFile(input, output);
    const auto identity = oldtorvio::archive::identityOf(stdin);
    return identity && identity == oldtorvio::archive::identityOf(output);
  };
  if (std::none_of(inputs.begin(), inputs.end(), isOutput)) return false;
  (void)usageError(command, inQuotes(output) + " is both a file to read and the output");
  return true;
}

ExitCode usageError(const std::string& command, const std::string& error) {
  printError(command + ": " + error + "\nTry \"torvio " + command + " --help\".");
  return kUsageError;
}

const char* const kExitCodes =
    "Exit code:\n"
    "  0  every file is sound\n"
    "  1  a file is damaged, or its kind or version is unknown\n"
    "  2  the command line is wrong\n"
    "  3  a file could not be read, or the output could not be written\n"
    "With several files, the highest code is returned.";

const char* const kExitCodesOfOneFile =
    "Exit code:\n"
    "  0  the file is sound\n"
    "  1  the file is damaged, or its kind or version is unknown\n"
    "  2  the command line is wrong\n"
    "  3  the file could not be read, or the output could not be written";

const char* const kExitCodesOfPictures =
    "Exit code:\n"
    "  0  every file is sound\n"
    "  1  a file is damaged, has no picture, or its kind or version is unknown\n"
    "  2  the command line is wrong\n"
    "  3  a file could not be read, or the output could not be written\n"
    "With several files, the highest code is returned.";

const char* const kExitCodesWithoutFiles =
    "Exit code:\n"
    "  0  all is well\n"
    "  2  the command line is wrong\n"
    "  3  the output could not be written";

std::string fileHelp(const char* exitCodes) {
  return wrapped("Kinds", kindNames()) + "\n\nA FILE may be a pipe, such as /dev/stdin. A file of more than " +
         std::to_string(oldtorvio::explain::FileContent::kLargestMiB) +
         " MiB is not\nread. Arguments after \"--\" are files, even if they begin with \"-\".\n\n" + exitCodes;
}

}  // namespace torvio
