// The measured sheets, and how their floor is filled.
#pragma once
#include <memory>

#include "OldTorvIO/records.h"
#include "bench/floor.h"

namespace bench {

// A nest of `parts` parts of 64 shapes with two placements each (about 25 KB per part), the sheet's own lists
// in proportion, and a machine of 40 stations with its material.
std::unique_ptr<oldtorvio::OldSheet> sheetOf(int parts);

// The floor of a load, like fillPart.
void fillSheet(Source& from, const oldtorvio::OldSheet& like, oldtorvio::OldSheet& to);

}  // namespace bench
