// How the stored form of a record is described: once, as a chain of verbs that every walker understands.
//
//   template <> struct Layout<MarkEntry> {
//     static constexpr std::size_t kMinStoredSize = 14;      // bytes of the shortest stored form
//     static constexpr std::size_t minStoredSize(int version);  // the same at a version, where it grows a lot
//     static bool describe(auto& io, auto& mark) {
//       return io.fields(FIELDS(mark.markWord1, mark.markShort, mark.markWord2, mark.markWord3));
//     }
//   };
//
// `&&` is the stop rule: after a failure nothing more is evaluated. Fields read so far keep their new values, the rest
// their old ones. A chain is a lambda; since (without a default), below, between, when, optionalTail, endOnFailure and
// continueOnFailure take FIELDS(...) or a chain.
//
// Fields
//   fields(FIELDS(a, b))            stored in this order
//   since(80, FIELDS(a))            stored from version 80 on
//   since(80, FIELDS(a), otherwise(x))  the same; below 80 a reader sets a to x
//   below(110, FIELDS(a))           stored below version 110
//   between(112, 120, FIELDS(a))    stored in these versions only
//   when(condition, FIELDS(a))      stored if the condition holds, see "Conditions" below
//   leading(n, FIELDS(a, b, c))     the first n of these numbers, or of one array of numbers
//   slice(FIELDS(a), first, last)   these entries of an array; slice<T> stores each as a T
//   sized(FIELDS(text), n)          n bytes of a fixed text or block as one item; n below 1 or above its size is
//                                   refused
//   lengthText(FIELDS(s))           i32 length and that many bytes, kept up to their first NUL; a length below 1
//                                   leaves s as it is
//   lengthText(FIELDS(s), n)        the same, but a length below 1 empties s and one above n is refused
//   textItem<256>(FIELDS(s))        a string stored as a fixed text
//   reserved(499)                   fill bytes: dropped by readers, stored as zeros by writers
//   padded(500, chain)              the chain, then fill bytes until both take 500
// leading, reserved and rows also take a computed("as many as the type has", n), for a number that no field holds.
// Single fields may be stored in another form: as<T>(a), block(a, b), nonZero(a), see item.h.
//
// Rules
//   require(condition)              refused unless the condition holds; readers and writers alike
//   afterRead(record, "what", [](auto& r) {...})    readers only, when all before it succeeded
//   keep(record, [](auto& r) {...}) moves a local variable into the record. No table prints it; walkers that only need
//                                   sizes run it too
//   beforeWrite(record, "what", [](auto& r) {...})  writers only, when all before it succeeded
//   optionalTail(FIELDS(a))         a short read inside ends the record with success; a refusal does not
//   endOnFailure(FIELDS(a))         any failure inside ends the record with success
//   continueOnFailure(FIELDS(a))    a failure inside is ignored, by a writer too: the walk goes on after it
//
// padded, slice, endOnFailure, lengthText(n), textItem, differs and element have one user each. They are verbs because
// readers, writers and tables each do something of their own there.
//
// Where readers and writers differ
//   differs(chain, chain)           what a reader walks, what a writer walks
//   onlyRead([&](auto& io) {...})   what no writer stores
//   either(a, b)                    a value: a for a reader, b for a writer
//   countOf(list)                   a value: 0 for a reader, the size of the list for a writer
//   unchanged(record)               the record; const for a writer, so that reading a lazy array allocates nothing
// version() is the version of the file. Only a reader has has(n): whether n more bytes are left.
//
// Records and lists. Further arguments go to the description of the element.
//   record(FIELDS(r))               an embedded record
//   list(FIELDS(v), rule)           elements by a rule, see "List rules" below
//   list(FIELDS(v, w), rule)        elements of v and w alternately; v keeps one whose w failed
//   list(FIELDS(view), rule)        rows of parallel columns
//   clear(FIELDS(v))                a reader empties the list here
//   rows(n, [&](auto i) {...})      n rows of arrays, in place
//   element(FIELDS(v), i, chain)    readers only: the chain is described as entry i of v
//   trailer(FIELDS(v), &R::member)  one number for each element of the list in memory
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "src/frame/codec/item.h"

