#include "src/machine/machine_io.h"

#include "src/frame/entry.h"
#include "src/machine/machine_layout.h"

namespace oldtorvio {

using codec::readRecord;
using codec::readUnversioned;
using codec::resultOf;
using codec::writeRecord;
using codec::writeUnversioned;

int ReadClampInfo(InStream& stream, ClampInfo& info) { return resultOf(readUnversioned(stream, info)); }
bool WriteClampInfo(OutStream& stream, const ClampInfo& info) { return writeUnversioned(stream, info); }
int ReadMachineFrame(InStream& stream, int version, MachineFrame& frame) {
  return resultOf(readRecord(stream, version, frame));
}
bool WriteMachineFrame(OutStream& stream, int version, const MachineFrame& frame) {
  return writeRecord(stream, version, frame);
}
int ReadWorkArea(InStream& stream, WorkArea& area) { return resultOf(readUnversioned(stream, area)); }
bool WriteWorkArea(OutStream& stream, const WorkArea& area) { return writeUnversioned(stream, area); }
int ReadShapeProgram(InStream& stream, int version, ShapeProgram& program) {
  return resultOf(readRecord(stream, version, program));
}
bool WriteShapeProgram(OutStream& stream, int version, const ShapeProgram& program) {
  return writeRecord(stream, version, program);
}
int ReadShapeProgramEx(InStream& stream, int version, ShapeProgramEx& program) {
  return resultOf(readRecord(stream, version, program));
}
bool WriteShapeProgramEx(OutStream& stream, int version, const ShapeProgramEx& program) {
  return writeRecord(stream, version, program);
}
int ReadMachineGrid(InStream& stream, MachineGrid& grid) { return resultOf(readUnversioned(stream, grid)); }
bool WriteMachineGrid(OutStream& stream, const MachineGrid& grid) { return writeUnversioned(stream, grid); }
int ReadGridSegment(InStream& stream, GridSegment& segment) { return resultOf(readUnversioned(stream, segment)); }
bool WriteGridSegment(OutStream& stream, const GridSegment& segment) { return writeUnversioned(stream, segment); }
int ReadMachineExtension(InStream& stream, MachineExtension& extension) {
  return resultOf(readUnversioned(stream, extension));
}
bool WriteMachineExtension(OutStream& stream, const MachineExtension& extension) {
  return writeUnversioned(stream, extension);
}
int ReadMachineUnitTable(InStream& stream, int version, MachineUnitTable& table) {
  return resultOf(readRecord(stream, version, table));
}
bool WriteMachineUnitTable(OutStream& stream, int version, const MachineUnitTable& table) {
  return writeRecord(stream, version, table);
}

int ReadOldMachine(InStream& stream, int version, ShapeList* shapes, OldMachine& machine) {
  return resultOf(readRecord(stream, version, machine, MachineForm<ShapeList>{shapes}));
}
bool WriteOldMachine(OutStream& stream, int version, const ShapeList* shapes, OldMachine& machine,
                     bool writeShapeFlag) {
  return writeRecord(stream, version, machine, MachineForm<const ShapeList>{shapes, writeShapeFlag});
}

std::int64_t SaveMachine(const char* path, OldMachine& machine, int version) {
  return frame::saveFile(path, version, frame::isMachineVersion,
                         [&](OutStream& stream) { return WriteOldMachine(stream, version, nullptr, machine, false); });
}

}  // namespace oldtorvio
