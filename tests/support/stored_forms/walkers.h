// Stored forms described a second time, row by row: what the tests compare the library's own layouts with. Nothing of
// the library's readers, writers or layouts is used here.
//
// A function storedX(m, version, ..., record) names the fields of one record in stored order with their widths, and the
// default of each field that is not 0. With a Maker it fills the record with values of its own and puts the bytes
// together; with a Checker it compares a record that was read with the same values, up to a cut; with a Loader it makes
// of a record what a load of these bytes makes of it.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "OldTorvIO/records.h"
#include "tests/support/bytes.h"
#include "tests/support/stored_forms/versions.h"
#include "torvio/values/equal.h"

namespace testing_support {

using namespace oldtorvio;

// The n-th field has a value of its own. With another seed every field has another value.
class Values {
 public:
  explicit Values(unsigned seed = 0) : n_(1001 * seed) {}
  template <class T>
  T next() {
    ++n_;
    if constexpr (std::is_floating_point_v<T>)
      return static_cast<T>(n_) + static_cast<T>(0.5);
    else
      return static_cast<T>(0x01020304U * n_ + 0x51U);
  }
  std::uint8_t nextByte() { return static_cast<std::uint8_t>(++n_ * 37U + 11U); }

 private:
  unsigned n_;
};

// Where the numbered sections of a form begin.
using Sections = std::map<int, std::size_t>;

// A named piece of a form, and the status of a file that ends inside it.
struct Piece {
  std::string name;
  std::size_t begin, end;
  int statusOfCut;
};

class Maker {
 public:
  static constexpr bool kMakes = true, kChecks = false, kLoads = false;
  Bytes bytes;
  Sections sections;
  std::vector<Piece> pieces;

  explicit Maker(unsigned seed = 0) : seed_(seed), values_(seed) {}
  // What is added to fixed texts and values: 0 is what a Checker and a Loader expect.
  unsigned seed() const { return seed_; }
  // Stores what the record holds, also its lists, and changes nothing in it. The form has to fit the record in
  // everything else.
  static Maker ofHeldValues() {
    Maker maker;
    maker.fills_ = false;
    return maker;
  }
  bool fills() const { return fills_; }

  // Fills every field, also those that the version does not store and those that are never stored.
  static Maker ofEveryField(unsigned seed) {
    Maker maker(seed);
    maker.fillsEveryField = true;
    return maker;
  }
  bool fillsEveryField = false;

  template <class T>
  void number(T& field, T = T()) {
    if (fills_) field = values_.next<T>();
    append(field);
  }
  template <class T, class V>
  void fixed(T& field, V value, T = T()) {
    if (fills_) field = static_cast<T>(value);
    append(field);
  }
  template <class T, std::size_t N>
  void block(T (&field)[N], std::string_view = {}) {
    for (T& one : field) {
      if (fills_) one = static_cast<T>(values_.nextByte());
      bytes.u8(static_cast<std::uint8_t>(one));
    }
  }
  // A number that is stored in a narrower type.
  template <class Stored, class T>
  void narrow(T& field, T = T()) {
    if (fills_) field = static_cast<T>(values_.next<Stored>());
    append(static_cast<Stored>(field));
  }
  // One of which a load makes loaded(value).
  template <class Stored, class T, class Fn>
  void converted(T& field, Fn&&) {
    narrow<Stored>(field);
  }
  // The next `size` bytes are one item: all its fields arrive, or none.
  void together(std::size_t) {}
  // A count or fill that no field of the record keeps.
  void stored(std::int32_t value) { bytes.i32(value); }
  void zeros(std::size_t count) { bytes.zeros(count); }
  void raw(const Bytes& b) { bytes.add(b); }
  void text(std::string& field, const std::string& value) {
    if (fills_) field = value + std::string(value.empty() ? 0 : seed_, '+');
    bytes.lengthText(field);
  }
  // A text of `width` stored bytes that ends at its first NUL. It arrives with the first `end` bytes of its section.
  void fixedText(std::string& field, const std::string& value, std::size_t width, int, std::size_t) {
    if (fills_) field = value + std::string(seed_, '+');
    bytes.text(width, field);
  }
  // A field that is not stored: a load keeps it, or (reset) sets it to `value`.
  template <class T>
  void absent(const T&, const T&) {}
  template <class T>
  void reset(const T&, const T&) {}
  // A field that a load sets to `fresh` before it reads it, if it comes to that place.
  template <class T>
  void preset(T& field, T, bool) {
    number(field);
  }
  // A field that is stored, and that a load then sets to another value.
  template <class T>
  void replaced(T& field, T) {
    number(field);
  }
  // A list that a load empties at this place.
  template <class List>
  void clears(const List&) {}
  template <class List>
  void untouched(const List&, std::size_t = 0) {}
  // The count of a list. Returns whether its elements follow.
  template <class Count = std::int32_t, class List>
  bool size(List& list, std::size_t count, std::size_t = 0) {
    append(static_cast<Count>(resized(list, count)));
    return true;
  }
  template <class List>
  std::size_t resized(List& list, std::size_t count) {
    if (fills_) list.resize(count);
    return list.size();
  }
  // An element of `size` bytes that a load did not keep.
  void dropped(std::size_t) {}
  // Whether the next `size` bytes arrived.
  bool reaches(std::size_t) const { return true; }
  void section(int n) { sections[n] = bytes.size(); }
  bool reached(int, std::size_t) const { return true; }
  void rest() {}