// The names travel as a type: only a walker that calls names() makes them part of a program.
#define FIELDS(...) ::oldtorvio::codec::bindFields([] { return #__VA_ARGS__; }, __VA_ARGS__)

namespace oldtorvio::codec {

template <class Names, class... T>
struct Fields {
  [[no_unique_address]] Names names;
  std::tuple<T...> members;

  // The member of a FIELDS(...) that names exactly one.
  auto& only() const {
    static_assert(sizeof...(T) == 1, "this verb takes one member");
    return std::get<0>(members);
  }
};

template <class Names, class... T>
constexpr Fields<Names, T...> bindFields(Names names, T&&... members) {
  return {names, std::tuple<T...>(std::forward<T>(members)...)};
}

template <class T>
inline constexpr bool kIsFields = false;
template <class Names, class... T>
inline constexpr bool kIsFields<Fields<Names, T...>> = true;

// ---- Conditions: comparisons of a field that has been read. They are data, so that tables can print them.
//
//   equals(FIELDS(a), 2), notEquals(FIELDS(a), 0), above(FIELDS(a), 0), atLeast(FIELDS(a), 80),
//   atMost(FIELDS(a), 25), within(FIELDS(a), 1, 256), oneOf(FIELDS(a), 1, 2)
//   within(FIELDS(a), 1, GrownLimit{6, 110, 4}, version)    the highest is 6, below version 110 it is 4
//   inRanges(FIELDS(a), Range{52, 52}, Range{60, 502})
//   decided(condition, holds)                the comparison is printed, but a writer has a rule of its own
//   custom("in a sheet", holds)              not a comparison of one field: tables print the text
//   chosen(holds)                            decided by where the record is embedded: each place has its own table

enum class Test : std::uint8_t { equals, notEquals, above, atLeast, atMost, within, withinGrown, oneOf, inRanges };

template <class Names, Test kTest, std::size_t kCount>
struct Condition {
  [[no_unique_address]] Names names;
  bool holds;
  std::int64_t value;  // of the field
  // In the order of the arguments: of withinGrown lowest, now, since, before; of ranges lowest and highest of each.
  std::array<std::int64_t, kCount> comparedWith;
};

struct Range {
  std::int64_t lowest, highest;
};
// A highest value that was another one below a version.
struct GrownLimit {
  std::int64_t now;
  int since;
  std::int64_t before;
  constexpr std::int64_t at(int version) const { return version < since ? before : now; }
};

// A condition that is not a comparison of one field.
struct CustomCondition {
  const char* text;  // null if no table prints it
  bool holds;
};

template <class X>
constexpr std::int64_t valueOf(const X& x) {
  return static_cast<std::int64_t>(x.only());
}
template <Test kTest, class X, class... V>
constexpr auto conditionOf(const X& x, bool holds, V... comparedWith) {
  using Names = std::remove_cvref_t<decltype(x.names)>;
  return Condition<Names, kTest, sizeof...(V)>{
      x.names, holds, valueOf(x), {static_cast<std::int64_t>(comparedWith)...}};
}

template <class X>
constexpr auto equals(const X& x, std::int64_t value) {
  return conditionOf<Test::equals>(x, valueOf(x) == value, value);
}
template <class X>
constexpr auto notEquals(const X& x, std::int64_t value) {
  return conditionOf<Test::notEquals>(x, valueOf(x) != value, value);
}
template <class X>
constexpr auto above(const X& x, std::int64_t value) {
  return conditionOf<Test::above>(x, valueOf(x) > value, value);
}
template <class X>
constexpr auto atLeast(const X& x, std::int64_t lowest) {
  return conditionOf<Test::atLeast>(x, valueOf(x) >= lowest, lowest);
}
template <class X>
constexpr auto atMost(const X& x, std::int64_t highest) {
  return conditionOf<Test::atMost>(x, valueOf(x) <= highest, highest);
}
template <class X>
constexpr auto within(const X& x, std::int64_t lowest, std::int64_t highest) {
  return conditionOf<Test::within>(x, lowest <= valueOf(x) && valueOf(x) <= highest, lowest, highest);
}
template <class X>
constexpr auto within(const X& x, std::int64_t lowest, const GrownLimit& highest, int version) {
  return conditionOf<Test::withinGrown>(x, lowest <= valueOf(x) && valueOf(x) <= highest.at(version), lowest,
                                        highest.now, highest.since, highest.before);
}
template <class X, class... V>
constexpr auto oneOf(const X& x, V... values) {
  return conditionOf<Test::oneOf>(x, ((valueOf(x) == values) || ...), values...);
}
template <class X, class... R>
constexpr auto inRanges(const X& x, R... ranges) {
  const std::int64_t value = valueOf(x);
  using Names = std::remove_cvref_t<decltype(x.names)>;
  Condition<Names, Test::inRanges, 2 * sizeof...(R)> condition{x.names, false, value, {}};
  condition.holds = ((ranges.lowest <= value && value <= ranges.highest) || ...);
  std::size_t i = 0;
  ((condition.comparedWith[i++] = ranges.lowest, condition.comparedWith[i++] = ranges.highest), ...);
  return condition;
}
template <class Names, Test kTest, std::size_t kCount>
constexpr auto decided(Condition<Names, kTest, kCount> condition, bool holds) {
  condition.holds = holds;
  return condition;
}
constexpr CustomCondition custom(const char* text, bool holds) { return {text, holds}; }
constexpr CustomCondition chosen(bool holds) { return {nullptr, holds}; }

// ---- Numbers that no field holds: how many rows, entries or fill bytes there are.

template <class T>
struct Computed {
  const char* text;
  T number;
  constexpr operator T() const { return number; }
};
template <class T>
constexpr Computed<T> computed(const char* text, T number) {
  return {text, number};
}

// ---- Defaults: the values that a reader gives to fields that the version does not store. One for each field, or one
// for all. A text takes otherwise("") or another text; bytes after the NUL stay. All numbers of an array get the same.

template <class... T>
struct Otherwise {
  std::tuple<T...> values;
};
template <class... T>
constexpr Otherwise<T...> otherwise(T... values) {
  return {{values...}};
}

// ---- List rules: where the count comes from, when a reader empties the list, and what becomes of an element that
// cannot be read completely.

enum class CountFrom : std::uint8_t {
  file,
  caller,
  one,  // one element and no count; a writer stores the first one only
};
enum class Clear : std::uint8_t {
  beforeCount,  // before the count is read
  always,       // once the count has been read
  unlessZero,   // a count of 0 leaves the list as it was
  ifPositive,   // so does a negative one
  never,        // the elements are appended
};
enum class Failing : std::uint8_t {
  dropped,   // it is not kept, and the walk fails
  reused,    // the same, and all elements are read into one object: a field that one does not set keeps its last value
  kept,      // it is kept as far as it was read, and the walk goes on; at most 1024 that consumed no byte are kept
  inverted,  // it is kept, and the walk goes on; an element that can be read completely ends the list as a failure
             // and is dropped. A writer begins with the second element, fails after the first that it could store
             // completely, and ends the process when it has none left
};

template <CountFrom kFrom, Clear kClearRule, Failing kFailingRule>
struct ListRule {
  static constexpr CountFrom kCount = kFrom;
  static constexpr Clear kClear = kClearRule;
  static constexpr Failing kFailing = kFailingRule;
  std::int64_t count = kFrom == CountFrom::one ? 1 : 0;  // for readers: writers store all elements of the list
};

inline constexpr ListRule<CountFrom::file, Clear::unlessZero, Failing::dropped> kCountFirst;
inline constexpr ListRule<CountFrom::file, Clear::ifPositive, Failing::dropped> kPositiveCountFirst;
inline constexpr ListRule<CountFrom::file, Clear::always, Failing::dropped> kReplaced;
inline constexpr ListRule<CountFrom::file, Clear::beforeCount, Failing::dropped> kClearedFirst;
inline constexpr ListRule<CountFrom::file, Clear::never, Failing::dropped> kAppended;
inline constexpr ListRule<CountFrom::file, Clear::always, Failing::reused> kReusedElement;
inline constexpr ListRule<CountFrom::file, Clear::beforeCount, Failing::inverted> kInvertedSuccess;

inline constexpr ListRule<CountFrom::one, Clear::never, Failing::dropped> kSingle;

using GivenCount = ListRule<CountFrom::caller, Clear::unlessZero, Failing::dropped>;
using GivenAppended = ListRule<CountFrom::caller, Clear::never, Failing::dropped>;
using GivenKept = ListRule<CountFrom::caller, Clear::never, Failing::kept>;
// A count that is stored elsewhere, see countOf().
constexpr GivenCount counted(std::int64_t count) { return {count}; }
constexpr GivenAppended appended(std::int64_t count) { return {count}; }
constexpr GivenKept appendedAndKept(std::int64_t count) { return {count}; }

// ---- Layouts.

template <class Record>
struct Layout;  // a specialisation describes the record, see above

// Small elements that files hold by the thousand set `static constexpr bool kFastPath = true`: reader and writer
// then take a faster way through them.
template <class R>
concept HasFastPath = Layout<std::remove_const_t<R>>::kFastPath;

template <Number T>
struct Layout<T> {
  static constexpr std::size_t kMinStoredSize = sizeof(T);
  static bool describe(auto& io, auto& itself) { return io.fields(FIELDS(itself)); }
};

// Why a walk stopped: an optional tail forgives a short read, never a refusal, and then the record has ended.
enum class Stop : std::uint8_t { none, shortRead, refused, ended };

// The version for records whose form is the same at every version.
inline constexpr int kUnversioned = 0;

// The conditions on versions and fields, alike for every walker.
template <class Self>
class Gates {
 public:
  explicit Gates(int version) : version_(version) {}
  int version() const { return version_; }

