// The loads and saves of record_bytes.h, compiled once for all that link the companion: they take long to compile.
#pragma once
#include "torvio/values/record_bytes.h"

#define OLDTORVIO_RECORD_OF_KIND(PREFIX, KIND)                                                                      \
  PREFIX template LoadedRecord<frame::FileKind::KIND> loadRecord<frame::FileKind::KIND>(std::span<const std::byte>, \
                                                                                        std::string_view);          \
  PREFIX template std::int64_t storeRecord<frame::FileKind::KIND>(codec::OutStream&,                                \
                                                                  FileRecord<frame::FileKind::KIND>::Record&, int); \
  PREFIX template SavedRecord saveRecord<frame::FileKind::KIND>(FileRecord<frame::FileKind::KIND>::Record&, int);

namespace oldtorvio::values {

#define OLDTORVIO_DECLARE_RECORD(KIND) OLDTORVIO_RECORD_OF_KIND(extern, KIND)
OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_DECLARE_RECORD)
#undef OLDTORVIO_DECLARE_RECORD

}  // namespace oldtorvio::values
