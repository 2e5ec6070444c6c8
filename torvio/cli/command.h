// The commands of torvio: each registers itself with its arguments and runs.
#pragma once
#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "torvio/archive/verdict.h"
#include "torvio/cli/output_file.h"
#include "torvio/explain/kind_names.h"
#include "torvio/values/text_encoding.h"

namespace torvio {

// With several files, the highest code is returned. A file that could not be read has a higher code than a damaged one,
// since it may be damaged, too.
enum ExitCode : int {
  kSound = 0,
  kDamaged = 1,  // or refused: of unknown kind or version
  kUsageError = 2,
  kNotReadOrWritten = 3,
};

class Command {
 public:
  Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  // Adds the command with its options and arguments to the command line.
  virtual CLI::App* addTo(CLI::App& tool) = 0;
  // Called once, after the arguments were parsed. Throws OutputError, see output.h.
  virtual ExitCode run() = 0;
};

// In the order of the help.
std::vector<std::unique_ptr<Command>> allCommands();

// ---- arguments that commands share --------------------------------------------------------------------

// CLI11 splits an argument "[a,b]" in two and drops "++", but both may be file names: main() marks such arguments.
// Declare every argument that is a file with these, which remove the mark.
CLI::Option* addFile(CLI::App& command, const std::string& name, std::string& file, const std::string& help);
CLI::Option* addFiles(CLI::App& command, const std::string& name, std::vector<std::string>& files,
                      const std::string& help);
std::string marked(const std::string& argument);
std::string unmarked(const std::string& argument);

// The option --kind. The kind is set by the time that the command runs.
CLI::Option* addKind(CLI::App& command, std::optional<oldtorvio::frame::FileKind>& kind);
// The options --kind and --ext, which say what files are.
void addJudging(CLI::App& command, oldtorvio::archive::JudgeOptions& options);
// The option --encoding. The name is one of TextEncoding::names(), and unchanged without the option.
CLI::Option* addEncoding(CLI::App& command, std::string& name);
// The encoding of that name, or the default one for an empty name.
oldtorvio::values::TextEncoding encodingNamed(const std::string& name);
// The option --output, see writeOutput().
CLI::Option* addOutput(CLI::App& command, std::string& output);

// Refuses any other value, and lists those that are accepted: "unknown kind "x"", then "Kinds: part, ...".
CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& one, const std::string& all);
// Refuses everything but integers of that range.
CLI::Validator inRange(std::int64_t least, std::int64_t most);
// "Kinds: part, group-part, ...", wrapped to the width of the help.
std::string wrapped(const std::string& caption, const std::vector<std::string>& names);
// The argument in quotation marks, on one line.
std::string inQuotes(const std::string& argument);

using oldtorvio::explain::kindNamed;
using oldtorvio::explain::kindNames;

// ---- what a value may be, for help and completion -------------------------------------------------------

// The name of the value in help: "KIND", "FILE".
std::string valueName(const CLI::Option& option);
// The accepted values; more characters follow those that end in "=.". Empty if there is no list of them.
std::vector<std::string> acceptedValues(const CLI::Option& option);
// Whether the value is the name of a file.
bool takesFile(const CLI::Option& option);

// ---- what commands share when they run --------------------------------------------------------------------

// Calls write() with the file that --output names, or standard output for "" and "-", and completes the file. Returns
// the code of write(). If a file cannot be written, prints why. Throws OutputError for standard output. A file of a
// known kind is not replaced: in "draw -o *.sheet" the shell makes the first sheet the output.
ExitCode writeOutput(const std::string& output, const std::function<ExitCode(OutputText&)>& write);
// Whether an output of that name is an HTML page.
bool isPageName(const std::string& output);
// Whether the output is one of the files that are read; "" is standard input. If so, prints that as an error of that
// command.
bool isInputToo(const std::string& command, const std::string& output, const std::vector<std::string>& inputs);
// Prints an error of the command line, found when a command runs.
ExitCode usageError(const std::string& command, const std::string& error);

// The ends of help texts: the exit codes, also of commands for one file, for pictures and without files; the kinds,
// what may be read, and exit codes. "Exit code:" and "Examples:" begin lists, and blank lines separate paragraphs: see
// help_text.h.
extern const char* const kExitCodes;
extern const char* const kExitCodesOfOneFile;
extern const char* const kExitCodesOfPictures;
extern const char* const kExitCodesWithoutFiles;
std::string fileHelp(const char* exitCodes = kExitCodes);

}  // namespace torvio
