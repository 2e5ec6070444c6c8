// The baseline that reads as simple programs do: one fread a field, over the same descriptions.
#pragma once
#include <cstdio>
#include <string>

#include "src/frame/platform.h"
#include "src/frame/reading.h"

namespace bench {

namespace frame = oldtorvio::frame;

class FreadReader : public frame::Reading<FreadReader> {
 public:
  FreadReader(std::FILE* file, int version)
      : Reading(version), file_(file), size_(frame::sizeOfFile(file).value_or(0)), left_(size_) {}

  template <class Names, class... T>
  [[nodiscard]] bool fields(const frame::Fields<Names, T...>& f) {
    return std::apply([&](auto&... m) { return (one(m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names&, std::size_t, M& member) {
    return one(member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names&, T (&members)[N], std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      if (!one(members[i])) return false;
    return true;
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names&, std::size_t, M& member) {
    return one(member);
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names&, M& field, std::size_t size) {
    return take(std::data(field), size);
  }
  bool text(std::string& to, std::uint64_t size) {
    if (size > left_) return fellShort();
    to.resize(static_cast<std::size_t>(size));
    return take(to.data(), to.size());
  }
  bool drop(std::size_t size) {
    char byte = 0;
    for (; size > 0; --size)
      if (!take(&byte, 1)) return false;
    return true;
  }
  std::uint64_t left() const { return left_; }
  bool has(std::size_t size) const { return size <= left_; }
  std::uint64_t position() const { return size_ - left_; }

 private:
  template <class M>
  bool one(M& member) {
    using Item = frame::wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      for (auto& number : member)
        if (!one(number)) return false;
      return true;
    } else {
      std::byte stored[Item::kWidth];
      if (!take(stored, Item::kWidth)) return false;
      Item::load(member, stored);
      return true;
    }
  }
  bool take(void* to, std::size_t size) {
    if (size == 0 || std::fread(to, size, 1, file_) != 1) return fellShort();
    left_ -= size;
    return true;
  }

  std::FILE* file_;
  std::uint64_t size_;
  std::uint64_t left_;
};

}  // namespace bench
