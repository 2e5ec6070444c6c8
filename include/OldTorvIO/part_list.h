// A list of parts: a group part file, or the parts of a sheet.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/part.h"

namespace oldtorvio {

struct SheetPartList {
  std::vector<TorvPart> parts;  // in stored order
  // How many bytes of partName and of partFullDosName a sheet stores for each part, 1 to 256. Not stored in a sheet
  // without parts. With a negative part count a load accepts any value.
  std::int32_t nameWidth = 256;
};

}  // namespace oldtorvio
