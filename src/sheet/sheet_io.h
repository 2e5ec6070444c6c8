// Readers and writers of sheet files: the lists that only sheets have, the body of a sheet.
//
// Results as in src/records/record_io.h. `version` is the version word of the file.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

DECLARE_RECORD_CODEC(SheetPartList, SheetPartList);
DECLARE_UNVERSIONED_CODEC(SheetSetupList, SheetSetupList);
DECLARE_RECORD_CODEC(SheetTextEntries, std::vector<SheetTextEntry>);
DECLARE_RECORD_CODEC(NamedWorkLists, std::vector<NamedWorkList>);
DECLARE_UNVERSIONED_CODEC(MachineExtensionEntries, std::vector<MachineExtensionEntry>);
// Success and failure are inverted for these blocks. The reader drops a block that it can read completely and returns
// false; it keeps one that it cannot read, and goes on. The writer begins with the second block and returns false after
// the first that it could store completely. If there is none, as in a list of one, it ends the process.
DECLARE_CHECKED_CODEC(ShapeWorkBlocks, std::vector<ShapeWorkBlock>);

// The body after the version word. The writer changes the choices of the machine's material as WriteOldMaterialBody
// does.
int ReadOldSheet(InStream& stream, int version, OldSheet& sheet);
bool WriteOldSheet(OutStream& stream, int version, OldSheet& sheet);

}  // namespace oldtorvio
