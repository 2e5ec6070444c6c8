#include "fuzz/record_pair.h"

#include "src/file_records.h"
#include "src/frame/codec/reader.h"
#include "tests/support/field_reader.h"
#include "torvio/values/equal.h"

using namespace oldtorvio;

namespace fuzzing {
namespace {

// walk(walker) returns a status.
template <class Walk>
Walked walked(Bytes body, int version, Walk&& walk) {
  testing_support::MemoryReader walker(body, version);
  const int status = walk(walker);
  return {status, walker.left(), walker.forgave()};
}

template <class Record, class... More>
Walked walkedWhole(Bytes body, int version, Record& record, const More&... more) {
  return walked(body, version, [&](auto& walker) { return codec::resultOf(walker.walk(record, more...)); });
}

}  // namespace

std::size_t turnOf(Bytes file) {
  auto turn = static_cast<std::uint32_t>(file.size());
  for (const std::byte byte : file) turn = turn * 31 + std::to_integer<std::uint32_t>(byte);
  return turn >> 8U;
}

template <class Record>
bool equalContents(const Record& one, const Record& other) {
  return values::equalContents(one, other);
}
template bool equalContents(const ShapeList&, const ShapeList&);
template bool equalContents(const TorvPart&, const TorvPart&);
template bool equalContents(const SheetPartList&, const SheetPartList&);
template bool equalContents(const OldSpecialTool&, const OldSpecialTool&);
template bool equalContents(const OldToolInventory&, const OldToolInventory&);
template bool equalContents(const OldMacro&, const OldMacro&);
template bool equalContents(const ParamTable&, const ParamTable&);
template bool equalContents(const OldMaterial&, const OldMaterial&);
template bool equalContents(const OldMachine&, const OldMachine&);
template bool equalContents(const OldSheet&, const OldSheet&);

template <frame::FileKind kKind, class Record>
Walked walkFile(Bytes body, int version, Record& record) {
  return walked(body, version, [&](auto& walker) { return static_cast<int>(FileRecord<kKind>::walk(walker, record)); });
}
template Walked walkFile<frame::FileKind::part>(Bytes, int, TorvPart&);
template Walked walkFile<frame::FileKind::groupPart>(Bytes, int, SheetPartList&);
template Walked walkFile<frame::FileKind::specialTool>(Bytes, int, OldSpecialTool&);
template Walked walkFile<frame::FileKind::toolInventory>(Bytes, int, OldToolInventory&);
template Walked walkFile<frame::FileKind::macro>(Bytes, int, OldMacro&);
template Walked walkFile<frame::FileKind::sheet>(Bytes, int, OldSheet&);

Walked walkPartBody(Bytes body, int version, bool embedded, bool stopEarly, TorvPart& part) {
  return walkedWhole(body, version, part, PartForm{embedded ? PartForm::sheet : PartForm::file, 0, stopEarly});
}
Walked walkParamTable(Bytes body, ParamTable& table) {
  return walked(body, 0, [&](auto& walker) { return readParamTable(walker, table); });
}
Walked walkMaterialBody(Bytes body, int version, OldMaterial& material) { return walkedWhole(body, version, material); }
Walked walkMachine(Bytes body, int version, ShapeList* shapes, OldMachine& machine) {
  return walkedWhole(body, version, machine, MachineForm<ShapeList>{shapes});
}

}  // namespace fuzzing