  template <class X>
  [[nodiscard]] bool since(int first, const X& x) {
    return version_ < first || nested(x);
  }
  template <class X, class... D>
  [[nodiscard]] bool since(int first, const X& x, const Otherwise<D...>& defaults) {
    if (version_ >= first) return nested(x);
    self().absent(x, defaults);
    return true;
  }
  template <class X>
  [[nodiscard]] bool below(int end, const X& x) {
    return version_ >= end || nested(x);
  }
  template <class X>
  [[nodiscard]] bool between(int first, int last, const X& x) {
    return version_ < first || version_ > last || nested(x);
  }
  template <class C, class X>
  [[nodiscard]] bool when(const C& condition, const X& x) {
    return !condition.holds || nested(x);
  }

 protected:
  Self& self() { return static_cast<Self&>(*this); }
  template <class X>
  bool nested(const X& x) {
    if constexpr (kIsFields<X>)
      return self().fields(x);
    else
      return x();
  }

 private:
  int version_;
};

// The verbs with which a layout distinguishes reading from writing, as readers understand them. A base class of walkers
// that read, or that see a layout as a reader does.
template <class Self>
class ReadingSide {
 public:
  template <class Read, class Written>
  [[nodiscard]] bool differs(const Read& read, const Written&) {
    return read();
  }
  template <class Read>
  [[nodiscard]] bool onlyRead(const Read& read) {
    return read(static_cast<Self&>(*this));
  }
  template <class T>
  constexpr T either(T forReaders, T) const {
    return forReaders;
  }
  template <class R, class Fn>
  [[nodiscard]] bool beforeWrite(const R&, const char*, const Fn&) {
    return true;
  }
};

// What walkers over a record without a file have in common: nothing can be missing.
template <class Self>
class RecordWalker : public Gates<Self> {
 public:
  using Gates<Self>::Gates;

  template <class X>
  [[nodiscard]] bool optionalTail(const X& x) {
    return this->nested(x);
  }
  template <class X>
  [[nodiscard]] bool endOnFailure(const X& x) {
    return this->nested(x);
  }
  template <class X>
  [[nodiscard]] bool continueOnFailure(const X& x) {
    return this->nested(x);
  }
  template <class R, class Fn>
  [[nodiscard]] bool afterRead(const R&, const char*, const Fn&) {
    return true;
  }
  template <class R, class Fn>
  [[nodiscard]] bool keep(const R&, const Fn&) {
    return true;
  }
  template <class X>
  [[nodiscard]] bool clear(const X&) {
    return true;
  }
  template <class X, class... A>
  [[nodiscard]] bool record(const X& x, const A&... more) {
    return this->self().walk(x.only(), more...);
  }
};

}  // namespace oldtorvio::codec
