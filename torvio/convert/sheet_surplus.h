// Bytes that a save of a machine or a sheet below version 152 stores although no load expects them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::convert {

struct Surplus {
  std::size_t offset = 0, size = 0;
};

// Where a save in that version has put them; nothing if it stores none.
std::optional<Surplus> surplusOfSave(std::span<const std::byte> bytes, explain::FileKind kind, int version);

// Where they are in the file of a machine or sheet, if it has them: without them its last field ends the file.
std::optional<Surplus> surplusOf(std::span<const std::byte> bytes, explain::FileKind kind,
                                 const explain::FileReport& report);

// The file without these bytes.
std::vector<std::byte> without(std::span<const std::byte> bytes, const Surplus& surplus);

}  // namespace oldtorvio::convert
