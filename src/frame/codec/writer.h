// The writer: walks a description over a record and stores it. Only beforeWrite() changes the record.
#pragma once
#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "src/frame/codec/describe.h"
#include "src/frame/codec/stream.h"
#include "src/frame/end_process.h"

namespace oldtorvio::codec {

// Room that is already allocated. Its position is a local variable of the walker, which stays in a register,
// while the position of the stream would go through memory after every run of fields.
class LocalRoom {
 public:
  explicit LocalRoom(std::span<std::byte> all) : at_(all.data()), end_(all.data() + all.size()) {}
  std::byte* at() const { return at_; }
  std::byte* room(std::size_t size) {
    if (static_cast<std::size_t>(end_ - at_) < size) [[unlikely]]
      return nullptr;
    std::byte* const from = at_;
    at_ += size;
    return from;
  }

 private:
  std::byte* at_;
  std::byte* end_;
};

template <class Room>  // OutStream&, or LocalRoom for one small element
class WriterInto : public RecordWalker<WriterInto<Room>> {
 public:
  explicit WriterInto(Room out, int version = kUnversioned) : RecordWalker<WriterInto>(version), out_(out) {}

  const std::remove_reference_t<Room>& out() const { return out_; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const Fields<Names, T...>& f) {
    std::byte* to = out_.room((wire::ItemOf<T>::kWidth + ...));
    if (to == nullptr) [[unlikely]]
      return false;
    std::apply([&](auto&... m) { ((wire::ItemOf<T>::store(m, to), to += wire::ItemOf<T>::kWidth), ...); }, f.members);
    return true;
  }
  template <class X, class... D>
  void absent(const X&, const Otherwise<D...>&) {}

  template <class X>
  [[nodiscard]] bool leading(std::int64_t count, const X& x) {
    if constexpr (std::is_array_v<std::remove_reference_t<std::tuple_element_t<0, decltype(x.members)>>>) {
      return count < 1 || row(x.only(), static_cast<std::size_t>(count));
    } else {
      std::int64_t i = 0;
      const auto one = [&](auto& m) { return i++ >= count || numbers(&m, 1); };
      return std::apply([&](auto&... m) { return (one(m) && ...); }, x.members);
    }
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int32_t size) {
    const auto& field = x.only();
    static_assert(sizeof(field[0]) == 1);
    if (size < 1 || static_cast<std::size_t>(size) > sizeof field) return false;
    return bytes(std::data(field), static_cast<std::size_t>(size));
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x) {
    const std::string& text = x.only();
    std::int32_t length = 0;
    if (!countFor(text, length) || !fields(FIELDS(length))) return false;
    for (std::size_t i = 0; i < text.size();) {
      const std::size_t step = std::min<std::size_t>(text.size() - i, InStream::kLargestRun);
      if (!bytes(text.data() + i, step)) return false;
      i += step;
    }
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x, std::int32_t longest) {
    return x.only().size() <= static_cast<std::size_t>(longest) && lengthText(x);
  }
  // The text up to its NUL; one that does not fit is refused, never truncated.
  template <std::size_t Width, class X>
  [[nodiscard]] bool textItem(const X& x) {
    const std::string& text = x.only();
    const std::size_t length = std::min(text.find('\0'), text.size());
    return length <= Width && bytes(text.data(), length) && reserved(Width - length);
  }
  [[nodiscard]] bool reserved(std::size_t size) {
    std::byte* to = out_.room(size);
    if (to == nullptr) return false;
    std::memset(to, 0, size);
    return true;
  }
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t size, const Fn& chain) {
    const std::uint64_t from = out_.position();
    return chain() && reserved(size - static_cast<std::size_t>(out_.position() - from));
  }

