// A tool as one item of the tool lists of GetOldPartTool and GetOldSheetInfo.
#pragma once
#include <string>

#include "OldTorvIO/tool.h"

namespace oldtorvio {

// Empty for shape code 0. Without the comma that follows an item.
std::string toolText(const OldTool& tool);

}  // namespace oldtorvio