 private:
  template <class T>
  void append(T value) {
    bytes.add(bytesOf(value));
  }
  unsigned seed_;
  Values values_;
  bool fills_ = true;
};

// Expects fields that lie completely before `cut` to hold the stored values. The others have their defaults, or, where
// the load began with the record `before`, its values.
class Checker {
 public:
  static constexpr bool kMakes = false, kChecks = true, kLoads = false;
  static constexpr unsigned seed() { return 0; }
  static constexpr std::size_t kNoCut = std::numeric_limits<std::size_t>::max();

  explicit Checker(std::size_t cut = kNoCut, const Sections* sections = nullptr) : cut_(cut), sections_(sections) {}
  template <class Record>
  Checker(const Record& record, const Record& before, std::size_t cut = kNoCut, const Sections* sections = nullptr)
      : cut_(cut), sections_(sections), record_(reinterpret_cast<const char*>(&record)), recordSize_(sizeof record) {
    before_ = reinterpret_cast<const char*>(&before);
  }

  // For fields that the version does not store.
  Checker skipping() const {
    Checker none = *this;
    none.cut_ = none.at_ = none.itemEnd_ = 0;
    none.sections_ = nullptr;
    none.skips_ = true;
    return none;
  }

  template <class T>
  void number(T& field, T fresh = T()) {
    expect(field, values_.next<T>(), fresh);
  }
  template <class T, class V>
  void fixed(T& field, V value, T fresh = T()) {
    expect(field, static_cast<T>(value), fresh);
  }
  template <class T, std::size_t N>
  void block(T (&field)[N], std::string_view fresh = {}) {
    const bool there = at_ + N <= cut_;
    const T* const held = heldBefore(field);
    T wanted[N];
    for (std::size_t i = 0; i < N; ++i) {
      const auto value = static_cast<T>(values_.nextByte());
      const auto other = held != nullptr ? held[i] : static_cast<T>(i < fresh.size() ? fresh[i] : 0);
      wanted[i] = there ? value : other;
    }
    EXPECT_EQ(std::memcmp(field, wanted, sizeof wanted), 0) << "block at " << at_;
    at_ += N;
  }
  template <class Stored, class T>
  void narrow(T& field, T fresh = T()) {
    expect<T, sizeof(Stored)>(field, static_cast<T>(values_.next<Stored>()), fresh);
  }
  template <class Stored, class T, class Fn>
  void converted(T& field, Fn&& loaded) {
    expect<T, sizeof(Stored)>(field, static_cast<T>(loaded(values_.next<Stored>())), T());
  }
  void together(std::size_t size) { itemEnd_ = at_ + size; }
  void stored(std::int32_t) { at_ += 4; }
  void zeros(std::size_t count) { at_ += count; }
  void raw(const Bytes& b) { at_ += b.size(); }
  void text(std::string& field, const std::string& value) {
    at_ += 4 + value.size();
    const std::string* const held = heldBefore(&field);
    // A stored length of 0 leaves the field as it was.
    EXPECT_EQ(field, at_ <= cut_ && !value.empty() ? value : held != nullptr ? *held : std::string());
  }
  void fixedText(std::string& field, const std::string& value, std::size_t width, int section, std::size_t end) {
    at_ += width;
    EXPECT_EQ(field, reached(section, end) ? value : std::string());
  }
  template <class T>
  void absent(const T& field, const T& value) {
    const T* const held = heldBefore(&field);
    EXPECT_EQ(field, held != nullptr ? *held : value) << "absent after " << at_;
  }
  template <class T>
  void reset(const T& field, const T& value) {
    if (reaches(0)) {
      EXPECT_EQ(field, value) << "reset after " << at_;
    } else {
      absent(field, value);
    }
  }
  template <class T>
  void preset(T& field, T fresh, bool isPreset) {
    const char* const before = std::exchange(before_, isPreset ? nullptr : before_);
    number(field, fresh);
    before_ = before;
  }
  template <class T>
  void replaced(T& field, T value) {
    (void)values_.next<T>();
    at_ += sizeof(T);
    EXPECT_EQ(field, value) << "replaced at " << at_;
  }
  template <class List>
  void clears(const List& list) {
    if (reaches(0)) cleared_.push_back(&list);
  }
  template <class Count = std::int32_t, class List>
  bool size(List& list, std::size_t count, std::size_t freshCount = 0) {
    const bool arrived = reaches(sizeof(Count));
    at_ += sizeof(Count);
    if (!arrived) {
      untouched(list, freshCount);
    } else {
      EXPECT_LE(list.size(), count) << "list at " << at_;
      if (cut_ == kNoCut) {
        EXPECT_EQ(list.size(), count) << "list at " << at_;
      }
    }
    return arrived;
  }
  // A list of which nothing arrived.
  template <class List>
  void untouched(const List& list, std::size_t freshCount = 0) {
    const List* const held = heldBefore(&list);
    const bool isCleared = std::find(cleared_.begin(), cleared_.end(), &list) != cleared_.end();
    EXPECT_EQ(list.size(), isCleared ? 0 : held != nullptr ? held->size() : freshCount) << "list at " << at_;
  }
  void dropped(std::size_t size) {
    EXPECT_FALSE(reaches(size)) << "an element at " << at_ << " is missing";
    rest();
  }
  bool reaches(std::size_t size) const { return !skips_ && at_ + size <= cut_; }
  void section(int) {}
  // Whether the first `size` bytes of a section arrived.
  bool reached(int n, std::size_t size) const {
    return sections_ == nullptr ? cut_ == kNoCut : sections_->at(n) + size <= cut_;
  }
  // Nothing after this place arrived.
  void rest() { at_ += kNoCut / 64; }

