// Readers and writers of machine files: shape programs, the tables of a machine, its body.
//
// Results as in src/records/record_io.h.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

DECLARE_UNVERSIONED_CODEC(ClampInfo, ClampInfo);
DECLARE_RECORD_CODEC(MachineFrame, MachineFrame);
DECLARE_UNVERSIONED_CODEC(WorkArea, WorkArea);
DECLARE_RECORD_CODEC(ShapeProgram, ShapeProgram);
DECLARE_RECORD_CODEC(ShapeProgramEx, ShapeProgramEx);
DECLARE_UNVERSIONED_CODEC(MachineGrid, MachineGrid);
DECLARE_UNVERSIONED_CODEC(GridSegment, GridSegment);
DECLARE_UNVERSIONED_CODEC(MachineExtension, MachineExtension);
DECLARE_RECORD_CODEC(MachineUnitTable, MachineUnitTable);

// The body after the version word. `shapes`: the list whose trailer values the machine may store. If it is null, a body
// that stores such values returns 1.
int ReadOldMachine(InStream& stream, int version, ShapeList* shapes, OldMachine& machine);
// writeShapeFlag: shapesPresent becomes 1 in the record and is stored, and so are the trailer values of `shapes`. The
// choices of the material change as WriteOldMaterialBody describes.
bool WriteOldMachine(OutStream& stream, int version, const ShapeList* shapes, OldMachine& machine, bool writeShapeFlag);

// For samples and tests: no export writes machine files. -1 for a version outside 52 to 180. Below version 152 the file
// has bytes that the reader does not expect.
std::int64_t SaveMachine(const char* path, OldMachine& machine, int version);

}  // namespace oldtorvio
