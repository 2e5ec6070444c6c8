// A tool as the tool lists of parts and sheets print it.
#pragma once
#include <string>

#include "OldTorvIO/tool.h"

namespace oldtorvio {

// Empty for a tool of code 0; without a closing comma.
std::string toolText(const OldTool& tool);

}  // namespace oldtorvio
