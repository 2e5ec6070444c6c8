// The sheets that are measured, and what their floor fills.
#pragma once
#include <memory>

#include "OldTorvIO/records.h"
#include "bench/floor.h"

namespace bench {

// A nest of `parts` parts of 64 shapes with two placements each (about 25 KB a part), the sheet's own lists
// in proportion, a machine of 40 stations with its material.
std::unique_ptr<oldtorvio::OldSheet> sheetOf(int parts);

// The floor of a load, as fillPart.
void fillSheet(Source& from, const oldtorvio::OldSheet& like, oldtorvio::OldSheet& to);

}  // namespace bench
