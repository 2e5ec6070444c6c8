// A list of parts, as group part files and sheets hold it.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/part.h"

namespace oldtorvio {

struct SheetPartList {
  std::vector<TorvPart> parts;   // in stored order
  std::int32_t nameWidth = 256;  // stored width of each part's names in a sheet
};

}  // namespace oldtorvio
