// A record saved as a file that loads completely, where a plain save stores one that does not.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"
#include "torvio/values/compiled_records.h"

namespace oldtorvio::convert {

// Whether files of that kind are saved in that version, in the layout that a load of that version reads: parts below
// version 52 and tables from 500 on are saved in another one.
bool isSaved(frame::FileKind kind, int version);
// Those versions: "52, 54, 60 to 62, 180", or "152 and above".
std::string savedVersions(frame::FileKind kind);

// The version to save a file of that version in: the same, or the one that comes nearest if none is saved in it.
int nearestSaved(frame::FileKind kind, int version);

struct CompleteSave {
  std::vector<std::byte> bytes;
  std::string error;  // why there are no bytes
};

// Saves the record. Every byte of the file is read by a load. The record changes as in a save, and to what can be
// stored and loaded: widths of texts, versions of parameter tables, a pattern for a part that has none, and no blocks in
// a sheet.
template <frame::FileKind kKind>
CompleteSave saveCompletely(typename FileRecord<kKind>::Record& record, int version);

}  // namespace oldtorvio::convert
