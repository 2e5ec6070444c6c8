#include "src/material/material_io.h"

#include "src/material/material_file_record.h"
#include "src/material/material_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::resultOf;
using codec::writeRecord;
using codec::writeUnversioned;

int ReadParamTable(InStream& stream, ParamTable& table) {
  Reader io(stream);
  return readParamTable(io, table);
}
bool WriteParamTable(OutStream& stream, const ParamTable& table) { return writeUnversioned(stream, table); }

DEFINE_LIST_CODEC(SettingList, SettingList, codec::kReplaced)
DEFINE_RECORD_CODEC(MaterialToolSetTable, MaterialToolSetTable)
DEFINE_RECORD_CODEC(MaterialPalette, MaterialPalette)
DEFINE_RECORD_CODEC(MaterialStageTable, MaterialStageTable)
DEFINE_LIST_CODEC(MaterialEntryList, std::vector<MaterialEntry>, codec::kReplaced)
DEFINE_RECORD_CODEC(MaterialRuleLists, MaterialRuleLists)
DEFINE_RECORD_CODEC(MaterialHeadRecord, MaterialHeadRecord)

int ReadOldMaterialBody(InStream& stream, int version, OldMaterial& material) {
  return resultOf(readRecord(stream, version, material));
}
bool WriteOldMaterialBody(OutStream& stream, int version, OldMaterial& material) {
  return writeRecord(stream, version, material);
}

std::int64_t SaveMaterial(const char* path, OldMaterial& material, int version) {
  return frame::saveRecord<frame::FileKind::material>(path, material, version);
}

}  // namespace oldtorvio
