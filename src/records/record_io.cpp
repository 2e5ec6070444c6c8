#include "src/records/record_io.h"

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::readUnversioned;
using codec::resultOf;
using codec::Writer;
using codec::writeRecord;
using codec::writeUnversioned;

namespace {

template <class List>
int readCountFirst(InStream& stream, int version, List& list) {
  Reader io(stream, version);
  return resultOf(io.list(FIELDS(list), codec::kCountFirst));
}

template <class List>
bool writeCountFirst(OutStream& stream, int version, const List& list) {
  Writer io(stream, version);
  return io.list(FIELDS(list), codec::kCountFirst);
}

}  // namespace

void InitOldTool(OldTool& tool) { tool = OldTool(); }

int ReadOldTool(InStream& stream, int version, bool pathIsStored, OldTool& tool) {
  return resultOf(readRecord(stream, version, tool, pathIsStored));
}
bool WriteOldTool(OutStream& stream, int version, bool pathIsStored, const OldTool& tool) {
  return writeRecord(stream, version, tool, pathIsStored);
}

int ReadToolStation(InStream& stream, int version, ToolStation& station) {
  return resultOf(readRecord(stream, version, station));
}
bool WriteToolStation(OutStream& stream, int version, const ToolStation& station) {
  return writeRecord(stream, version, station);
}
int ReadToolStationList(InStream& stream, int version, ToolStationList& list) {
  return resultOf(readRecord(stream, version, list));
}
bool WriteToolStationList(OutStream& stream, int version, const ToolStationList& list) {
  return writeRecord(stream, version, list);
}
void AddToolStation(ToolStationList& list, const ToolStation& station) { list.stations.push_back(station); }
void AddTool(ToolStationList& list, const OldTool& tool) { list.tools.push_back(tool); }

int ReadShape(InStream& stream, int version, Shape& shape) { return resultOf(readRecord(stream, version, shape)); }
bool WriteShape(OutStream& stream, int version, const Shape& shape) { return writeRecord(stream, version, shape); }
int ReadShapeList(InStream& stream, int version, ShapeList& list) {
  return resultOf(readRecord(stream, version, list));
}
bool WriteShapeList(OutStream& stream, int version, const ShapeList& list) {
  return writeRecord(stream, version, list);
}
int ReadShapeTrailer(InStream& stream, ShapeList& list) {
  Reader io(stream);
  return resultOf(codec::describeShapeTrailer(io, list));
}
bool WriteShapeTrailer(OutStream& stream, const ShapeList& list) {
  Writer io(stream);
  return codec::describeShapeTrailer(io, list);
}

int ReadProcessSlot(InStream& stream, int version, ProcessSlot& slot) {
  return resultOf(readRecord(stream, version, slot));
}
bool WriteProcessSlot(OutStream& stream, int version, const ProcessSlot& slot) {
  return writeRecord(stream, version, slot);
}
int ReadStepTable(InStream& stream, int version, StepTable& table) {
  return resultOf(readRecord(stream, version, table));
}
bool WriteStepTable(OutStream& stream, int version, const StepTable& table) {
  return writeRecord(stream, version, table);
}
int ReadStepTableList(InStream& stream, int version, StepTableList& list) {
  return readCountFirst(stream, version, list);
}
bool WriteStepTableList(OutStream& stream, int version, const StepTableList& list) {
  return writeCountFirst(stream, version, list);
}
int ReadSetupEntry(InStream& stream, SetupEntry& entry) { return resultOf(readUnversioned(stream, entry)); }
bool WriteSetupEntry(OutStream& stream, const SetupEntry& entry) { return writeUnversioned(stream, entry); }
int ReadSetupList(InStream& stream, SetupList& list) { return resultOf(readUnversioned(stream, list)); }
bool WriteSetupList(OutStream& stream, const SetupList& list) { return writeUnversioned(stream, list); }
int ReadMotionBlock(InStream& stream, int version, MotionBlock& block) {
  return resultOf(readRecord(stream, version, block));
}
bool WriteMotionBlock(OutStream& stream, int version, const MotionBlock& block) {
  return writeRecord(stream, version, block);
}
int ReadProfileRecord(InStream& stream, int version, ProfileRecord& profile) {
  return resultOf(readRecord(stream, version, profile));
}
bool WriteProfileRecord(OutStream& stream, int version, const ProfileRecord& profile) {
  return writeRecord(stream, version, profile);
}
int ReadProfileList(InStream& stream, int version, ProfileList& list) { return readCountFirst(stream, version, list); }
bool WriteProfileList(OutStream& stream, int version, const ProfileList& list) {
  return writeCountFirst(stream, version, list);
}
int ReadPatternItem(InStream& stream, int version, PatternItem& item) {
  return resultOf(readRecord(stream, version, item));
}
bool WritePatternItem(OutStream& stream, int version, const PatternItem& item) {
  return writeRecord(stream, version, item);
}
int ReadPatternItemList(InStream& stream, int version, PatternItemList& list) {
  return readCountFirst(stream, version, list);
}
bool WritePatternItemList(OutStream& stream, int version, const PatternItemList& list) {
  return writeCountFirst(stream, version, list);
}
int ReadWorkEntry(InStream& stream, int version, WorkEntry& entry) {
  return resultOf(readRecord(stream, version, entry));
}
bool WriteWorkEntry(OutStream& stream, int version, const WorkEntry& entry) {
  return writeRecord(stream, version, entry);
}
int ReadMarkEntry(InStream& stream, MarkEntry& entry) { return resultOf(readUnversioned(stream, entry)); }
bool WriteMarkEntry(OutStream& stream, const MarkEntry& entry) { return writeUnversioned(stream, entry); }
int ReadMarkList(InStream& stream, MarkList& list) { return readCountFirst(stream, codec::kUnversioned, list); }
bool WriteMarkList(OutStream& stream, const MarkList& list) {
  return writeCountFirst(stream, codec::kUnversioned, list);
}

}  // namespace oldtorvio
