// Part and group part files, as src/frame/file_record.h describes.
#pragma once
#include "OldTorvIO.h"
#include "src/frame/file_record.h"
#include "src/frame/text/text.h"
#include "src/part/old_part_layout.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"

namespace oldtorvio {

template <>
struct FileRecord<frame::FileKind::part> {
  static constexpr frame::FileKind kKind = frame::FileKind::part;
  using Record = TorvPart;
  static void setVersion(Record& part, int version) { part.version = version; }
  static void prepare(Record& part, int version, std::string_view path) {
    if (!frame::isPartVersion(version)) return;
    part.optionWord = 0;
    part.optionCount = 1;
    part.optionReal = 0.05;
    part.optionValue = 0;
    part.optionText[0] = '\0';
    frame::setPath(part.partFullDosName, path);
  }
  static std::int64_t read(codec::InStream& stream, int version, Record& part) {
    return ReadPartFile(stream, version, part);
  }
  static bool store(codec::OutStream& stream, int version, const Record& part) {
    return WritePartBody(stream, version, false, part);
  }
  static std::int64_t walk(auto& io, Record& part) { return frame::statusOf(codec::walkPartFile(io, part)); }
  static std::int64_t load(const char* path, Record& part) { return LoadOldPart(path, &part); }
  static std::int64_t save(const char* path, Record& part, int version) { return SavePart(path, part, version); }
};

template <>
struct FileRecord<frame::FileKind::groupPart> {
  static constexpr frame::FileKind kKind = frame::FileKind::groupPart;
  using Record = SheetPartList;
  static void setVersion(Record&, int) {}
  static std::int64_t read(codec::InStream& stream, int version, Record& list) {
    return ReadGroupPart(stream, version, list);
  }
  static bool store(codec::OutStream& stream, int version, const Record& list) {
    return WriteGroupPart(stream, version, list);
  }
  static std::int64_t walk(auto& io, Record& list) {
    codec::GroupPartFile<std::vector<TorvPart>> file{list.parts};
    return frame::statusOf(io.walk(file));
  }
  static std::int64_t load(const char* path, Record& list) { return LoadGroupPart(path, &list); }
  static std::int64_t save(const char* path, Record& list, int version) { return SaveGroupPart(path, list, version); }
};

}  // namespace oldtorvio
