// Readers and writers of machine files: shape programs, the tables of a machine, its body.
//
// Results as in src/records/record_io.h.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

int ReadClampInfo(InStream& stream, ClampInfo& info);
bool WriteClampInfo(OutStream& stream, const ClampInfo& info);
int ReadMachineFrame(InStream& stream, int version, MachineFrame& frame);
bool WriteMachineFrame(OutStream& stream, int version, const MachineFrame& frame);
int ReadWorkArea(InStream& stream, WorkArea& area);
bool WriteWorkArea(OutStream& stream, const WorkArea& area);
int ReadShapeProgram(InStream& stream, int version, ShapeProgram& program);
bool WriteShapeProgram(OutStream& stream, int version, const ShapeProgram& program);
int ReadShapeProgramEx(InStream& stream, int version, ShapeProgramEx& program);
bool WriteShapeProgramEx(OutStream& stream, int version, const ShapeProgramEx& program);
int ReadMachineGrid(InStream& stream, MachineGrid& grid);
bool WriteMachineGrid(OutStream& stream, const MachineGrid& grid);
int ReadGridSegment(InStream& stream, GridSegment& segment);
bool WriteGridSegment(OutStream& stream, const GridSegment& segment);
int ReadMachineExtension(InStream& stream, MachineExtension& extension);
bool WriteMachineExtension(OutStream& stream, const MachineExtension& extension);
int ReadMachineUnitTable(InStream& stream, int version, MachineUnitTable& table);
bool WriteMachineUnitTable(OutStream& stream, int version, const MachineUnitTable& table);

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
