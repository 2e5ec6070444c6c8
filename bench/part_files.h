// The files that are measured, and what the baselines need to know of them.
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

// The floor of a load: records are constructed as `like` has them, all texts and lists that the file
// stores filled by memcpy from the bytes read, without looking at them.
void fillPart(Source& from, const oldtorvio::TorvPart& like, oldtorvio::TorvPart& to);
void fillGroup(Source& from, const oldtorvio::SheetPartList& like, oldtorvio::SheetPartList& to);

}  // namespace bench
