// The loads and saves of record_bytes.h, compiled once for all that link the companion: they take long to compile.
#pragma once
#include "torvio/values/record_bytes.h"

#define OLDTORVIO_RECORD_OF_KIND(PREFIX, KIND)                                                                      \
  PREFIX template LoadedRecord<frame::FileKind::KIND> loadRecord<frame::FileKind::KIND>(std::span<const std::byte>, \
                                                                                        std::string_view);          \
  PREFIX template std::int64_t storeRecord<frame::FileKind::KIND>(codec::OutStream&,                                \
                                                                  FileRecord<frame::FileKind::KIND>::Record&, int); \
  PREFIX template SavedRecord saveRecord<frame::FileKind::KIND>(FileRecord<frame::FileKind::KIND>::Record&, int);
#define OLDTORVIO_RECORDS_OF_ALL_KINDS(PREFIX)    \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, part)          \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, groupPart)     \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, specialTool)   \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, machine)       \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, material)      \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, toolInventory) \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, macro)         \
  OLDTORVIO_RECORD_OF_KIND(PREFIX, sheet)

namespace oldtorvio::values {

OLDTORVIO_RECORDS_OF_ALL_KINDS(extern)

}  // namespace oldtorvio::values
