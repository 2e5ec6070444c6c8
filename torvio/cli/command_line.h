// The command line of torvio: all commands with their options, and what is printed if it is wrong.
#pragma once
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "torvio/cli/command.h"

namespace torvio {

class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Runs the command that the arguments name. Throws OutputError.
  ExitCode run(int argc, char** argv);

  const CLI::App& tool() const { return app_; }
  // In the order of the help.
  std::vector<const CLI::App*> commands() const;

 private:
  void add(Command& command);
  std::string withoutValue(const std::string& error) const;
  ExitCode emptyValue(const std::string& argument, const std::string& command) const;
  ExitCode wrongArguments(std::string error) const;

  CLI::App app_;
  std::vector<std::unique_ptr<Command>> commands_;
  Command* chosen_ = nullptr;
};

}  // namespace torvio
