#include "src/tooling/inventory_io.h"

#include "src/tooling/inventory_layout.h"
#include "src/tooling/tooling_file_records.h"

namespace oldtorvio {

DEFINE_RECORD_CODEC(InventoryEntry, InventoryEntry)
DEFINE_RECORD_CODEC(ToolInventory, OldToolInventory)

std::int64_t SaveToolInventory(const char* path, const OldToolInventory& inventory, int version) {
  return frame::saveRecord<frame::FileKind::toolInventory>(path, inventory, version);
}

}  // namespace oldtorvio
