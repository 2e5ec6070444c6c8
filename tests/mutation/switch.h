// The rewritten sources of a mutation run call these functions at each place that can be changed, to check
// whether it is the one that is changed in this process. tests/mutation/mutate.py writes the calls.
#pragma once
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace oldtorvio_mutation {

inline constexpr int kMost = 1 << 14;

extern int active;              // the mutant of this process, 0 for none
extern unsigned char* touched;  // which places were evaluated, shared with child processes

// Each place that is compiled into the program stores its number in a section of its own. Code that only the
// compiler evaluates does not.
template <int kId>
[[gnu::always_inline]] inline bool isOn() {
  static_assert(kId < kMost);
  asm volatile(".pushsection oldtorvio_sites,\"\",@progbits\n\t.long %c0\n\t.popsection" : : "i"(kId));
  touched[kId] = 1;
  return active == kId;
}

// ---- constants ----

template <class T>
T other(T value) {
  if constexpr (std::is_same_v<T, bool>)
    return !value;
  else if constexpr (std::is_floating_point_v<T>)
    return value == 0 ? T{1} : value * T{1.0625};
  else
    return static_cast<T>(value == std::numeric_limits<T>::max() ? value - 1 : value + 1);
}
inline std::string_view other(std::string_view value) {
  static thread_local std::string changed;
  changed = value;
  if (!changed.empty()) changed[0] = static_cast<char>(changed[0] ^ 1);
  return changed;
}
inline const char* other(const char* value) { return other(std::string_view(value)).data(); }

template <int kId, class T>
constexpr T number(T value) {
  if (std::is_constant_evaluated()) return value;
  return isOn<kId>() ? other(value) : value;
}

template <std::size_t N>
const char (&changedText(const char (&value)[N]))[N] {
  static thread_local char changed[N];
  std::memcpy(changed, value, N);
  changed[0] = static_cast<char>(changed[0] ^ 1);
  return changed;
}
template <int kId, std::size_t N>
constexpr const char (&text(const char (&value)[N]))[N] {
  if (std::is_constant_evaluated()) return value;
  return isOn<kId>() ? changedText(value) : value;
}

// ---- conditions ----

// The opposite if the mutant is active: of a value, or of a condition of a layout. Around both operands of a && and
// around the expression, this turns it into ||, and vice versa.
template <int kId, class T>
constexpr auto flip(const T& value) {
  if constexpr (requires { value.holds; }) {
    T condition = value;
    condition.holds = condition.holds != isOn<kId>();
    return condition;
  } else {
    if (std::is_constant_evaluated()) return static_cast<bool>(value);
    return static_cast<bool>(value) != isOn<kId>();
  }
}

// The value of a `switch`: if the mutant is active, the case does not match.
template <int kFirst, auto... kCases, class T>
constexpr T chosen(T value) {
  constexpr int kNoCase = 123;
  if (std::is_constant_evaluated()) return value;
  return [&]<int... kIndex>(std::integer_sequence<int, kIndex...>) {
    const bool isGone = ((value == static_cast<T>(kCases) && isOn<kFirst + kIndex>()) || ...);
    return isGone ? static_cast<T>(kNoCase) : value;
  }
  (std::make_integer_sequence<int, static_cast<int>(sizeof...(kCases))>());
}

// ---- comparisons: `a < b` is written `a < less<17> < b` ----

#define OLDTORVIO_MUTATION_COMPARISON(Name, name, op, changed)                     \
  template <int kId>                                                               \
  struct Name {};                                                                  \
  template <int kId>                                                               \
  inline constexpr Name<kId> name{};                                               \
  template <int kId, class L>                                                      \
  struct Name##Left {                                                              \
    const L& left;                                                                 \
  };                                                                               \
  template <int kId, class L>                                                      \
  constexpr Name##Left<kId, L> operator op(const L& left, Name<kId>) {             \
    return {left};                                                                 \
  }                                                                                \
  template <int kId, class L, class R>                                             \
  constexpr bool operator op(Name##Left<kId, L> pair, const R& right) {            \
    if (std::is_constant_evaluated()) return pair.left op right;                   \
    return isOn<kId>() ? bool(pair.left changed right) : bool(pair.left op right); \
  }

OLDTORVIO_MUTATION_COMPARISON(Less, less, <, <=)
OLDTORVIO_MUTATION_COMPARISON(LessOrEqual, lessOrEqual, <=, <)
OLDTORVIO_MUTATION_COMPARISON(Greater, greater, >, >=)
OLDTORVIO_MUTATION_COMPARISON(GreaterOrEqual, greaterOrEqual, >=, >)
OLDTORVIO_MUTATION_COMPARISON(Equal, equal, ==, !=)
OLDTORVIO_MUTATION_COMPARISON(NotEqual, notEqual, !=, ==)

#undef OLDTORVIO_MUTATION_COMPARISON

// ---- tables ----

// A table of constants is rebuilt for each access, so that a mutant takes effect at any time.
template <class T>
struct Live {
  T (*make)();
  [[nodiscard]] bool has(int value) const { return make().has(value); }
};

// The same for an array.
template <class Make>
struct LiveTable {
  Make make;
  const auto& all() const {
    static thread_local auto now = make();
    now = make();
    return now;
  }
  auto begin() const { return all().begin(); }
  auto end() const { return begin() + std::ptrdiff_t(size()); }
  std::size_t size() const { return std::tuple_size_v<decltype(make())>; }
  const auto& operator[](std::size_t i) const { return all()[i]; }
};
template <class Make>
LiveTable(Make) -> LiveTable<Make>;

}  // namespace oldtorvio_mutation