 private:
  template <class T, std::size_t kWidth = sizeof(T)>
  void expect(const T& field, T value, T fresh) {
    const bool there = std::max(at_ + kWidth, at_ < itemEnd_ ? itemEnd_ : 0) <= cut_;
    const T* const held = heldBefore(&field);
    EXPECT_EQ(field, there ? value : held != nullptr ? *held : fresh) << "field at " << at_;
    at_ += kWidth;
  }
  // The field of the record before the load, if it lies in the record itself.
  template <class T>
  const T* heldBefore(const T* field) const {
    const std::size_t offset = reinterpret_cast<std::uintptr_t>(field) - reinterpret_cast<std::uintptr_t>(record_);
    return before_ != nullptr && offset < recordSize_ ? reinterpret_cast<const T*>(before_ + offset) : nullptr;
  }

  std::size_t cut_;
  std::size_t at_ = 0;
  std::size_t itemEnd_ = 0;
  const Sections* sections_ = nullptr;
  bool skips_ = false;
  const char* record_ = nullptr;
  const char* before_ = nullptr;
  std::size_t recordSize_ = 0;
  std::vector<const void*> cleared_;
  Values values_;
};

// Sets what a load of the complete bytes sets. Everything else in the record stays, so that a record that already held
// data can be compared with it as a whole.
class Loader {
 public:
  static constexpr bool kMakes = false, kChecks = false, kLoads = true;
  static constexpr unsigned seed() { return 0; }

  template <class T>
  void number(T& field, T = T()) {
    field = values_.next<T>();
  }
  template <class T, class V>
  void fixed(T& field, V value, T = T()) {
    field = static_cast<T>(value);
  }
  template <class T, std::size_t N>
  void block(T (&field)[N], std::string_view = {}) {
    for (T& one : field) one = static_cast<T>(values_.nextByte());
  }
  template <class Stored, class T>
  void narrow(T& field, T = T()) {
    field = static_cast<T>(values_.next<Stored>());
  }
  template <class Stored, class T, class Fn>
  void converted(T& field, Fn&& loaded) {
    field = static_cast<T>(loaded(values_.next<Stored>()));
  }
  void together(std::size_t) {}
  void stored(std::int32_t) {}
  void zeros(std::size_t) {}
  void raw(const Bytes&) {}
  void text(std::string& field, const std::string& value) {
    if (!value.empty()) field = value;
  }
  void fixedText(std::string& field, const std::string& value, std::size_t, int, std::size_t) { field = value; }
  template <class T>
  void absent(const T&, const T&) {}
  template <class T>
  void reset(T& field, const T& value) {
    field = value;
  }
  template <class T>
  void preset(T& field, T, bool) {
    number(field);
  }
  template <class T>
  void replaced(T& field, T value) {
    (void)values_.next<T>();
    field = value;
  }
  template <class List>
  void clears(List& list) {
    list.clear();
  }
  template <class List>
  void untouched(const List&, std::size_t = 0) {}
  template <class Count = std::int32_t, class List>
  bool size(List& list, std::size_t count, std::size_t = 0) {
    resized(list, count);
    return true;
  }
  // All elements are new.
  template <class List>
  std::size_t resized(List& list, std::size_t count) {
    list.clear();
    list.resize(count);
    return count;
  }
  void dropped(std::size_t) {}
  bool reaches(std::size_t) const { return true; }
  void section(int) {}
  bool reached(int, std::size_t) const { return true; }
  void rest() {}

