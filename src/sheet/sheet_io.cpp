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
  return resultOf(io.countThenClear(FIELDS(list)));
}
bool WriteSheetTextEntries(OutStream& stream, int version, const std::vector<SheetTextEntry>& list) {
  Writer io(stream, version);
  return io.countThenClear(FIELDS(list));
}
int ReadNamedWorkLists(InStream& stream, int version, std::vector<NamedWorkList>& list) {
  Reader io(stream, version);
  return resultOf(io.clear(FIELDS(list)) && io.append(FIELDS(list)));
}
bool WriteNamedWorkLists(OutStream& stream, int version, const std::vector<NamedWorkList>& list) {
  Writer io(stream, version);
  return io.append(FIELDS(list));
}
int ReadMachineExtensionEntries(InStream& stream, std::vector<MachineExtensionEntry>& list) {
  Reader io(stream);
  return resultOf(io.countFirst(FIELDS(list)));
}
bool WriteMachineExtensionEntries(OutStream& stream, const std::vector<MachineExtensionEntry>& list) {
  Writer io(stream);
  return io.countFirst(FIELDS(list));
}
bool ReadShapeWorkBlocks(InStream& stream, int version, std::vector<ShapeWorkBlock>& blocks) {
  Reader io(stream, version);
  return io.invertedSuccessList(FIELDS(blocks));
}
bool WriteShapeWorkBlocks(OutStream& stream, int version, const std::vector<ShapeWorkBlock>& blocks) {
  Writer io(stream, version);
  return io.invertedSuccessList(FIELDS(blocks));
}

int ReadOldSheet(InStream& stream, int version, OldSheet& sheet) {
  return resultOf(readRecord(stream, version, sheet));
}
bool WriteOldSheet(OutStream& stream, int version, OldSheet& sheet) { return writeRecord(stream, version, sheet); }

}  // namespace oldtorvio
