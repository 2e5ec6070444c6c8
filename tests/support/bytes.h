// Hand-written stored bytes, field by field, and streams over them.
#pragma once
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "src/frame/codec/stream.h"

namespace testing_support {

class Bytes {
 public:
  Bytes& u8(std::uint8_t v) { return little(v, 1); }
  Bytes& i8(int v) { return little(static_cast<std::uint8_t>(v), 1); }
  Bytes& u16(std::uint16_t v) { return little(v, 2); }
  Bytes& i16(int v) { return little(static_cast<std::uint16_t>(v), 2); }
  Bytes& u32(std::uint32_t v) { return little(v, 4); }
  Bytes& i32(std::int64_t v) { return little(static_cast<std::uint32_t>(v), 4); }
  Bytes& f32(float v) { return little(std::bit_cast<std::uint32_t>(v), 4); }
  Bytes& f64(double v) { return little(std::bit_cast<std::uint64_t>(v), 8); }
  Bytes& zeros(std::size_t n) { return fill(n, 0); }
  Bytes& fill(std::size_t n, std::uint8_t v) {
    data_.insert(data_.end(), n, static_cast<std::byte>(v));
    return *this;
  }
  Bytes& raw(std::initializer_list<int> all) {
    for (int one : all) u8(static_cast<std::uint8_t>(one));
    return *this;
  }
  // A fixed text field: the text, then NULs up to the width.
  Bytes& text(std::size_t width, std::string_view t) {
    for (char c : t.substr(0, width)) u8(static_cast<std::uint8_t>(c));
    return zeros(width - std::min(width, t.size()));
  }
  // A length text: i32 length, then the bytes.
  Bytes& lengthText(std::string_view t) { return i32(static_cast<std::int64_t>(t.size())).text(t.size(), t); }
  Bytes& add(const Bytes& more) {
    data_.insert(data_.end(), more.data_.begin(), more.data_.end());
    return *this;
  }

  // The first n bytes.
  Bytes cut(std::size_t n) const {
    Bytes b;
    b.data_.assign(data_.begin(), data_.begin() + static_cast<std::ptrdiff_t>(std::min(n, data_.size())));
    return b;
  }
  std::size_t size() const { return data_.size(); }
  std::span<const std::byte> span() const { return data_; }
  bool operator==(const Bytes&) const = default;

  static Bytes of(std::span<const std::byte> s) {
    Bytes b;
    b.data_.assign(s.begin(), s.end());
    return b;
  }
  friend std::ostream& operator<<(std::ostream& to, const Bytes& b) {
    static const char* digits = "0123456789abcdef";
    to << b.size() << " bytes:";
    for (std::byte one : b.data_) {
      const auto v = std::to_integer<unsigned>(one);
      to << ' ' << digits[v >> 4U] << digits[v & 15U];
    }
    return to;
  }

 private:
  Bytes& little(std::uint64_t v, int width) {
    for (int i = 0; i < width; ++i) data_.push_back(static_cast<std::byte>((v >> (8 * i)) & 0xFFU));
    return *this;
  }
  std::vector<std::byte> data_;
};

// The bytes of a field, or of an array of fields, in the order of files on any host, and a field out of them.
template <class T>
Bytes bytesOf(const T& field) {
  Bytes all;
  if constexpr (std::is_arithmetic_v<T>) {
    std::byte one[sizeof field];
    std::memcpy(one, &field, sizeof field);
    if constexpr (std::endian::native == std::endian::big) std::reverse(std::begin(one), std::end(one));
    all.add(Bytes::of(one));
  } else {
    for (const auto& one : field) all.add(bytesOf(one));
  }
  return all;
}
template <class T>
void setFromBytes(T& field, std::span<const std::byte> bytes) {
  if constexpr (std::is_arithmetic_v<T>) {
    std::byte one[sizeof field];
    std::copy_n(bytes.begin(), sizeof field, one);
    if constexpr (std::endian::native == std::endian::big) std::reverse(std::begin(one), std::end(one));
    std::memcpy(&field, one, sizeof field);
  } else {
    for (auto& one : field) {
      setFromBytes(one, bytes);
      bytes = bytes.subspan(sizeof one);
    }
  }
}

// read([&](InStream& s) { return ReadMarkList(s, list); }, bytes): the reader's result; optionally
// how many bytes it consumed.
template <class Fn>
auto readFrom(const Bytes& bytes, Fn&& fn, std::size_t* consumed = nullptr) {
  oldtorvio::codec::InStream stream(bytes.span());
  auto result = fn(stream);
  if (consumed != nullptr) *consumed = static_cast<std::size_t>(stream.position());
  return result;
}

// written([&](OutStream& s) { return WriteMarkList(s, list); }): what the writer stored; optionally
// its result.
template <class Fn>
Bytes written(Fn&& fn, bool* ok = nullptr) {
  oldtorvio::codec::OutStream stream;
  const bool result = fn(stream);
  if (ok != nullptr) *ok = result;
  return Bytes::of(stream.bytes());
}

}  // namespace testing_support
