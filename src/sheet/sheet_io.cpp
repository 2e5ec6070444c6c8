#include "src/sheet/sheet_io.h"

#include "src/frame/reader.h"
#include "src/frame/writer.h"
#include "src/sheet/sheet_layout.h"

namespace oldtorvio {

using frame::Reader;
using frame::readRecord;
using frame::readUngated;
using frame::resultOf;
using frame::Writer;
using frame::writeRecord;
using frame::writeUngated;

int ReadSheetPartList(InStream& stream, int version, SheetPartList& list) {
  return resultOf(readRecord(stream, version, list));
}
bool WriteSheetPartList(OutStream& stream, int version, const SheetPartList& list) {
  return writeRecord(stream, version, list);
}
int ReadSheetSetupList(InStream& stream, SheetSetupList& list) { return resultOf(readUngated(stream, list)); }
bool WriteSheetSetupList(OutStream& stream, const SheetSetupList& list) { return writeUngated(stream, list); }
int ReadSheetTextEntries(InStream& stream, int version, std::vector<SheetTextEntry>& list) {
  Reader io(stream, version);
  return resultOf(io.countThenClear(F(list)));
}
bool WriteSheetTextEntries(OutStream& stream, int version, const std::vector<SheetTextEntry>& list) {
  Writer io(stream, version);
  return io.countThenClear(F(list));
}
int ReadNamedWorkLists(InStream& stream, int version, std::vector<NamedWorkList>& list) {
  Reader io(stream, version);
  return resultOf(io.clear(F(list)) && io.append(F(list)));
}
bool WriteNamedWorkLists(OutStream& stream, int version, const std::vector<NamedWorkList>& list) {
  Writer io(stream, version);
  return io.append(F(list));
}
int ReadMachineExtensionEntries(InStream& stream, std::vector<MachineExtensionEntry>& list) {
  Reader io(stream);
  return resultOf(io.countFirst(F(list)));
}
bool WriteMachineExtensionEntries(OutStream& stream, const std::vector<MachineExtensionEntry>& list) {
  Writer io(stream);
  return io.countFirst(F(list));
}
bool ReadShapeWorkBlocks(InStream& stream, int version, std::vector<ShapeWorkBlock>& blocks) {
  Reader io(stream, version);
  return io.reversed(F(blocks));
}
bool WriteShapeWorkBlocks(OutStream& stream, int version, const std::vector<ShapeWorkBlock>& blocks) {
  Writer io(stream, version);
  return io.reversed(F(blocks));
}

int ReadOldSheet(InStream& stream, int version, OldSheet& sheet) {
  return resultOf(readRecord(stream, version, sheet));
}
bool WriteOldSheet(OutStream& stream, int version, OldSheet& sheet) { return writeRecord(stream, version, sheet); }

}  // namespace oldtorvio
