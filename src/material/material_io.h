// Readers and writers of material files: parameter tables, the tables of a material, its body.
//
// Results as in src/records/record_io.h.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

// A table begins with a version word of its own. -1 for a version without a layout, which changes only table.version.
int ReadParamTable(InStream& stream, ParamTable& table);
bool WriteParamTable(OutStream& stream, const ParamTable& table);

DECLARE_RECORD_CODEC(SettingList, SettingList);
DECLARE_RECORD_CODEC(MaterialToolSetTable, MaterialToolSetTable);
DECLARE_RECORD_CODEC(MaterialPalette, MaterialPalette);
DECLARE_RECORD_CODEC(MaterialStageTable, MaterialStageTable);
DECLARE_RECORD_CODEC(MaterialEntryList, std::vector<MaterialEntry>);
DECLARE_RECORD_CODEC(MaterialRuleLists, MaterialRuleLists);
DECLARE_RECORD_CODEC(MaterialHeadRecord, MaterialHeadRecord);

// Everything but path, version and params. The writer stores the choices as they are, and then reduces those above
// their limit in the record.
int ReadOldMaterialBody(InStream& stream, int version, OldMaterial& material);
bool WriteOldMaterialBody(OutStream& stream, int version, OldMaterial& material);

// For samples and tests: no export writes material files. -1 for a version that LoadOldMaterial refuses. Versions 52,
// 60, 500, 501 and 502 store only params, with params.version as the version word.
std::int64_t SaveMaterial(const char* path, OldMaterial& material, int version);

}  // namespace oldtorvio
