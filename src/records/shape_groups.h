// How shapes form groups: a head and, after it, its members.
#pragma once
#include <cstdint>

namespace oldtorvio {

inline constexpr std::int8_t kGroupHead = 7;        // the type of a head
inline constexpr std::uint32_t kGroupMember = 128;  // a flag of members

}  // namespace oldtorvio
