// Readers and writers of the records that several file kinds embed.
//
// A reader returns 0, or 1 for a short read or a refused value; what it read before that stays in the record. A writer
// returns true, or false if something could not be stored. `version` is the version word of the file that embeds the
// record.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

void InitOldTool(OldTool& tool);
// pathIsStored: true inside a ToolStationList, false in inventories and special tool files.
int ReadOldTool(InStream& stream, int version, bool pathIsStored, OldTool& tool);
bool WriteOldTool(OutStream& stream, int version, bool pathIsStored, const OldTool& tool);

int ReadToolStation(InStream& stream, int version, ToolStation& station);
bool WriteToolStation(OutStream& stream, int version, const ToolStation& station);
int ReadToolStationList(InStream& stream, int version, ToolStationList& list);
bool WriteToolStationList(OutStream& stream, int version, const ToolStationList& list);
void AddToolStation(ToolStationList& list, const ToolStation& station);
void AddTool(ToolStationList& list, const OldTool& tool);

int ReadShape(InStream& stream, int version, Shape& shape);
bool WriteShape(OutStream& stream, int version, const Shape& shape);
int ReadShapeList(InStream& stream, int version, ShapeList& list);
bool WriteShapeList(OutStream& stream, int version, const ShapeList& list);
// One trailerValue for each shape in the list; no count is stored.
int ReadShapeTrailer(InStream& stream, ShapeList& list);
bool WriteShapeTrailer(OutStream& stream, const ShapeList& list);

int ReadProcessSlot(InStream& stream, int version, ProcessSlot& slot);
bool WriteProcessSlot(OutStream& stream, int version, const ProcessSlot& slot);
int ReadStepTable(InStream& stream, int version, StepTable& table);
bool WriteStepTable(OutStream& stream, int version, const StepTable& table);
int ReadStepTableList(InStream& stream, int version, StepTableList& list);
bool WriteStepTableList(OutStream& stream, int version, const StepTableList& list);
int ReadSetupEntry(InStream& stream, SetupEntry& entry);
bool WriteSetupEntry(OutStream& stream, const SetupEntry& entry);
int ReadSetupList(InStream& stream, SetupList& list);
bool WriteSetupList(OutStream& stream, const SetupList& list);
int ReadMotionBlock(InStream& stream, int version, MotionBlock& block);
bool WriteMotionBlock(OutStream& stream, int version, const MotionBlock& block);
int ReadProfileRecord(InStream& stream, int version, ProfileRecord& profile);
bool WriteProfileRecord(OutStream& stream, int version, const ProfileRecord& profile);
int ReadProfileList(InStream& stream, int version, ProfileList& list);
bool WriteProfileList(OutStream& stream, int version, const ProfileList& list);
int ReadPatternItem(InStream& stream, int version, PatternItem& item);
bool WritePatternItem(OutStream& stream, int version, const PatternItem& item);
int ReadPatternItemList(InStream& stream, int version, PatternItemList& list);
bool WritePatternItemList(OutStream& stream, int version, const PatternItemList& list);
int ReadWorkEntry(InStream& stream, int version, WorkEntry& entry);
bool WriteWorkEntry(OutStream& stream, int version, const WorkEntry& entry);
int ReadMarkEntry(InStream& stream, MarkEntry& entry);
bool WriteMarkEntry(OutStream& stream, const MarkEntry& entry);
int ReadMarkList(InStream& stream, MarkList& list);
bool WriteMarkList(OutStream& stream, const MarkList& list);

}  // namespace oldtorvio
