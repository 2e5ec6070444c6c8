// Tool inventory files.
#pragma once
#include "OldTorvIO/tool_inventory.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

// Results as in src/records/record_io.h.
DECLARE_RECORD_CODEC(InventoryEntry, InventoryEntry);
// The file after its version word.
DECLARE_RECORD_CODEC(ToolInventory, OldToolInventory);

// For samples and tests: no export writes inventories. -1 for a version that LoadOldToolInventory refuses.
std::int64_t SaveToolInventory(const char* path, const OldToolInventory& inventory, int version);

}  // namespace oldtorvio
