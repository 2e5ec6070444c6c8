#include "src/machine/machine_io.h"

#include "src/machine/machine_file_record.h"
#include "src/machine/machine_layout.h"

namespace oldtorvio {

using codec::readRecord;
using codec::resultOf;
using codec::writeRecord;

DEFINE_UNVERSIONED_CODEC(ClampInfo, ClampInfo)
DEFINE_RECORD_CODEC(MachineFrame, MachineFrame)
DEFINE_UNVERSIONED_CODEC(WorkArea, WorkArea)
DEFINE_RECORD_CODEC(ShapeProgram, ShapeProgram)
DEFINE_RECORD_CODEC(ShapeProgramEx, ShapeProgramEx)
DEFINE_UNVERSIONED_CODEC(MachineGrid, MachineGrid)
DEFINE_UNVERSIONED_CODEC(GridSegment, GridSegment)
DEFINE_UNVERSIONED_CODEC(MachineExtension, MachineExtension)
DEFINE_RECORD_CODEC(MachineUnitTable, MachineUnitTable)

int ReadOldMachine(InStream& stream, int version, ShapeList* shapes, OldMachine& machine) {
  return resultOf(readRecord(stream, version, machine, MachineForm<ShapeList>{shapes}));
}
bool WriteOldMachine(OutStream& stream, int version, const ShapeList* shapes, OldMachine& machine,
                     bool writeShapeFlag) {
  return writeRecord(stream, version, machine, MachineForm<const ShapeList>{shapes, writeShapeFlag});
}

std::int64_t SaveMachine(const char* path, OldMachine& machine, int version) {
  return frame::saveRecord<frame::FileKind::machine>(path, machine, version);
}

}  // namespace oldtorvio
