// Completion of command lines of torvio, made from the options of its commands.
#pragma once
#include <string>

#include "torvio/cli/command_line.h"

namespace torvio {

// A script for share/bash-completion/completions; it needs bash 4.4 and nothing else.
std::string bashCompletion(const CommandLine& line);
// A function for share/zsh/site-functions.
std::string zshCompletion(const CommandLine& line);

}  // namespace torvio