 private:
  Values values_;
};

// Compares all of a record after a complete load over `before`. stored(m, record) names its form.
template <class Record, class Fn>
void expectLoaded(const Record& loaded, const Record& before, Fn&& stored) {
  const auto wanted = std::make_unique<Record>(before);
  Loader loader;
  stored(loader, *wanted);
  EXPECT_EQ(oldtorvio::values::firstDifference(loaded, *wanted), std::nullopt);
}

// Fields of some versions only: without them a record shows its defaults, or what it held before.
template <class M, class Fn>
void since(M& m, bool isStored, Fn&& fn) {
  if (isStored) {
    fn(m);
  } else if constexpr (M::kMakes) {
    if (m.fillsEveryField) fn(m);
  } else if constexpr (M::kChecks) {
    Checker none = m.skipping();
    fn(none);
  }
}
// Fields that are in memory only.
template <class M, class Fn>
void neverStored(M& m, Fn&& fn) {
  since(m, false, fn);
}

template <class M, class T, std::size_t N>
void each(M& m, T (&row)[N]) {
  for (T& one : row) m.number(one);
}
template <class M, class... T>
void numbers(M& m, T&... fields) {
  (m.number(fields), ...);
}

// With a default other than 0.
template <class M, class T>
void numberOr(M& m, T& field, T fresh) {
  m.number(field, fresh);
}
template <class M, class V, class... T>
void numbersOr(M& m, V fresh, T&... fields) {
  (m.number(fields, static_cast<T>(fresh)), ...);
}
template <class M, class T, class V>
void fixedOr(M& m, T& field, V value, T fresh) {
  m.fixed(field, value, fresh);
}

// A count in a field. Returns how many follow: of held values as many as the record has.
template <class M, class T>
int countIn(M& m, T& field, int count, T fresh = T()) {
  m.fixed(field, count, fresh);
  return M::kMakes ? static_cast<int>(field) : count;
}

// The first `width` bytes of a text, without a NUL; they arrive together.
template <class M, std::size_t N>
void leadingText(M& m, char (&field)[N], std::size_t width, char first) {
  m.together(width);
  for (std::size_t i = 0; i < width; ++i) m.fixed(field[i], first + static_cast<char>(m.seed() + i % 7));
}

// Names what `fn` stores.
template <class M, class Fn>
void piece(M& m, const std::string& name, Fn&& fn, int statusOfCut = 1) {
  if constexpr (M::kMakes) {
    const std::size_t begin = m.bytes.size();
    fn();
    m.pieces.push_back({name, begin, m.bytes.size(), statusOfCut});
  } else {
    fn();
  }
}

// The elements of a list, of which a load keeps those that it could read. each(m, element, index).
template <class M, class List, class Fn>
void elements(M& m, List& l, std::size_t count, Fn&& each) {
  if constexpr (!M::kChecks) count = m.resized(l, count);
  for (std::size_t i = 0; i < count; ++i) {
    if (i < l.size()) {
      each(m, l[i], i);
      continue;
    }
    typename List::value_type missing{};
    Maker probe;
    each(probe, missing, i);
    return m.dropped(probe.bytes.size());
  }
}
// A list after its count.
template <class Count = std::int32_t, class M, class List, class Fn>
void list(M& m, List& l, std::size_t count, Fn&& each, std::size_t freshCount = 0) {
  if (m.template size<Count>(l, count, freshCount)) elements(m, l, count, each);
}

// A count of 0 leaves the list as it was.
template <class M, class List, class Fn>
void unlessZero(M& m, List& l, std::size_t count, Fn&& stored) {
  if (M::kMakes || count > 0) return stored();
  m.stored(0);
  m.untouched(l);
}

// The bytes from `at` on, and bytes of which some are replaced.
inline Bytes from(const Bytes& b, std::size_t at) { return Bytes::of(b.span().subspan(std::min(at, b.size()))); }
inline Bytes patched(const Bytes& b, std::size_t at, const Bytes& by, std::size_t instead) {
  return b.cut(at).add(by).add(from(b, at + instead));
}
inline Bytes patched(const Bytes& b, std::size_t at, const Bytes& by) { return patched(b, at, by, by.size()); }

}  // namespace testing_support
