// A record saved as a file that loads completely, where a plain save stores one that does not.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"
#include "torvio/values/compiled_records.h"

namespace oldtorvio::convert {

// Whether files of that kind are saved in that version. Parts below version 52, materials from 500 on and sheets from
// 181 on are not, although some of them are loaded.
bool isSaved(frame::FileKind kind, int version);
// Those versions: "52, 54, 60 to 62, 180", or "152 and above".
std::string savedVersions(frame::FileKind kind);

// The version to save a file of that version in: the same, or the one that comes nearest if none is saved in it.
int nearestSaved(frame::FileKind kind, int version);

// Gives the record the values that its file needs to be loaded, and keeps all others: widths of texts that a save
// stores in 256 bytes, a version that a save stores parameter tables in, a pattern for a part that has none. Drops what
// no save can store: damaged blocks of a sheet.
void makeStorable(TorvPart& part, int version);
void makeStorable(SheetPartList& list, int version);
void makeStorable(OldSpecialTool& tool, int version);
void makeStorable(OldMachine& machine, int version);
void makeStorable(OldMaterial& material, int version);
void makeStorable(OldToolInventory& inventory, int version);
void makeStorable(OldMacro& macro, int version);
void makeStorable(OldSheet& sheet, int version);

struct CompleteSave {
  std::vector<std::byte> bytes;
  std::string error;  // why there are no bytes
};

// Saves the record, which may change as in a save. A load reads every byte of the file.
template <frame::FileKind kKind>
CompleteSave saveCompletely(typename FileRecord<kKind>::Record& record, int version);

}  // namespace oldtorvio::convert
