// Tool inventory files.
#pragma once
#include "OldTorvIO/tool_inventory.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

// Results as in src/records/record_io.h.
int ReadInventoryEntry(InStream& stream, int version, InventoryEntry& entry);
bool WriteInventoryEntry(OutStream& stream, int version, const InventoryEntry& entry);
// The file after its version word.
int ReadToolInventory(InStream& stream, int version, OldToolInventory& inventory);
bool WriteToolInventory(OutStream& stream, int version, const OldToolInventory& inventory);

// For samples and tests: no export writes inventories. -1 for a version that LoadOldToolInventory refuses.
std::int64_t SaveToolInventory(const char* path, const OldToolInventory& inventory, int version);

}  // namespace oldtorvio
