#include "src/records/record_io.h"

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::resultOf;
using codec::Writer;
using codec::writeRecord;

void InitOldTool(OldTool& tool) { tool = OldTool(); }

int ReadOldTool(InStream& stream, int version, bool pathIsStored, OldTool& tool) {
  return resultOf(readRecord(stream, version, tool, pathIsStored));
}
bool WriteOldTool(OutStream& stream, int version, bool pathIsStored, const OldTool& tool) {
  return writeRecord(stream, version, tool, pathIsStored);
}

DEFINE_RECORD_CODEC(ToolStation, ToolStation)
DEFINE_RECORD_CODEC(ToolStationList, ToolStationList)
void AddToolStation(ToolStationList& list, const ToolStation& station) { list.stations.push_back(station); }
void AddTool(ToolStationList& list, const OldTool& tool) { list.tools.push_back(tool); }

DEFINE_RECORD_CODEC(Shape, Shape)
DEFINE_RECORD_CODEC(ShapeList, ShapeList)
int ReadShapeTrailer(InStream& stream, ShapeList& list) {
  Reader io(stream);
  return resultOf(codec::describeShapeTrailer(io, list));
}
bool WriteShapeTrailer(OutStream& stream, const ShapeList& list) {
  Writer io(stream);
  return codec::describeShapeTrailer(io, list);
}

DEFINE_RECORD_CODEC(ProcessSlot, ProcessSlot)
DEFINE_RECORD_CODEC(StepTable, StepTable)
DEFINE_LIST_CODEC(StepTableList, StepTableList, codec::kCountFirst)
DEFINE_UNVERSIONED_CODEC(SetupEntry, SetupEntry)
DEFINE_UNVERSIONED_CODEC(SetupList, SetupList)
DEFINE_RECORD_CODEC(MotionBlock, MotionBlock)
DEFINE_RECORD_CODEC(ProfileRecord, ProfileRecord)
DEFINE_LIST_CODEC(ProfileList, ProfileList, codec::kCountFirst)
DEFINE_RECORD_CODEC(PatternItem, PatternItem)
DEFINE_LIST_CODEC(PatternItemList, PatternItemList, codec::kCountFirst)
DEFINE_RECORD_CODEC(WorkEntry, WorkEntry)
DEFINE_UNVERSIONED_CODEC(MarkEntry, MarkEntry)
DEFINE_UNVERSIONED_LIST_CODEC(MarkList, MarkList, codec::kCountFirst)

}  // namespace oldtorvio
