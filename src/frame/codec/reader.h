// The reader: walks a description over a stream and fills the record.
#pragma once
#include "src/frame/codec/reading.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio::codec {

// The fast path through one small element: its position is a local variable, which stays in a
// register, while the position of the stream would go through memory after every run of fields. It
// handles only success. Anything else (the window ends, a value is refused) is left to the reader,
// which starts the element again.
class FastReader : public Reading<FastReader> {
 public:
  FastReader(const std::byte* at, const std::byte* end, int version) : Reading(version), at_(at), end_(end) {}
  const std::byte* at() const { return at_; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const Fields<Names, T...>& f) {
    constexpr std::size_t kTotal = (wire::ItemOf<T>::kWidth + ...);
    if (static_cast<std::size_t>(end_ - at_) < kTotal) [[unlikely]]
      return missed();
    std::apply([&](auto&... m) { ((wire::ItemOf<T>::load(m, at_), at_ += wire::ItemOf<T>::kWidth), ...); }, f.members);
    return true;
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names&, T (&members)[N], std::size_t count) {
    if (static_cast<std::size_t>(end_ - at_) < sizeof members) [[unlikely]]
      return missed();
    if (count == N) {
      wire::Item<T[N]>::load(members, at_);
    } else {
      for (std::size_t i = 0; i < count; ++i) wire::Item<T>::load(members[i], at_ + i * sizeof(T));
    }
    at_ += count * sizeof(T);
    return true;
  }
  bool text(std::string& to, std::uint64_t size) {
    if (static_cast<std::uint64_t>(end_ - at_) < size) [[unlikely]]
      return missed();
    to.assign(reinterpret_cast<const char*>(at_), static_cast<std::size_t>(size));
    at_ += size;
    return true;
  }

 private:
  // Not as a short read: an optional tail must not forgive that the window ends before the file.
  bool missed() { return refuseSilently(); }

  const std::byte* at_;
  const std::byte* end_;
};

class Reader : public Reading<Reader> {
 public:
  explicit Reader(InStream& in, int version = kUnversioned) : Reading(version), in_(in) {}

  void forgiven() {
    Reading::forgiven();
    in_.noteForgiven();
  }

  // A run of fields is checked once against the bytes that are left; only one that does not fit is read
  // field by field, so that exactly the complete fields are set.
  template <class Names, class... T>
  [[nodiscard]] bool fields(const Fields<Names, T...>& f) {
    constexpr std::size_t kTotal = (wire::ItemOf<T>::kWidth + ...);
    static_assert(kTotal <= InStream::kLargestRun);
    return std::apply(
        [&](auto&... m) {
          const std::byte* from = in_.run(kTotal);
          if (from == nullptr) [[unlikely]]
            return (one(m) && ...);
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
  // Like fields(): checked once, and read entry by entry only if some of it is missing.
  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    auto& all = x.only();
    using Item = wire::ItemOf<decltype(all[0])>;
    const std::byte* from = std::is_void_v<Stored> ? in_.run((last - first + 1) * Item::kWidth) : nullptr;
    if (from == nullptr) return Reading::slice<Stored>(x, first, last);
    for (std::size_t i = first; i <= last; ++i, from += Item::kWidth) Item::load(all[i], from);
    in_.consume((last - first + 1) * Item::kWidth);
    return true;
  }

  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names&, M& field, std::size_t size) {
    static_assert(sizeof(field[0]) == 1);
    const std::byte* from = in_.run(size);
    if (from == nullptr) return endsHere();
    std::memcpy(std::data(field), from, size);
    in_.consume(size);
    return true;
  }
  bool text(std::string& to, std::uint64_t size) { return in_.append(to, size) || endsHere(); }
  bool drop(std::size_t size) { return in_.skip(size) || endsHere(); }
  std::uint64_t left() const { return in_.left(); }
  bool has(std::size_t size) { return in_.run(size) != nullptr; }
  std::uint64_t position() const { return in_.position(); }

  template <class V, class... A>
  std::int64_t appendFast(V& list, std::int64_t count, const A&... more) {
    if constexpr (HasFastPath<typename V::value_type>)
      return readRunFast(list, count, more...);
    else
      return 0;
  }
  template <class R, class... A>
  bool freshElement(R& element, const A&... more) {
    if constexpr (HasFastPath<R>) {
      if (readFast(element, more...)) return true;
      element = R();
    }
    return walk(element, more...);
  }

 private:
  // The list has room for every element that the file can hold.
  template <class V, class... A>
  [[gnu::flatten]] std::int64_t readRunFast(V& list, std::int64_t count, const A&... more) {
    const auto window = in_.window();
    FastReader quick(window.data(), window.data() + window.size(), version());
    const std::byte* after = window.data();
    std::int64_t done = 0;
    for (; done < count; ++done) {
      if (!Layout<typename V::value_type>::describe(quick, list.emplace_back(), more...)) {
        list.pop_back();
        break;
      }
      after = quick.at();
    }
    in_.consume(static_cast<std::size_t>(after - window.data()));
    return done;
  }
  template <class R, class... A>
  [[gnu::flatten]] bool readFast(R& element, const A&... more) {
    const auto window = in_.window();
    FastReader quick(window.data(), window.data() + window.size(), version());
    if (!Layout<R>::describe(quick, element, more...)) return false;
    in_.consume(static_cast<std::size_t>(quick.at() - window.data()));
    return true;
  }
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
  // A read that cannot be met consumes what is left, as a buffered file read does.
  bool endsHere() {
    in_.toEnd();
    return fellShort();
  }

  InStream& in_;
};

// What the record readers return.
inline int resultOf(bool walked) { return walked ? 0 : 1; }

template <class R, class... A>
bool readRecord(InStream& stream, int version, R& record, const A&... more) {
  Reader reader(stream, version);
  return reader.walk(record, more...);
}
template <class R>
bool readUnversioned(InStream& stream, R& record) {
  return Reader(stream).walk(record);
}

}  // namespace oldtorvio::codec
