// One function for each command of torvio, defined in a file of its own.
#pragma once
#include <memory>

#include "torvio/cli/command.h"

namespace torvio {

std::unique_ptr<Command> makeMapCommand();
std::unique_ptr<Command> makeCheckCommand();
std::unique_ptr<Command> makeFormatCommand();
std::unique_ptr<Command> makeDiffCommand();
std::unique_ptr<Command> makeDrawCommand();
std::unique_ptr<Command> makeInfoCommand();
std::unique_ptr<Command> makeJsonCommand();
std::unique_ptr<Command> makeFromJsonCommand();
std::unique_ptr<Command> makeSchemaCommand();
std::unique_ptr<Command> makeConvertCommand();
std::unique_ptr<Command> makeRecoverCommand();

}  // namespace torvio
