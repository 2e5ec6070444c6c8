// The other side of each comparison: what the walker of the benchmarks reads from the same bytes, and whether two
// records are equal. It is compiled without the fuzzer's instrumentation, so that only the reader counts as coverage.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>

#include "OldTorvIO/records.h"

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

// Each as the reader of its kind, of the bytes after the version word (a table's before it).
Walked walkPartBody(Bytes body, int version, bool embedded, bool stopEarly, oldtorvio::TorvPart& part);
Walked walkOldestPart(Bytes body, int version, oldtorvio::TorvPart& part);
Walked walkGroupPart(Bytes body, int version, oldtorvio::SheetPartList& list);
Walked walkSpecialTool(Bytes body, int version, oldtorvio::OldSpecialTool& tool);
Walked walkToolInventory(Bytes body, int version, oldtorvio::OldToolInventory& inventory);
Walked walkMacro(Bytes body, int version, oldtorvio::OldMacro& macro);
Walked walkParamTable(Bytes body, oldtorvio::ParamTable& table);
Walked walkMaterialBody(Bytes body, int version, oldtorvio::OldMaterial& material);
Walked walkMachine(Bytes body, int version, oldtorvio::ShapeList* shapes, oldtorvio::OldMachine& machine);
Walked walkSheet(Bytes body, int version, oldtorvio::OldSheet& sheet);

}  // namespace fuzzing
