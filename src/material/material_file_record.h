// Material files, as src/frame/file_record.h describes.
#pragma once
#include "OldTorvIO.h"
#include "src/frame/file_record.h"
#include "src/frame/text/text.h"
#include "src/material/material_io.h"
#include "src/material/material_layout.h"

namespace oldtorvio {

template <>
struct FileRecord<frame::FileKind::material> {
  static constexpr frame::FileKind kKind = frame::FileKind::material;
  using Record = OldMaterial;
  static void setVersion(Record& material, int version) { material.version = static_cast<std::uint16_t>(version); }
  static void prepare(Record& material, int, std::string_view path) { frame::setPath(material.path, path); }
  static std::int64_t read(codec::InStream& stream, int version, Record& material) {
    const int status = ReadParamTable(stream, material.params);
    if (status != 0) return status;
    if (!frame::isParamTableVersion(version)) return ReadOldMaterialBody(stream, version, material);
    takeNameOfTable(material);
    return frame::kDone;
  }
  static bool store(codec::OutStream& stream, int version, Record& material) {
    return WriteParamTable(stream, material.params) &&
           (frame::isParamTableVersion(version) || WriteOldMaterialBody(stream, version, material));
  }
  static std::int64_t walk(auto& io, Record& material) {
    const bool isRead = io.record(FIELDS(material.params));
    if (const int status = paramTableStatus(io, material.params, isRead); status != 0) return status;
    if (!frame::isParamTableVersion(io.version())) return frame::statusOf(io.walk(material));
    return frame::statusOf(io.keep(material, [](auto& read) { takeNameOfTable(read); }));
  }
  static std::int64_t load(const char* path, Record& material) { return LoadOldMaterial(path, &material); }
  static std::int64_t save(const char* path, Record& material, int version) {
    return SaveMaterial(path, material, version);
  }

 private:
  // A file that is only a table has the name of the table, unless that is empty or as long as its field.
  static void takeNameOfTable(Record& material) {
    const std::string_view name = fixedText(material.params.name);
    if (!name.empty() && name.size() < sizeof material.params.name) material.name = name;
  }
};

}  // namespace oldtorvio
