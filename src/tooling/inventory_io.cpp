#include "src/tooling/inventory_io.h"

#include "src/frame/entry.h"
#include "src/tooling/inventory_layout.h"

namespace oldtorvio {

using codec::readRecord;
using codec::resultOf;
using codec::writeRecord;

int ReadInventoryEntry(InStream& stream, int version, InventoryEntry& entry) {
  return resultOf(readRecord(stream, version, entry));
}
bool WriteInventoryEntry(OutStream& stream, int version, const InventoryEntry& entry) {
  return writeRecord(stream, version, entry);
}
int ReadToolInventory(InStream& stream, int version, OldToolInventory& inventory) {
  return resultOf(readRecord(stream, version, inventory));
}
bool WriteToolInventory(OutStream& stream, int version, const OldToolInventory& inventory) {
  return writeRecord(stream, version, inventory);
}

std::int64_t SaveToolInventory(const char* path, const OldToolInventory& inventory, int version) {
  return frame::saveFile(path, version, frame::isToolInventoryVersion,
                         [&](OutStream& stream) { return WriteToolInventory(stream, version, inventory); });
}

}  // namespace oldtorvio
