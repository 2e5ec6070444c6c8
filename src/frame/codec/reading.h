// The verbs of everything that reads. A walker derives from Reading<Self> and supplies
//   fields(FIELDS)        reads fields, one by one as far as they are there
//   fieldOf(names, i, m)  reads one field, which has the name at position i
//   indexed(names, i, m)  reads one field, entry i of the array of that name
//   numbers(names, row, n)  reads the first n numbers of an array; after a short read, keeps the complete ones
//   sizedField(names, field, n)  reads the first n bytes of a fixed field, as one item
//   text(string, n)       appends n bytes or nothing
//   drop(n)               skips reserved bytes
//   left()                bytes up to the end of the file
//   has(n)                whether n more bytes are left
//   position()            bytes from the beginning of the file
// and may hide the hooks below, to follow the walk.
#pragma once
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "OldTorvIO/fixed_text.h"
#include "src/frame/codec/describe.h"

namespace oldtorvio::codec {

template <class Self>
class Reading : public Gates<Self>, public ReadingSide<Self> {
 public:
  using Gates<Self>::Gates;

  Stop stop() const { return stop_; }
  // Whether anything failed that the format tolerates.
  bool forgave() const { return forgave_; }

  template <class X, class... D>
  void absent(const X& x, const Otherwise<D...>& defaults) {
    assign(x.members, defaults.values, std::index_sequence_for<D...>());
  }

  template <class X>
  [[nodiscard]] bool leading(std::int64_t count, const X& x) {
    if constexpr (std::is_array_v<std::remove_reference_t<std::tuple_element_t<0, decltype(x.members)>>>) {
      auto& row = x.only();
      return count < 1 || self().numbers(x.names, row, static_cast<std::size_t>(count));
    } else {
      std::size_t i = 0;
      const auto one = [&](auto& m) {
        return static_cast<std::int64_t>(i) >= count || self().fieldOf(x.names, i++, m);
      };
      return std::apply([&](auto&... m) { return (one(m) && ...); }, x.members);
    }
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int32_t size) {
    auto& field = x.only();
    if (size < 1 || static_cast<std::size_t>(size) > sizeof field) return refuseValue(x.names, size);
    return self().sizedField(x.names, field, static_cast<std::size_t>(size));
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x) {
    std::int32_t length = 0;
    self().enter(x.names);
    bool ok = self().fields(FIELDS(length));
    if (ok && length > 0) {
      std::string text;
      ok = self().text(text, static_cast<std::uint64_t>(length));
      if (ok) {
        text.resize(std::min(text.find('\0'), text.size()));
        x.only() = std::move(text);
      }
    }
    self().leave();
    return ok;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x, std::int32_t longest) {
    std::int32_t length = 0;
    self().enter(x.names);
    bool ok = self().fields(FIELDS(length)) && require(atMost(FIELDS(length), longest));
    std::string text;
    ok = ok && (length < 1 || self().text(text, static_cast<std::uint64_t>(length)));
    if (ok) {
      text.resize(std::min(text.find('\0'), text.size()));
      x.only() = std::move(text);
    }
    self().leave();
    return ok;
  }
  template <std::size_t Width, class X>
  [[nodiscard]] bool textItem(const X& x) {
    char text[Width];
    if (!self().sizedField(x.names, text, Width)) return false;
    x.only().assign(text, std::find(text, text + Width, '\0'));
    return true;
  }
  [[nodiscard]] bool reserved(std::size_t size) { return self().drop(size); }
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t size, const Fn& chain) {
    const std::uint64_t from = self().position();
    return chain() && self().drop(size - static_cast<std::size_t>(self().position() - from));
  }

