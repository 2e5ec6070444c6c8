// The records of all kinds of files: see src/frame/file_record.h.
#pragma once
#include <cstddef>
#include <type_traits>

#include "src/machine/machine_file_record.h"
#include "src/material/material_file_record.h"
#include "src/part/part_file_records.h"
#include "src/sheet/sheet_file_record.h"
#include "src/tooling/tooling_file_records.h"

namespace oldtorvio {

// Calls use(FileRecord<kind>()).
template <std::size_t kFirst = 0, class Use>
decltype(auto) withFileRecord(frame::FileKind kind, Use&& use) {
  constexpr auto kKind = static_cast<frame::FileKind>(kFirst);
  if constexpr (kFirst + 1 < frame::kFileKindCount)
    if (kind != kKind) return withFileRecord<kFirst + 1>(kind, use);
  return use(FileRecord<kKind>());
}

// The kind of file that has that record.
template <class Record, std::size_t kFirst = 0>
constexpr frame::FileKind kindOfRecord() {
  constexpr auto kKind = static_cast<frame::FileKind>(kFirst);
  if constexpr (std::is_same_v<Record, typename FileRecord<kKind>::Record>)
    return kKind;
  else
    return kindOfRecord<Record, kFirst + 1>();
}

}  // namespace oldtorvio
