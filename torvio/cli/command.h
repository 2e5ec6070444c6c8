// The commands of torvio: each registers itself with its arguments and runs.
#pragma once
#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "src/frame/file_kinds.h"
#include "torvio/values/text_encoding.h"

namespace torvio {

// With several files, the highest code is returned. A file that could not be read has a higher one than a damaged file,
// since it may be damaged as well.
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

// The option --encoding. The name is one of TextEncoding::names(), and unchanged without the option.
CLI::Option* addEncoding(CLI::App& command, std::string& name, const std::string& help = "");

// Refuses any other value, and lists those that are accepted: "unknown kind "x"", then "Kinds: part, ...".
CLI::Validator oneOf(const std::vector<std::string>& names, const std::string& one, const std::string& all);
// Refuses what is no whole number of that range.
CLI::Validator inRange(std::int64_t least, std::int64_t most);
// "Kinds: part, group-part, ...", wrapped to the width of the help.
std::string wrapped(const std::string& caption, const std::vector<std::string>& names);
// The argument in quotation marks, on one line.
std::string inQuotes(const std::string& argument);

std::vector<std::string> kindNames();
std::optional<oldtorvio::frame::FileKind> kindNamed(const std::string& name);

// Ends of help texts: the exit codes; those and what may be read.
extern const char* const kExitCodes;
std::string fileHelp();

}  // namespace torvio
