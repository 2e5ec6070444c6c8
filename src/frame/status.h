// The statuses of loads, saves and file queries.
#pragma once
#include <cstdint>

namespace oldtorvio::frame {

// Part of the published interface: never renumber.
inline constexpr std::int64_t kDone = 0;
inline constexpr std::int64_t kDamaged = 1;  // short read, or a stored value that is refused
inline constexpr std::int64_t kWrongVersion = -1;
inline constexpr std::int64_t kNotOpened = -2;  // cannot be opened, or a required pointer is null
inline constexpr std::int64_t kNotSaved = -2;

}  // namespace oldtorvio::frame
