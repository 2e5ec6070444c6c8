// The other side of each comparison: what a walker that takes one field after the other makes of the same bytes, and
// whether two records are equal. It is compiled without the fuzzer's instrumentation, so that coverage counts only
// the reader.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

#include "OldTorvIO/records.h"
#include "src/frame/file_kinds.h"

namespace fuzzing {

using Bytes = std::span<const std::byte>;

// A number that follows from the bytes: what is chosen by it is chosen again when a find is repeated.
std::size_t turnOf(Bytes file);

// Whether two records of a file kind, or two of the records that kinds share, are equal in every member.
template <class Record>
bool equalContents(const Record& one, const Record& other);

struct Walked {
  int status = 0;
  std::uint64_t left = 0;  // bytes that it did not come to
  bool forgave = false;    // whether anything failed that the format tolerates
};

// The bytes after the version word of a file, as FileRecord<kKind>::walk takes them.
template <oldtorvio::frame::FileKind kKind, class Record>
Walked walkFile(Bytes body, int version, Record& record);

// The same of what a file is only a part of; a table begins with its version word.
Walked walkPartBody(Bytes body, int version, bool embedded, bool stopEarly, oldtorvio::TorvPart& part);
Walked walkParamTable(Bytes body, oldtorvio::ParamTable& table);
Walked walkMaterialBody(Bytes body, int version, oldtorvio::OldMaterial& material);
Walked walkMachine(Bytes body, int version, oldtorvio::ShapeList* shapes, oldtorvio::OldMachine& machine);

}  // namespace fuzzing
