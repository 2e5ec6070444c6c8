// The reader: walks a description over a stream and fills the record.
#pragma once
#include "src/frame/reading.h"
#include "src/frame/stream.h"

namespace oldtorvio::frame {

class Reader : public Reading<Reader> {
 public:
  Reader(InStream& in, int version) : Reading(version), in_(in) {}

  // A run of fields is checked once against what is there; only one that does not fit goes field by
  // field, so that exactly the whole fields are set.
  template <class Names, class... T>
  [[nodiscard]] bool fields(const Fields<Names, T...>& f) {
    constexpr std::size_t kTotal = (wire::ItemOf<T>::kWidth + ...);
    static_assert(kTotal <= InStream::kLargestRun);
    return std::apply(
        [&](auto&... m) {
          const std::byte* from = in_.run(kTotal);
          if (from == nullptr) [[unlikely]] return (one(m) && ...);
          ((wire::ItemOf<T>::load(m, from), from += wire::ItemOf<T>::kWidth), ...);
          in_.consume(kTotal);
          return true;
        },
        f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names&, std::size_t, M& member) {
    return one(member);
  }
  template <class Names, class T>
  [[nodiscard]] bool numbers(const Names&, T* members, std::size_t count) {
    const std::byte* from = in_.run(count * sizeof(T));
    if (from == nullptr) [[unlikely]] {
      for (std::size_t i = 0; i < count; ++i)
        if (!one(members[i])) return false;
      return true;
    }
    for (std::size_t i = 0; i < count; ++i) wire::Item<T>::load(members[i], from + i * sizeof(T));
    in_.consume(count * sizeof(T));
    return true;
  }

  template <class Names, std::size_t N>
  [[nodiscard]] bool sizedField(const Names&, char (&field)[N], std::size_t size) {
    const std::byte* from = in_.run(size);
    if (from == nullptr) return endsHere();
    std::memcpy(field, from, size);
    in_.consume(size);
    return true;
  }
  bool text(std::string& to, std::uint64_t size) { return in_.append(to, size) || endsHere(); }
  bool drop(std::size_t size) { return in_.skip(size) || endsHere(); }
  std::uint64_t left() const { return in_.left(); }

 private:
  template <class M>
  [[gnu::noinline, gnu::cold]] bool one(M& member) {
    using Item = wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      for (auto& number : member)
        if (!one(number)) return false;
      return true;
    } else {
      const std::byte* from = in_.run(Item::kWidth);
      if (from == nullptr) return endsHere();
      Item::load(member, from);
      in_.consume(Item::kWidth);
      return true;
    }
  }
  // A read that cannot be met eats what is left, as a buffered file read does.
  bool endsHere() {
    in_.toEnd();
    return fellShort();
  }

  InStream& in_;
};

// What the record readers answer with.
inline int resultOf(bool walked) { return walked ? 0 : 1; }

template <class R, class... A>
bool readRecord(InStream& stream, int version, R& record, const A&... more) {
  Reader reader(stream, version);
  return Layout<R>::describe(reader, record, more...);
}

}  // namespace oldtorvio::frame
