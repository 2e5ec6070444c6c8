// Readers and writers of the records that several file kinds embed.
//
// A reader returns 0, or 1 for a short read or a refused value; what it read before that stays in the record. A writer
// returns true, or false if something could not be stored. `version` is the version word of the file that embeds the
// record.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

void InitOldTool(OldTool& tool);
// pathIsStored: true inside a ToolStationList, false in inventories and special tool files.
int ReadOldTool(InStream& stream, int version, bool pathIsStored, OldTool& tool);
bool WriteOldTool(OutStream& stream, int version, bool pathIsStored, const OldTool& tool);

DECLARE_RECORD_CODEC(ToolStation, ToolStation);
DECLARE_RECORD_CODEC(ToolStationList, ToolStationList);
void AddToolStation(ToolStationList& list, const ToolStation& station);
void AddTool(ToolStationList& list, const OldTool& tool);

DECLARE_RECORD_CODEC(Shape, Shape);
DECLARE_RECORD_CODEC(ShapeList, ShapeList);
// One trailerValue for each shape in the list; no count is stored.
int ReadShapeTrailer(InStream& stream, ShapeList& list);
bool WriteShapeTrailer(OutStream& stream, const ShapeList& list);

DECLARE_RECORD_CODEC(ProcessSlot, ProcessSlot);
DECLARE_RECORD_CODEC(StepTable, StepTable);
DECLARE_RECORD_CODEC(StepTableList, StepTableList);
DECLARE_UNVERSIONED_CODEC(SetupEntry, SetupEntry);
DECLARE_UNVERSIONED_CODEC(SetupList, SetupList);
DECLARE_RECORD_CODEC(MotionBlock, MotionBlock);
DECLARE_RECORD_CODEC(ProfileRecord, ProfileRecord);
DECLARE_RECORD_CODEC(ProfileList, ProfileList);
DECLARE_RECORD_CODEC(PatternItem, PatternItem);
DECLARE_RECORD_CODEC(PatternItemList, PatternItemList);
DECLARE_RECORD_CODEC(WorkEntry, WorkEntry);
DECLARE_UNVERSIONED_CODEC(MarkEntry, MarkEntry);
DECLARE_UNVERSIONED_CODEC(MarkList, MarkList);

}  // namespace oldtorvio
