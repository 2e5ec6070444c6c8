// Readers and writers of material files: parameter tables, the tables of a material, its body.
//
// Results as in src/records/record_io.h.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

// A table begins with a version word of its own. -1 for a version without a layout, which changes only table.version.
int ReadParamTable(InStream& stream, ParamTable& table);
bool WriteParamTable(OutStream& stream, const ParamTable& table);

int ReadSettingList(InStream& stream, int version, SettingList& list);
bool WriteSettingList(OutStream& stream, int version, const SettingList& list);
int ReadMaterialToolSetTable(InStream& stream, int version, MaterialToolSetTable& table);
bool WriteMaterialToolSetTable(OutStream& stream, int version, const MaterialToolSetTable& table);
int ReadMaterialPalette(InStream& stream, int version, MaterialPalette& palette);
bool WriteMaterialPalette(OutStream& stream, int version, const MaterialPalette& palette);
int ReadMaterialStageTable(InStream& stream, int version, MaterialStageTable& table);
bool WriteMaterialStageTable(OutStream& stream, int version, const MaterialStageTable& table);
int ReadMaterialEntryList(InStream& stream, int version, std::vector<MaterialEntry>& list);
bool WriteMaterialEntryList(OutStream& stream, int version, const std::vector<MaterialEntry>& list);
int ReadMaterialRuleLists(InStream& stream, int version, MaterialRuleLists& rules);
bool WriteMaterialRuleLists(OutStream& stream, int version, const MaterialRuleLists& rules);
int ReadMaterialHeadRecord(InStream& stream, int version, MaterialHeadRecord& head);
bool WriteMaterialHeadRecord(OutStream& stream, int version, const MaterialHeadRecord& head);

// Everything but path, version and params. The writer stores the choices as they are, and then reduces those above
// their limit in the record.
int ReadOldMaterialBody(InStream& stream, int version, OldMaterial& material);
bool WriteOldMaterialBody(OutStream& stream, int version, OldMaterial& material);

// For samples and tests: no export writes material files. -1 for a version that LoadOldMaterial refuses. Versions 52,
// 60, 500, 501 and 502 store only params, with params.version as the version word.
std::int64_t SaveMaterial(const char* path, OldMaterial& material, int version);

}  // namespace oldtorvio
