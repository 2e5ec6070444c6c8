#include "src/sheet/sheet_io.h"

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/sheet/sheet_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::resultOf;
using codec::Writer;

int ReadSheetPartList(InStream& stream, int version, SheetPartList& list) {
  return resultOf(readRecord(stream, version, list));
}
DEFINE_UNVERSIONED_CODEC(SheetSetupList, SheetSetupList)
DEFINE_LIST_CODEC(SheetTextEntries, std::vector<SheetTextEntry>, codec::kReplaced)
int ReadNamedWorkLists(InStream& stream, int version, std::vector<NamedWorkList>& list) {
  Reader io(stream, version);
  return resultOf(io.clear(FIELDS(list)) && io.list(FIELDS(list), codec::kAppended));
}
bool WriteNamedWorkLists(OutStream& stream, int version, const std::vector<NamedWorkList>& list) {
  Writer io(stream, version);
  return io.list(FIELDS(list), codec::kAppended);
}
DEFINE_UNVERSIONED_LIST_CODEC(MachineExtensionEntries, std::vector<MachineExtensionEntry>, codec::kCountFirst)
bool ReadShapeWorkBlocks(InStream& stream, int version, std::vector<ShapeWorkBlock>& blocks) {
  Reader io(stream, version);
  return io.list(FIELDS(blocks), codec::kInvertedSuccess);
}
bool WriteShapeWorkBlocks(OutStream& stream, int version, const std::vector<ShapeWorkBlock>& blocks) {
  Writer io(stream, version);
  return io.list(FIELDS(blocks), codec::kInvertedSuccess);
}

int ReadOldSheet(InStream& stream, int version, OldSheet& sheet) {
  return resultOf(readRecord(stream, version, sheet));
}

}  // namespace oldtorvio
