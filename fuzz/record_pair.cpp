#include "fuzz/record_pair.h"

#include "src/frame/codec/reader.h"
#include "src/machine/machine_layout.h"
#include "src/material/material_layout.h"
#include "src/part/old_part_layout.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_layout.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_layout.h"
#include "tests/support/fread_walker.h"
#include "torvio/values/equal.h"

using namespace oldtorvio;

namespace fuzzing {
namespace {

// walk(walker) returns a status.
template <class Walk>
Walked walked(Bytes body, int version, Walk&& walk) {
  bench::MemoryReader walker(body, version);
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

Walked walkPartBody(Bytes body, int version, bool embedded, bool stopEarly, TorvPart& part) {
  return walkedWhole(body, version, part, PartForm{embedded ? PartForm::sheet : PartForm::file, 0, stopEarly});
}
Walked walkOldestPart(Bytes body, int version, TorvPart& part) {
  return walked(body, version, [&](auto& walker) { return codec::resultOf(codec::walkOldestPart(walker, part)); });
}
Walked walkGroupPart(Bytes body, int version, SheetPartList& list) {
  codec::GroupPartFile<std::vector<TorvPart>> file{list.parts};
  return walkedWhole(body, version, file);
}
Walked walkSpecialTool(Bytes body, int version, OldSpecialTool& tool) { return walkedWhole(body, version, tool); }
Walked walkToolInventory(Bytes body, int version, OldToolInventory& inventory) {
  return walkedWhole(body, version, inventory);
}
Walked walkMacro(Bytes body, int version, OldMacro& macro) { return walkedWhole(body, version, macro); }
Walked walkParamTable(Bytes body, ParamTable& table) {
  return walked(body, 0, [&](auto& walker) { return readParamTable(walker, table); });
}
Walked walkMaterialBody(Bytes body, int version, OldMaterial& material) { return walkedWhole(body, version, material); }
Walked walkMachine(Bytes body, int version, ShapeList* shapes, OldMachine& machine) {
  return walkedWhole(body, version, machine, MachineForm<ShapeList>{shapes});
}
Walked walkSheet(Bytes body, int version, OldSheet& sheet) { return walkedWhole(body, version, sheet); }

}  // namespace fuzzing
