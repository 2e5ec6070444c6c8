#include "src/part/part_io.h"

#include "src/part/old_part_layout.h"
#include "src/part/part_file_records.h"
#include "src/part/part_layout.h"

namespace oldtorvio {

using codec::Reader;
using codec::readRecord;
using codec::resultOf;
using codec::Writer;
using codec::writeRecord;

int ReadPattern(InStream& stream, int version, bool embedded, Pattern& pattern) {
  return resultOf(readRecord(stream, version, pattern, embedded));
}
bool WritePattern(OutStream& stream, int version, const Pattern& pattern) {
  // The writer stores the head as it is in both forms.
  return writeRecord(stream, version, pattern, true);
}
int ReadEmbeddedPatternList(InStream& stream, int version, bool embedded, PatternList& list) {
  Reader io(stream, version);
  return resultOf(io.list(FIELDS(list), codec::kAppended, embedded));
}
bool WriteEmbeddedPatternList(OutStream& stream, int version, const PatternList& list) {
  Writer io(stream, version);
  return io.list(FIELDS(list), codec::kAppended, true);
}

DEFINE_RECORD_CODEC(PlacedShapeList, PlacedShapeList)
DEFINE_CHECKED_LIST_CODEC(NestShapeGroups, std::vector<ShapeGroup>, codec::kAppended)
DEFINE_CHECKED_LIST_CODEC(ContourGroups, std::vector<ContourGroup>, codec::kClearedFirst)
DEFINE_CHECKED_LIST_CODEC(BindingSets, std::vector<BindingSet>, codec::kReplaced)

int ReadPartBody(InStream& stream, int version, bool embedded, TorvPart& part, bool stopEarly) {
  const PartForm form{embedded ? PartForm::sheet : PartForm::file, 0, stopEarly};
  return resultOf(readRecord(stream, version, part, form));
}
int ReadPartFile(InStream& stream, int version, TorvPart& part) {
  Reader io(stream, version);
  return resultOf(codec::walkPartFile(io, part));
}
bool WritePartBody(OutStream& stream, int version, bool embedded, const TorvPart& part) {
  return writeRecord(stream, version, part, PartForm{embedded ? PartForm::sheet : PartForm::file});
}

int ReadGroupPart(InStream& stream, int version, SheetPartList& list) {
  codec::GroupPartFile<std::vector<TorvPart>> file{list.parts};
  return resultOf(readRecord(stream, version, file));
}

bool WriteGroupPart(OutStream& stream, int version, const SheetPartList& list, std::int32_t nameBlockSize) {
  if (list.parts.empty()) return false;
  const codec::GroupPartFile<const std::vector<TorvPart>> file{
      list.parts, static_cast<std::int32_t>(list.parts.size() - 1), nameBlockSize};
  return writeRecord(stream, version, file);
}

std::int64_t SavePart(const char* path, const TorvPart& part, int version) {
  return frame::saveRecord<frame::FileKind::part>(path, part, version);
}

std::int64_t SaveGroupPart(const char* path, const SheetPartList& list, int version, std::int32_t nameBlockSize) {
  return frame::saveFile(frame::FileKind::groupPart, path, version,
                         [&](OutStream& stream) { return WriteGroupPart(stream, version, list, nameBlockSize); });
}

}  // namespace oldtorvio
