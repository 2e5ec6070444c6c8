#include "src/sheet/sheet_io.h"

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/sheet/sheet_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::readUnversioned;
using codec::resultOf;
using codec::Writer;
using codec::writeRecord;
using codec::writeUnversioned;

int ReadSheetPartList(InStream& stream, int version, SheetPartList& list) {
  return resultOf(readRecord(stream, version, list));
}
bool WriteSheetPartList(OutStream& stream, int version, const SheetPartList& list) {
  return writeRecord(stream, version, list);
}
int ReadSheetSetupList(InStream& stream, SheetSetupList& list) { return resultOf(readUnversioned(stream, list)); }
bool WriteSheetSetupList(OutStream& stream, const SheetSetupList& list) { return writeUnversioned(stream, list); }
int ReadSheetTextEntries(InStream& stream, int version, std::vector<SheetTextEntry>& list) {
  Reader io(stream, version);
  return resultOf(io.list(FIELDS(list), codec::kReplaced));
}
bool WriteSheetTextEntries(OutStream& stream, int version, const std::vector<SheetTextEntry>& list) {
  Writer io(stream, version);
  return io.list(FIELDS(list), codec::kReplaced);
}
int ReadNamedWorkLists(InStream& stream, int version, std::vector<NamedWorkList>& list) {
  Reader io(stream, version);
  return resultOf(io.clear(FIELDS(list)) && io.list(FIELDS(list), codec::kAppended));
}
bool WriteNamedWorkLists(OutStream& stream, int version, const std::vector<NamedWorkList>& list) {
  Writer io(stream, version);
  return io.list(FIELDS(list), codec::kAppended);
}
int ReadMachineExtensionEntries(InStream& stream, std::vector<MachineExtensionEntry>& list) {
  Reader io(stream);
  return resultOf(io.list(FIELDS(list), codec::kCountFirst));
}
bool WriteMachineExtensionEntries(OutStream& stream, const std::vector<MachineExtensionEntry>& list) {
  Writer io(stream);
  return io.list(FIELDS(list), codec::kCountFirst);
}
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
bool WriteOldSheet(OutStream& stream, int version, OldSheet& sheet) { return writeRecord(stream, version, sheet); }

}  // namespace oldtorvio
