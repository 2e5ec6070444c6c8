// Manual pages of torvio in roff, made from the options and help texts of its commands.
#pragma once
#include <string>

#include "torvio/cli/command_line.h"

namespace torvio {

// torvio(1).
std::string toolPage(const CommandLine& line);
// torvio-check(1).
std::string commandPage(const CommandLine& line, const CLI::App& command);

}  // namespace torvio
