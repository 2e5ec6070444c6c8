#include "src/tooling/inventory_io.h"

#include "src/frame/entry.h"
#include "src/tooling/inventory_layout.h"

namespace oldtorvio {

DEFINE_RECORD_CODEC(InventoryEntry, InventoryEntry)
DEFINE_RECORD_CODEC(ToolInventory, OldToolInventory)

std::int64_t SaveToolInventory(const char* path, const OldToolInventory& inventory, int version) {
  return frame::saveFile(path, version, frame::isToolInventoryVersion,
                         [&](OutStream& stream) { return WriteToolInventory(stream, version, inventory); });
}

}  // namespace oldtorvio
