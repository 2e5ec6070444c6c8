// A range of the bytes of a file.
#pragma once
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace oldtorvio::explain {

// Bytes of a file, the first and the last included.
struct OffsetRange {
  std::uint64_t first = 0;
  std::uint64_t last = std::numeric_limits<std::uint64_t>::max();

  // "18", "0x12", "0x12..0x40", "18..", "..64". Nothing for any other text, or if the last is below the first.
  static std::optional<OffsetRange> parsed(std::string_view text);
  // The complete text as a number, decimal or, after "0x", hexadecimal.
  static std::optional<std::uint64_t> numberIn(std::string_view text);

  bool overlaps(std::uint64_t offset, std::uint64_t size) const {
    return offset <= last && (size == 0 ? offset : offset + size - 1) >= first;
  }
};

}  // namespace oldtorvio::explain
