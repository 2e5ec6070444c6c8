// Sheet files, as src/frame/file_record.h describes.
#pragma once
#include "OldTorvIO.h"
#include "src/frame/file_record.h"
#include "src/sheet/sheet_io.h"
#include "src/sheet/sheet_layout.h"

namespace oldtorvio {

template <>
struct FileRecord<frame::FileKind::sheet> {
  static constexpr frame::FileKind kKind = frame::FileKind::sheet;
  using Record = OldSheet;
  static void setVersion(Record& sheet, int version) { sheet.version = static_cast<std::uint16_t>(version); }
  static std::int64_t read(codec::InStream& stream, int version, Record& sheet) {
    return ReadOldSheet(stream, version, sheet);
  }
  static bool store(codec::OutStream& stream, int version, Record& sheet) {
    return WriteOldSheet(stream, version, sheet);
  }
  static std::int64_t walk(auto& io, Record& sheet) { return frame::statusOf(io.walk(sheet)); }
  static std::int64_t load(const char* path, Record& sheet) { return LoadOldSheet(path, &sheet); }
  static std::int64_t save(const char* path, Record& sheet, int version) {
    return SaveOldSheet(path, &sheet, static_cast<std::uint16_t>(version));
  }
};

}  // namespace oldtorvio