  // Each entry is stored as a Stored, or by default in its own type.
  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    for (std::size_t i = first; i <= last; ++i) {
      if constexpr (std::is_void_v<Stored>) {
        if (!self().indexed(x.names, i, x.only()[i])) return false;
      } else {
        auto one = as<Stored>(x.only()[i]);
        if (!self().indexed(x.names, i, one)) return false;
      }
    }
    return true;
  }

  template <class C>
  [[nodiscard]] bool require(const C& condition) {
    return condition.holds || refuse(condition);
  }
  template <class R>
  static R& unchanged(R& record) {
    return record;
  }
  template <class R, class Fn>
  [[nodiscard]] bool afterRead(R& record, const char*, const Fn& fn) {
    fn(record);
    return true;
  }
  template <class R, class Fn>
  [[nodiscard]] bool keep(R& record, const Fn& fn) {
    fn(record);
    return true;
  }
  template <class X>
  [[nodiscard]] bool optionalTail(const X& x) {
    if (this->nested(x)) return true;
    if (forgive()) stop_ = Stop::ended;
    return false;
  }
  template <class X>
  [[nodiscard]] bool endOnFailure(const X& x) {
    if (this->nested(x)) return true;
    self().forgiven();
    stop_ = Stop::ended;
    return false;
  }
  template <class X>
  [[nodiscard]] bool continueOnFailure(const X& x) {
    if (!this->nested(x)) forgiveAll();
    return true;
  }

  // One record. It is also complete if an optional tail ended it.
  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    if (Layout<R>::describe(self(), record, more...)) return true;
    if (stop_ != Stop::ended) return false;
    stop_ = Stop::none;
    return true;
  }
  template <class X, class... A>
  [[nodiscard]] bool record(const X& x, const A&... more) {
    self().enter(x.names);
    const bool ok = walk(x.only(), more...);
    self().leave();
    return ok;
  }
  template <class V>
  std::int32_t countOf(const V&) const {
    return 0;
  }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule rule, const A&... more) {
    if constexpr (Rule::kClear == Clear::beforeCount) clearLists(x);
    std::int64_t count = rule.count;
    if constexpr (Rule::kCount == CountFrom::file) {
      std::int32_t stored = 0;
      if (!readCount(x, stored)) return false;
      count = stored;
    }
    if constexpr (Rule::kClear == Clear::always) clearLists(x);
    if constexpr (Rule::kClear == Clear::unlessZero)
      if (count != 0) clearLists(x);
    if constexpr (Rule::kClear == Clear::ifPositive)
      if (count > 0) clearLists(x);
    if constexpr (std::tuple_size_v<decltype(x.members)> == 2)
      return readInTurns(count, x, more...);
    else if constexpr (requires { x.only().row(0); })
      return readColumns(count, x);
    else if constexpr (Rule::kFailing == Failing::dropped)
      return readElements(count, x, more...);
    else if constexpr (Rule::kFailing == Failing::reused)
      return readReused(count, x, more...);
    else
      return readFailing<Rule::kFailing == Failing::inverted>(count, x, more...);
  }
  template <class X>
  [[nodiscard]] bool clear(const X& x) {
    clearLists(x);
    return true;
  }
  template <class X, class Fn>
  [[nodiscard]] bool element(const X& x, std::size_t index, const Fn& chain) {
    self().enter(x.names, static_cast<std::int64_t>(index));
    const bool ok = chain();
    self().leave();
    return ok;
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    bool ok = true;
    for (std::int64_t i = 0; ok && i < count; ++i) {
      self().atRow(i);
      ok = row(static_cast<std::size_t>(i));
    }
    return ok;
  }
  template <class X, class M>
  [[nodiscard]] bool trailer(const X& x, M member) {
    std::int64_t i = 0;
    for (auto& element : x.only()) {
      self().enter(x.names, i++);
      const bool ok = trailerOf(element.*member);
      self().leave();
      if (!ok) return false;
    }
    return true;
  }

  // Hooks: where the walk is. `list` is the position of a list in a FIELDS(...) that names several.
  template <class Names>
  void enter(const Names&, std::int64_t /*index*/ = -1, std::size_t /*list*/ = 0) {}
  void leave() {}
  void atRow(std::int64_t) {}
  // A walker may have a faster way through elements: appends as many of `count` as it can that way.
  template <class V, class... A>
  std::int64_t appendFast(V&, std::int64_t /*count*/, const A&...) {
    return 0;
  }
  // The same for one element, which has its default values.
  template <class R, class... A>
  bool freshElement(R& element, const A&... more) {
    return walk(element, more...);
  }
  template <class Names>
  void refused(const Names&, std::int64_t /*value*/) {}
  void refusedHere() {}
  void forgiven() { forgave_ = true; }

 protected:
  using Gates<Self>::self;

  bool fellShort() {
    stop_ = Stop::shortRead;
    return false;
  }
  bool refuseSilently() {
    stop_ = Stop::refused;
    return false;
  }
  template <class Names, Test kTest, std::size_t kCount>
  bool refuse(const Condition<Names, kTest, kCount>& condition) {
    return refuseValue(condition.names, condition.value);
  }
  bool refuse(const CustomCondition&) {
    self().refusedHere();
    return refuseSilently();
  }
  bool forgive() {
    if (stop_ != Stop::shortRead) return false;
    stop_ = Stop::none;
    self().forgiven();
    return true;
  }
  template <class Names>
  bool refuseValue(const Names& names, std::int64_t value) {
    self().refused(names, value);
    return refuseSilently();
  }

 private:
  // How many elements may be kept that consume no bytes of the file.
  static constexpr int kMostEmptyElements = 1024;

  template <class X>
  static void clearLists(const X& x) {
    std::apply([](auto&... lists) { (lists.clear(), ...); }, x.members);
  }
  template <class X, class... A>
  bool readElements(std::int64_t count, const X& x, const A&... more) {
    auto& list = x.only();
    using Element = typename std::remove_cvref_t<decltype(list)>::value_type;
    makeRoom(list, count, minStoredSizeOf<Element>());
    if constexpr (kContainsLists<Element>) return appendNested(count, x, more...);
    for (std::int64_t i = self().appendFast(list, count, more...); i < count;
         i += 1 + self().appendFast(list, count - i - 1, more...)) {
      if (elementAt(x, i, list.emplace_back(), more...)) continue;
      list.pop_back();
      return false;
    }
    return true;
  }
  template <class X, class... A>
  bool readReused(std::int64_t count, const X& x, const A&... more) {
    auto& list = x.only();
    using Element = typename std::remove_cvref_t<decltype(list)>::value_type;
    makeRoom(list, count, minStoredSizeOf<Element>());
    Element element;
    for (std::int64_t i = 0; i < count; ++i) {
      if (!elementAt(x, i, element, more...)) return false;
      list.push_back(element);
    }
    return true;
  }
  // Failing elements are kept; one that succeeds ends the list where success is inverted.
  template <bool kInverted, class X, class... A>
  bool readFailing(std::int64_t count, const X& x, const A&... more) {
    auto& list = x.only();
    int empty = 0;
    for (std::int64_t i = 0; i < count && empty < kMostEmptyElements; ++i) {
      const std::uint64_t from = self().position();
      if (!elementAt(x, i, list.emplace_back(), more...)) {
        forgiveAll();
      } else if constexpr (kInverted) {
        list.pop_back();
        return false;
      }
      if (self().position() == from) ++empty;
    }
    return true;
  }
  template <class X, class... A>
  bool readInTurns(std::int64_t count, const X& x, const A&... more) {
    auto& [first, second] = x.members;
    const std::size_t least = minStoredSizeOf<typename std::remove_cvref_t<decltype(first)>::value_type>() +
                              minStoredSizeOf<typename std::remove_cvref_t<decltype(second)>::value_type>();
    makeRoom(first, count, least);
    makeRoom(second, count, least);
    for (std::int64_t i = 0; i < count; ++i) {
      if (!elementAt(x, i, first.emplace_back())) {
        first.pop_back();
        return false;
      }
      self().enter(x.names, i, 1);
      const bool ok = walk(second.emplace_back(), more...);
      self().leave();
      if (!ok) {
        second.pop_back();
        return false;
      }
    }
    return true;
  }
  template <class X>
  bool readColumns(std::int64_t count, const X& x) {
    auto& view = x.only();
    using Row = typename std::remove_cvref_t<decltype(view)>::Row;
    view.reserve(view.size() + roomFor(count, minStoredSizeOf<Row>()));
    for (std::int64_t i = 0; i < count; ++i) {
      Row row;
      self().enter(x.names, i);
      const bool ok = self().freshElement(row);
      self().leave();
      if (!ok) return false;
      view.append(row);
    }
    return true;
  }

  template <class X, class R, class... A>
  bool elementAt(const X& x, std::int64_t i, R& element, const A&... more) {
    self().enter(x.names, i);
    const bool ok = walk(element, more...);
    self().leave();
    return ok;
  }
  void forgiveAll() {
    self().forgiven();
    stop_ = Stop::none;
  }
  template <class X>
  bool readCount(const X& x, std::int32_t& count) {
    self().enter(x.names);
    const bool ok = self().fields(FIELDS(count));
    self().leave();
    return ok;
  }
  bool trailerOf(auto& trailerValue) { return self().fields(FIELDS(trailerValue)); }

  // Bytes of the shortest form of an element, which may grow with the versions.
  template <class Element>
  std::size_t minStoredSizeOf() const {
    if constexpr (requires { Layout<Element>::minStoredSize(0); })
      return Layout<Element>::minStoredSize(this->version());
    else
      return Layout<Element>::kMinStoredSize;
  }
  // A count is only a claim; the bytes that are left limit how many elements there can be. One more may be there
  // in part: without room for it, it would double the list.
  std::size_t roomFor(std::int64_t count, std::size_t least) {
    const std::uint64_t most = self().left() / least + 1;
    return static_cast<std::size_t>(std::min(static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0)), most));
  }
  template <class V>
  void makeRoom(V& list, std::int64_t count, std::size_t least) {
    const std::size_t room = roomFor(count, least);
    for (OpenList* outer = openLists_; outer != nullptr && room > 0; outer = outer->outer)
      if (outer->release != nullptr && std::uint64_t{room} * least + outer->claimed > self().left())
        std::exchange(outer->release, nullptr)(outer->list);
    list.reserve(list.size() + room);
  }

  // A list whose elements contain lists, while one of these is read. If a file claims more for an inner list and the
  // elements after it than it contains, the memory of both would add up: so the outer list releases its spare room. The
  // element that is being read is not part of its list until it is complete.
  struct OpenList {
    OpenList* outer;
    std::uint64_t claimed;  // the least number of bytes that the elements after the current one take
    void* list;
    void (*release)(void* list);  // null after a call, because each call may copy all elements
  };
  template <class Element>
  static constexpr bool kContainsLists = !std::is_trivially_copyable_v<Element> && !HasFastPath<Element>;

  template <class X, class... A>
  bool appendNested(std::int64_t count, const X& x, const A&... more) {
    auto& list = x.only();
    using List = std::remove_cvref_t<decltype(list)>;
    const std::size_t least = minStoredSizeOf<typename List::value_type>();
    OpenList here{openLists_, 0, &list, [](void* all) { releaseRoom(*static_cast<List*>(all)); }};
    for (std::int64_t i = 0; i < count; ++i) {
      const std::int64_t following = std::min(count - i, static_cast<std::int64_t>(list.capacity() - list.size())) - 1;
      here.claimed = following > 0 ? static_cast<std::uint64_t>(following) * least : 0;
      openLists_ = &here;
      typename List::value_type element;
      self().enter(x.names, i);
      const bool ok = walk(element, more...);
      self().leave();
      openLists_ = here.outer;
      if (!ok) return false;
      if (list.size() == list.capacity()) list.reserve(grown(list.size(), 1 + roomFor(count - i - 1, least)));
      list.push_back(std::move(element));
    }
    return true;
  }
  // Room that is mostly used is kept: it would be allocated again.
  template <class V>
  static void releaseRoom(V& list) {
    if (list.size() < list.capacity() / 2) list.shrink_to_fit();
  }
  // Growing copies the list, and for a while both exist: it doubles up to a quarter of the final size, then takes all.
  static std::size_t grown(std::size_t size, std::size_t more) { return size < more / 3 ? 2 * size + 1 : size + more; }

  // Defaults: one for each field, or one for all.
  template <class M, class D, std::size_t... I>
  static void assign(const M& members, const D& defaults, std::index_sequence<I...>) {
    constexpr std::size_t kFields = std::tuple_size_v<M>;
    if constexpr (sizeof...(I) == 1 && kFields > 1) {
      std::apply([&](auto&... m) { (setDefault(m, std::get<0>(defaults)), ...); }, members);
    } else {
      static_assert(kFields == sizeof...(I), "one default for each field, or one for all");
      (setDefault(std::get<I>(members), std::get<I>(defaults)), ...);
    }
  }
  template <class M, class D>
  static void setDefault(M& member, const D& value) {
    member = static_cast<M>(value);
  }
  template <std::size_t N>
  static void setDefault(char (&text)[N], const char* value) {
    (void)setFixedText(text, value);
  }
  template <Number T, std::size_t N, class D>
  static void setDefault(T (&numbers)[N], const D& value) {
    for (T& number : numbers) number = static_cast<T>(value);
  }
  template <class... T, class D>
  static void setDefault(const Block<T...>& block, const D& value) {
    std::apply([&](auto&... m) { (setDefault(m, value), ...); }, block.members);
  }

  Stop stop_ = Stop::none;
  bool forgave_ = false;
  OpenList* openLists_ = nullptr;
};

}  // namespace oldtorvio::codec
