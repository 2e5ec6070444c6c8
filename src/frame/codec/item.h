// The stored forms of single fields: little-endian whatever the host, floats as bits.
//
// Nothing here knows about versions, names or records.
#pragma once
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

namespace oldtorvio::codec {

// A member stored with another width than it has in memory: as<std::int16_t>(record.kind).
template <class Stored, class T>
struct As {
  T& member;
};
template <class Stored, class T>
constexpr As<Stored, T> as(T& member) {
  return {member};
}

// Several members stored as one item: all of them are read, or none.
template <class... T>
struct Block {
  std::tuple<T&...> members;
};
template <class... T>
constexpr Block<T...> block(T&... members) {
  return {{members...}};
}

// A number that, if stored as 0, leaves the member unchanged.
template <class T>
struct NonZero {
  T& member;
  mutable std::remove_const_t<T> stored = 0;  // set by a load
};
template <class T>
constexpr NonZero<T> nonZero(T& member) {
  return {member};
}

template <class T>
concept Number = std::is_arithmetic_v<T> && !std::is_same_v<std::remove_cv_t<T>, bool>;

namespace wire {

template <std::size_t N>
struct BitsOf;
template <>
struct BitsOf<1> {
  using type = std::uint8_t;
};
template <>
struct BitsOf<2> {
  using type = std::uint16_t;
};
template <>
struct BitsOf<4> {
  using type = std::uint32_t;
};
template <>
struct BitsOf<8> {
  using type = std::uint64_t;
};

template <class Bits>
Bits littleEndian(Bits bits) {
  if constexpr (std::endian::native == std::endian::little || sizeof(Bits) == 1) {
    return bits;
  } else {
    Bits swapped = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i, bits = static_cast<Bits>(bits >> 8U))
      swapped = static_cast<Bits>((swapped << 8U) | (bits & 0xFFU));
    return swapped;
  }
}

// Item<T>: its width in the file, and how to load and store it. A text or a byte block is one item; a row
// of numbers is one item for each number.
template <class T>
struct Item;

template <Number T>
struct Item<T> {
  using Bits = typename BitsOf<sizeof(T)>::type;
  static constexpr std::size_t kWidth = sizeof(T);
  static constexpr bool kIsRow = false;
  static void load(T& member, const std::byte* from) {
    Bits bits;
    std::memcpy(&bits, from, sizeof bits);
    bits = littleEndian(bits);
    std::memcpy(&member, &bits, sizeof bits);
  }
  static void store(const T& member, std::byte* to) {
    Bits bits;
    std::memcpy(&bits, &member, sizeof bits);
    bits = littleEndian(bits);
    std::memcpy(to, &bits, sizeof bits);
  }
};

template <Number T, std::size_t N>
struct Item<T[N]> {
  static constexpr std::size_t kWidth = sizeof(T) * N;
  static constexpr bool kIsRow = sizeof(T) > 1;
  static void load(T (&members)[N], const std::byte* from) {
    if constexpr (sizeof(T) == 1 || std::endian::native == std::endian::little)
      std::memcpy(members, from, kWidth);
    else
      for (T& one : members) Item<T>::load(one, from), from += sizeof(T);
  }
  static void store(const T (&members)[N], std::byte* to) {
    if constexpr (sizeof(T) == 1 || std::endian::native == std::endian::little)
      std::memcpy(to, members, kWidth);
    else
      for (const T& one : members) Item<T>::store(one, to), to += sizeof(T);
  }
};

template <class Stored, class T>
struct Item<As<Stored, T>> {
  static constexpr std::size_t kWidth = sizeof(Stored);
  static constexpr bool kIsRow = false;
  static void load(const As<Stored, T>& as, const std::byte* from) {
    Stored stored;
    Item<Stored>::load(stored, from);
    as.member = static_cast<T>(stored);
  }
  static void store(const As<Stored, T>& as, std::byte* to) { Item<Stored>::store(static_cast<Stored>(as.member), to); }
};

template <class T>
struct Item<NonZero<T>> {
  using Stored = std::remove_const_t<T>;
  static constexpr std::size_t kWidth = sizeof(T);
  static constexpr bool kIsRow = false;
  static void load(const NonZero<T>& number, const std::byte* from) {
    Item<Stored>::load(number.stored, from);
    if (number.stored != 0) number.member = number.stored;
  }
  static void store(const NonZero<T>& number, std::byte* to) { Item<Stored>::store(number.member, to); }
};

template <class... T>
struct Item<Block<T...>> {
  static constexpr std::size_t kWidth = (Item<std::remove_const_t<T>>::kWidth + ...);
  static constexpr bool kIsRow = false;
  static void load(const Block<T...>& block, const std::byte* from) {
    std::apply(
        [&](auto&... m) {
          ((Item<std::remove_cvref_t<T>>::load(m, from), from += Item<std::remove_cvref_t<T>>::kWidth), ...);
        },
        block.members);
  }
  static void store(const Block<T...>& block, std::byte* to) {
    std::apply(
        [&](auto&... m) {
          ((Item<std::remove_cvref_t<T>>::store(m, to), to += Item<std::remove_cvref_t<T>>::kWidth), ...);
        },
        block.members);
  }
};

template <class T>
using ItemOf = Item<std::remove_cvref_t<T>>;

}  // namespace wire
}  // namespace oldtorvio::codec
