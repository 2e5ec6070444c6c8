#include "src/material/material_io.h"

#include "src/frame/entry.h"
#include "src/material/material_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::resultOf;
using codec::Writer;
using codec::writeRecord;
using codec::writeUnversioned;

namespace {

template <class List>
int readList(InStream& stream, int version, List& list) {
  Reader io(stream, version);
  return resultOf(io.list(FIELDS(list), codec::kReplaced));
}

template <class List>
bool writeList(OutStream& stream, int version, const List& list) {
  Writer io(stream, version);
  return io.list(FIELDS(list), codec::kReplaced);
}

}  // namespace

int ReadParamTable(InStream& stream, ParamTable& table) {
  Reader io(stream);
  return readParamTable(io, table);
}
bool WriteParamTable(OutStream& stream, const ParamTable& table) { return writeUnversioned(stream, table); }

int ReadSettingList(InStream& stream, int version, SettingList& list) { return readList(stream, version, list); }
bool WriteSettingList(OutStream& stream, int version, const SettingList& list) {
  return writeList(stream, version, list);
}
int ReadMaterialToolSetTable(InStream& stream, int version, MaterialToolSetTable& table) {
  return resultOf(readRecord(stream, version, table));
}
bool WriteMaterialToolSetTable(OutStream& stream, int version, const MaterialToolSetTable& table) {
  return writeRecord(stream, version, table);
}
int ReadMaterialPalette(InStream& stream, int version, MaterialPalette& palette) {
  return resultOf(readRecord(stream, version, palette));
}
bool WriteMaterialPalette(OutStream& stream, int version, const MaterialPalette& palette) {
  return writeRecord(stream, version, palette);
}
int ReadMaterialStageTable(InStream& stream, int version, MaterialStageTable& table) {
  return resultOf(readRecord(stream, version, table));
}
bool WriteMaterialStageTable(OutStream& stream, int version, const MaterialStageTable& table) {
  return writeRecord(stream, version, table);
}
int ReadMaterialEntryList(InStream& stream, int version, std::vector<MaterialEntry>& list) {
  return readList(stream, version, list);
}
bool WriteMaterialEntryList(OutStream& stream, int version, const std::vector<MaterialEntry>& list) {
  return writeList(stream, version, list);
}
int ReadMaterialRuleLists(InStream& stream, int version, MaterialRuleLists& rules) {
  return resultOf(readRecord(stream, version, rules));
}
bool WriteMaterialRuleLists(OutStream& stream, int version, const MaterialRuleLists& rules) {
  return writeRecord(stream, version, rules);
}
int ReadMaterialHeadRecord(InStream& stream, int version, MaterialHeadRecord& head) {
  return resultOf(readRecord(stream, version, head));
}
bool WriteMaterialHeadRecord(OutStream& stream, int version, const MaterialHeadRecord& head) {
  return writeRecord(stream, version, head);
}

int ReadOldMaterialBody(InStream& stream, int version, OldMaterial& material) {
  return resultOf(readRecord(stream, version, material));
}
bool WriteOldMaterialBody(OutStream& stream, int version, OldMaterial& material) {
  return writeRecord(stream, version, material);
}

std::int64_t SaveMaterial(const char* path, OldMaterial& material, int version) {
  if (frame::isParamTableVersion(version))
    return frame::saveUnversioned(path, [&](OutStream& stream) { return WriteParamTable(stream, material.params); });
  return frame::saveFile(
      path, version, [](int v) { return frame::isMaterialVersion(v); },
      [&](OutStream& stream) {
        return WriteParamTable(stream, material.params) && WriteOldMaterialBody(stream, version, material);
      });
}

}  // namespace oldtorvio
