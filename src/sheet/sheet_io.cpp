#include "src/sheet/sheet_io.h"

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/sheet/sheet_layout.h"

namespace oldtorvio {

using codec::readRecord;
using codec::resultOf;
using codec::Writer;

int ReadSheetPartList(InStream& stream, int version, SheetPartList& list) {
  return resultOf(readRecord(stream, version, list));
}
DEFINE_UNVERSIONED_CODEC(SheetSetupList, SheetSetupList)
DEFINE_LIST_CODEC(SheetTextEntries, std::vector<SheetTextEntry>, codec::kReplaced)
DEFINE_LIST_CODEC(NamedWorkLists, std::vector<NamedWorkList>, codec::kClearedFirst)
DEFINE_UNVERSIONED_LIST_CODEC(MachineExtensionEntries, std::vector<MachineExtensionEntry>, codec::kCountFirst)
DEFINE_CHECKED_LIST_CODEC(ShapeWorkBlocks, std::vector<ShapeWorkBlock>, codec::kInvertedSuccess)

int ReadOldSheet(InStream& stream, int version, OldSheet& sheet) {
  return resultOf(readRecord(stream, version, sheet));
}

}  // namespace oldtorvio
