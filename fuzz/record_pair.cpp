#include "fuzz/record_pair.h"

#include "bench/fread_walker.h"
#include "fuzz/record_contents.h"
#include "src/frame/codec/reader.h"
#include "src/part/old_part_layout.h"

using namespace oldtorvio;

namespace fuzzing {
namespace {

// walk(walker) gives a status.
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

bool equalContents(ShapeList& one, ShapeList& other, Extent extent) { return haveEqualContents(one, other, extent); }
bool equalContents(TorvPart& one, TorvPart& other, Extent extent) { return haveEqualContents(one, other, extent); }
bool equalContents(SheetPartList& one, SheetPartList& other, Extent extent) {
  return haveEqualContents(one, other, extent);
}
bool equalContents(OldSpecialTool& one, OldSpecialTool& other, Extent extent) {
  return haveEqualContents(one, other, extent);
}
bool equalContents(OldToolInventory& one, OldToolInventory& other, Extent extent) {
  return haveEqualContents(one, other, extent);
}
bool equalContents(OldMacro& one, OldMacro& other, Extent extent) { return haveEqualContents(one, other, extent); }
bool equalContents(ParamTable& one, ParamTable& other, Extent extent) { return haveEqualContents(one, other, extent); }
bool equalContents(OldMaterial& one, OldMaterial& other, Extent extent) { return haveEqualContents(one, other, extent); }
bool equalContents(OldMachine& one, OldMachine& other, Extent extent) { return haveEqualContents(one, other, extent); }
bool equalContents(OldSheet& one, OldSheet& other, Extent extent) { return haveEqualContents(one, other, extent); }

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
