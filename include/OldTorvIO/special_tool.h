// A special tool: a punch with a custom shape, in a file of its own.
#pragma once
#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/tool.h"

namespace oldtorvio {

struct OldSpecialTool {
  OldTool tool;  // tool.fileVersion is the version word of the file
  float specialValue = 0;
  ShapeList shapes;  // the outline
  SetupList setupList;
};

}  // namespace oldtorvio