  template <class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    auto& all = x.only();
    using Item = wire::ItemOf<decltype(all[0])>;
    std::byte* to = out_.room((last - first + 1) * Item::kWidth);
    if (to == nullptr) return false;
    for (std::size_t i = first; i <= last; ++i, to += Item::kWidth) Item::store(all[i], to);
    return true;
  }

  template <class C>
  [[nodiscard]] bool require(const C& condition) {
    return condition.holds;
  }
  template <class R>
  static const R& unchanged(const R& record) {
    return record;
  }
  template <class Read, class Written>
  [[nodiscard]] bool differs(const Read&, const Written& written) {
    return written();
  }
  template <class X>
  [[nodiscard]] bool continueOnFailure(const X& x) {
    (void)this->nested(x);
    return true;
  }
  template <class Read>
  [[nodiscard]] bool onlyRead(const Read&) {
    return true;
  }
  template <class T>
  constexpr T either(T, T forWriters) const {
    return forWriters;
  }
  template <class R, class Fn>
  [[nodiscard]] bool beforeWrite(R& record, const char*, const Fn& fn) {
    fn(record);
    return true;
  }

  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    return Layout<std::remove_const_t<R>>::describe(*this, record, more...);
  }

  // A list too long for its count cannot be stored: -1 then makes every verb that takes it fail.
  template <class V>
  std::int32_t countOf(const V& list) const {
    return list.size() > kMostElements ? -1 : static_cast<std::int32_t>(list.size());
  }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule rule, const A&... more) {
    if constexpr (Rule::kCount == CountFrom::one) {
      return !x.only().empty() && walk(x.only().front(), more...);
    } else {
      if (!storeCount(x, rule)) return false;
      if constexpr (Rule::kFailing == Failing::inverted)
        return writeInverted(x.only(), more...);
      else if constexpr (std::tuple_size_v<decltype(x.members)> == 2)
        return writeInTurns(std::get<0>(x.members), std::get<1>(x.members), more...);
      else if constexpr (requires { x.only().row(0); })
        return writeColumns(x.only());
      else
        return writeElements(x.only(), more...);
    }
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    for (std::int64_t i = 0; i < count; ++i)
      if (!row(static_cast<std::size_t>(i))) return false;
    return true;
  }
  template <class X, class M>
  [[nodiscard]] bool trailer(const X& x, M member) {
    const auto& list = x.only();
    std::byte* to = nullptr;
    for (std::size_t i = 0; i < list.size(); ++i) {
      using Number = std::remove_cvref_t<decltype(list[i].*member)>;
      constexpr std::size_t kAtOnce = InStream::kLargestRun / sizeof(Number);
      if (i % kAtOnce == 0) to = out_.room(std::min(list.size() - i, kAtOnce) * sizeof(Number));
      if (to == nullptr) return false;
      wire::Item<Number>::store(list[i].*member, to + i % kAtOnce * sizeof(Number));
    }
    return true;
  }

 private:
  static constexpr std::size_t kMostElements = std::numeric_limits<std::int32_t>::max();

  bool bytes(const void* from, std::size_t size) {
    std::byte* to = out_.room(size);
    if (to == nullptr) return false;
    if (size > 0) std::memcpy(to, from, size);
    return true;
  }
  template <class X, class Rule>
  bool storeCount(const X& x, Rule rule) {
    if constexpr (Rule::kCount == CountFrom::caller) {
      return rule.count >= 0;  // it has been stored
    } else {
      const auto& list = std::get<0>(x.members);
      if constexpr (std::tuple_size_v<decltype(x.members)> == 2)
        if (list.size() != std::get<1>(x.members).size()) return false;
      if constexpr (requires { list.sameLengths(); })
        if (!list.sameLengths()) return false;
      std::int32_t count = 0;
      return countFor(list, count) && fields(FIELDS(count));
    }
  }
  template <class V, class... A>
  bool writeElements(const V& list, const A&... more) {
    for (const auto& element : list)
      if (!writeElement(element, more...)) return false;
    return true;
  }
  template <class V, class W, class... A>
  bool writeInTurns(const V& first, const W& second, const A&... more) {
    for (std::size_t i = 0; i < first.size(); ++i)
      if (!walk(first[i]) || !walk(second[i], more...)) return false;
    return true;
  }
  template <class View>
  bool writeColumns(const View& view) {
    for (std::size_t i = 0; i < view.size(); ++i)
      if (!writeElement(view.row(i))) return false;
    return true;
  }
  template <class V, class... A>
  bool writeInverted(const V& list, const A&... more) {
    if (list.empty()) return true;
    // It begins with the second element and has none left after the last.
    for (std::size_t i = 1;; ++i) {
      if (i == list.size()) EndProcess();
      if (walk(list[i], more...) || out_.failed()) return false;
    }
  }
  // An element that may not fit the allocated room is stored again the slow way.
  template <class R, class... A>
  bool writeElement(const R& element, const A&... more) {
    if constexpr (HasFastPath<R> && std::is_reference_v<Room>)
      if (writeFast(element, more...)) return true;
    return walk(element, more...);
  }
  template <class R, class... A>
  [[gnu::flatten]] bool writeFast(const R& element, const A&... more) {
    const std::span<std::byte> free = out_.free();
    WriterInto<LocalRoom> quick(LocalRoom(free), this->version());
    if (!Layout<R>::describe(quick, element, more...)) return false;
    out_.take(static_cast<std::size_t>(quick.out().at() - free.data()));
    return true;
  }
  template <class V>
  bool countFor(const V& list, std::int32_t& count) const {
    count = countOf(list);
    return count >= 0;
  }
  template <class T, std::size_t N>
  bool row(const T (&members)[N], std::size_t count) {
    if (count != N) return numbers(members, count);
    std::byte* to = out_.room(sizeof members);
    if (to == nullptr) return false;
    wire::Item<T[N]>::store(members, to);
    return true;
  }
  template <class T>
  bool numbers(const T* members, std::size_t count) {
    std::byte* to = out_.room(count * sizeof(T));
    if (to == nullptr) return false;
    for (std::size_t i = 0; i < count; ++i) wire::Item<T>::store(members[i], to + i * sizeof(T));
    return true;
  }

  Room out_;
};

using Writer = WriterInto<OutStream&>;

template <class R, class... A>
bool writeRecord(OutStream& stream, int version, R&& record, const A&... more) {
  Writer writer(stream, version);
  return writer.walk(record, more...);
}
template <class R>
bool writeUnversioned(OutStream& stream, R&& record) {
  return Writer(stream).walk(record);
}

}  // namespace oldtorvio::codec
