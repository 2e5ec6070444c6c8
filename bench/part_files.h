// The measured part files, and how their floors are filled.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO/records.h"
#include "bench/floor.h"

namespace bench {

// One tool at one station, ten shapes.
std::unique_ptr<oldtorvio::TorvPart> smallPart();
// 20,000 shapes, some with a text or a note, and a group pattern with 5,000 bindings.
std::unique_ptr<oldtorvio::TorvPart> largePart();
// 200 parts; every tenth has 200 shapes.
oldtorvio::SheetPartList groupOfParts();

// The floor of a load: constructs the same records as in `like`, and fills all texts and lists that the file stores by
// memcpy from its bytes, without parsing them.
void fillPart(Source& from, const oldtorvio::TorvPart& like, oldtorvio::TorvPart& to);
void fillGroup(Source& from, const oldtorvio::SheetPartList& like, oldtorvio::SheetPartList& to);

}  // namespace bench
