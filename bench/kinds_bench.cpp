// Compares loads of machines, materials and tool inventories with their floor and with one fread per field, and queries
// with the load of their file.
#include "OldTorvIO.h"
#include "bench/kind_files.h"
#include "bench/suites.h"
#include "src/machine/machine_io.h"
#include "src/machine/machine_layout.h"
#include "src/material/material_io.h"
#include "src/material/material_layout.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/inventory_layout.h"

namespace {

using namespace oldtorvio;
using bench::freadLoad;
using bench::registerLoads;
using bench::registerQuery;
using bench::require;
using bench::Source;

// The records of both readers must be stored as the same bytes.
template <class Record, class Write>
void requireSame(Record& library, Record& fread, Write write) {
  codec::OutStream one, other;
  require(write(one, library) && write(other, fread), "a record that cannot be written");
  require(std::ranges::equal(one.bytes(), other.bytes()), "loads that differ");
}

bool freadMaterial(const std::string& path, OldMaterial& to) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  testing_support::FreadReader io(file, bench::kVersion);
  std::int16_t version = 0;
  const bool ok = io.fields(FIELDS(version)) && io.record(FIELDS(to.params)) && io.walk(to);
  std::fclose(file);
  return ok;
}
bool freadMachine(const std::string& path, OldMachine& to) { return freadLoad(path, to, MachineForm<ShapeList>{}); }
bool freadInventory(const std::string& path, OldToolInventory& to) { return freadLoad(path, to); }

}  // namespace

void bench::registerMachinesAndTools() {
  const auto machine = fullMachine(100);
  static const std::string machinePath = folder().path("machine");
  require(SaveMachine(machinePath.c_str(), *machine, kVersion) == 0, "a machine that cannot be saved");
  static const std::string materialPath = folder().path("material");
  require(SaveMaterial(materialPath.c_str(), machine->material, kVersion) == 0, "a material that cannot be saved");
  static const OldToolInventory inventory = inventoryOf5000();
  static const std::string inventoryPath = folder().path("inventory");
  require(SaveToolInventory(inventoryPath.c_str(), inventory, kVersion) == 0, "an inventory that cannot be saved");

  static OldMachine likeMachine, freadLikeMachine;
  require(LoadOldMachine(machinePath.c_str(), &likeMachine) == 0, "a machine that cannot be loaded");
  require(freadMachine(machinePath, freadLikeMachine), "a machine that fread cannot load");
  requireSame(likeMachine, freadLikeMachine,
              [](auto& out, OldMachine& m) { return WriteOldMachine(out, kVersion, nullptr, m, false); });
  static OldMaterial likeMaterial, freadLikeMaterial;
  require(LoadOldMaterial(materialPath.c_str(), &likeMaterial) == 0, "a material that cannot be loaded");
  require(freadMaterial(materialPath, freadLikeMaterial), "a material that fread cannot load");
  requireSame(likeMaterial, freadLikeMaterial,
              [](auto& out, OldMaterial& m) { return WriteOldMaterialBody(out, kVersion, m); });
  OldToolInventory freadLikeInventory;
  require(freadInventory(inventoryPath, freadLikeInventory), "an inventory that fread cannot load");
  OldToolInventory likeInventory = inventory;
  requireSame(likeInventory, freadLikeInventory,
              [](auto& out, OldToolInventory& v) { return WriteToolInventory(out, kVersion, v); });

  registerLoads("LoadMachine", machinePath, likeMachine, LoadOldMachine, freadMachine, fillMachine);
  registerLoads("LoadMaterial", materialPath, likeMaterial, LoadOldMaterial, freadMaterial,
                [](Source& from, const OldMaterial& like, OldMaterial& to) {
                  fillParams(from, to.params);
                  fillMaterial(from, like, to);
                });
  registerLoads("LoadInventory", inventoryPath, inventory, LoadOldToolInventory, freadInventory, fillInventory);

  registerQuery("GetMachineDatasForQD", "LoadMachine", machinePath, [](const char* path) {
    float out[12];
    return GetMachineDatasForQD(path, &out[0], &out[1], &out[2], &out[3], &out[4], &out[5], &out[6], &out[7], &out[8],
                                &out[9], &out[10], &out[11]);
  });
  registerQuery("LoadOldMachineInformation", "LoadMachine", machinePath, [](const char* path) {
    MachineInformation information;
    return LoadOldMachineInformation(path, &information);
  });
  registerQuery("GetOldVLMQMachineName", "LoadMachine", machinePath, [](const char* path) {
    char texts[4][257];
    std::uint32_t kind = 0;
    return GetOldVLMQMachineName(path, texts[0], &kind, texts[1], texts[2], texts[3]);
  });
  registerQuery("LoadOldToolInventoryForCount", "LoadInventory", inventoryPath, [](const char* path) {
    std::uint32_t count = 0;
    return LoadOldToolInventoryForCount(path, &count);
  });
}
