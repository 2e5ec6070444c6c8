// A special tool: a punch of free shape, in a file of its own.
#pragma once
#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/tool.h"

namespace oldtorvio {

struct OldSpecialTool {
  OldTool tool;  // tool.fileVersion holds the file's version word
  float specialValue = 0;
  ShapeList shapes;  // outline
  SetupList setupList;
};

}  // namespace oldtorvio
