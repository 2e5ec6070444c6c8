// A list of parts: a group part file, or the parts of a sheet.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/part.h"

namespace oldtorvio {

struct SheetPartList {
  std::vector<TorvPart> parts;  // in stored order
  // Bytes that a sheet stores of partName and of partFullDosName of each part, 1 to 256. A sheet without parts
  // does not store it; one with a negative part count stores any width.
  std::int32_t nameWidth = 256;
};

}  // namespace oldtorvio
