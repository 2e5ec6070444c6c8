// How a record's stored form is told: once, as a chain of verbs that every walker understands.
//
//   template <> struct Layout<MarkEntry> {
//     static constexpr std::size_t kMinStoredSize = 14;              // bytes of its shortest stored form
//     static constexpr std::size_t minStoredSize(int version);     // the same at a version, where it grows much
//     static bool describe(auto& io, auto& mark) {
//       return io.fields(FIELDS(mark.markWord1, mark.markShort, mark.markWord2, mark.markWord3));
//     }
//   };
//
// `&&` is the stop rule: behind a failure nothing more is evaluated, so the fields read so far stay
// and the rest keep what they held. Conditions are arguments of verbs, never bare ifs.
//
// Fields and gates. Where a verb takes FIELDS(...) it also takes a lambda with a chain of its own.
//   fields(FIELDS(a, b))              stored in this order
//   since(80, FIELDS(a))              stored from version 80 on
//   since(80, FIELDS(a), otherwise(x))  as above, and below it the reader sets a to x
//   below(110, FIELDS(a))             stored below version 110
//   between(112, 120, FIELDS(a))      stored in these versions and no others
//   when(condition, FIELDS(a))        stored when an earlier value says so
//   leading(n, FIELDS(a, b, c))       the first n of these numbers, or of one array of numbers
//   slice(FIELDS(a), first, last)     these entries of an array of numbers or texts
//   sliceAs<T>(FIELDS(a), first, last)  as slice, each stored as a T
//   nonZero(FIELDS(a))                the reader keeps what the record holds where the file stores 0
//   sized(FIELDS(text), n)            n bytes of a fixed text or block as one item; none is a failed read
//   bytesOrOne(FIELDS(text), n)       n single bytes; a file that ends behind the first passes as well
//   lengthText(FIELDS(s))             i32 length and that many bytes, kept up to their first NUL
//   lengthTextOrEmpty(FIELDS(s), n)   as lengthText; a length below 1 empties s, one above n is refused
//   textItem<256>(FIELDS(s))          a string stored as a fixed text
//   reserved(499)                fill bytes: dropped by the reader, zeros from the writer
//   padded(500, chain)           the chain, then fill bytes until both take 500
//
// Rules.
//   range(FIELDS(a), lo, hi)          refused outside; reader and writer alike
//   atMost(FIELDS(a), hi)             refused above
//   notReadOn()                  refuses: what follows is not read by anyone
//   unchanged(record)            the record, const to a writer: where a look at it would change it
//   afterRead(record, [](auto& r))  reader only, when all before it succeeded
//   optionalTail(FIELDS(a))                   a short read inside ends the record with success; a refusal does not
//   endOnFailure(chain)               any failure inside ends the record with success
//   continueOnFailure(chain)               a failure inside is ignored, in a writer too: the walk goes on after it
//   skipUnless(FIELDS(a), chain)      where a cannot be read the chain is skipped and the walk goes on
//
// Where reader and writer differ.
//   differs(chain, chain)        what the reader walks, what the writer walks
//   onlyRead([&](auto& io) {...})  what no writer stores
//   either(a, b)                 a value: a for a reader, b for the writer
//   beforeWrite(record, [](auto& r)) writer only, when all before it succeeded: changes the record
//
// Records and lists. Further arguments go to the element's description. An element that fails is not
// kept, unless the verb says so.
//   record(FIELDS(r))                 an embedded record
//   replaced(FIELDS(r))               as record, read into a fresh one that then takes its place
//   countFirst(FIELDS(v))             i32 count; zero leaves the list as it was, anything else empties it
//   counted(count, FIELDS(v))         the same behind a count that a field has taken (see countOf)
//   countThenClear(FIELDS(v))         i32 count; the list is emptied whatever it is
//   clear(FIELDS(v)), append(FIELDS(v))    emptied here; i32 count and elements behind what the list holds
//   appendRun(n, FIELDS(v))           n elements behind what the list holds, no count stored
//   element(FIELDS(v), i, chain)      reading only: the chain is told as entry i of v
//   reusedElement(FIELDS(v))          as countThenClear, with one element that is read over and over
//   forgivingRun(n, FIELDS(v))        as appendRun, but an element that fails is kept as far as it came and
//                                the walk goes on; those that took no byte are kept up to a bound
//   invertedSuccessList(FIELDS(v))               i32 count; an element that can be read whole ends the list as a failure
//                                and is not kept, one that cannot is kept; the writer begins with the second
//                                element, fails behind the first that it could store whole, and ends the
//                                process when it has none left
//   interleaved(FIELDS(v, w))         count-first, elements of v and w in turns; v keeps one whose w failed
//   columns(FIELDS(view))             i32 count and rows of parallel columns; below one keeps the columns
//   rows(n, [&](auto i) {...})   n rows of parallel arrays, in place
//   single(FIELDS(v))                 one element without count; the writer stores the first alone
//   trailer(FIELDS(v), &R::member)    one number for each element that the list holds
#pragma once
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

  // The only member of an FIELDS(...) that names one record or list.
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

template <class... T>
struct Otherwise {
  std::tuple<T...> values;
};
template <class... T>
constexpr Otherwise<T...> otherwise(T... values) {
  return {{values...}};
}

template <class Record>
struct Layout;  // a specialisation describes the record, see above

// Small elements that files hold by the thousand say so with `static constexpr bool kFastPath = true`:
// reader and writer then take a quicker way through them.
template <class R>
concept HasFastPath = Layout<std::remove_const_t<R>>::kFastPath;

template <Number T>
struct Layout<T> {
  static constexpr std::size_t kMinStoredSize = sizeof(T);
  static bool describe(auto& io, auto& itself) { return io.fields(FIELDS(itself)); }
};

// Why a chain stopped: a tail forgives a short read, never a refusal, and then the record has ended.
enum class Stop : std::uint8_t { none, shortRead, refused, ended };

// The version for records that have no gate.
inline constexpr int kUnversioned = 0;

// The gates, alike for every walker.
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
  template <class X>
  [[nodiscard]] bool when(bool stored, const X& x) {
    return !stored || nested(x);
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

// What is alike for walkers that meet no file, so no fault of one.
template <class Self>
class RecordWalker : public Gates<Self> {
 public:
  using Gates<Self>::Gates;

  template <class X>
  [[nodiscard]] bool nonZero(const X& x) {
    return this->nested(x);
  }
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
  template <class X, class Rest>
  [[nodiscard]] bool skipUnless(const X& x, const Rest& rest) {
    return this->nested(x) && rest();
  }
  template <class R, class Fn>
  [[nodiscard]] bool afterRead(const R&, const Fn&) {
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
  template <class X, class... A>
  [[nodiscard]] bool replaced(const X& x, const A&... more) {
    return this->self().walk(x.only(), more...);
  }
};

}  // namespace oldtorvio::codec
