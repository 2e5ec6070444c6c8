// What a record holds in memory: its members, each once, in declared order and by name.
//
//   MEMBERS(MarkEntry, markWord1, markShort, markWord2, markWord3);
//
// is all that a record needs. Files never store the members in UNSTORED(...): what is memory only or derived by
// a load. A list that leaves out a member does not compile where it is used, nor does one with a name too many.
//
//   Members<MarkEntry>::of(mark, [](const MemberInfo& info, auto& member) { ... });
//
// visits them. Everything that works on values uses this list: JSON, its schemas, comparison, random records of tests.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "OldTorvIO/lazy_array.h"

namespace oldtorvio::values {

struct MemberInfo {
  std::string_view name;
  bool isStored = true;  // by at least one version of one file kind
};

// A specialisation lists the members of a record, see MEMBERS.
template <class Record>
struct Members;

template <class T>
concept HasMembers = requires {
  Members<std::remove_cv_t<T>>::kInfos;
};

// ---- the types of members --------------------------------------------------------------------------

template <class T>
concept Number = std::is_arithmetic_v<T>;

template <class T>
concept Text = std::is_same_v<std::remove_cv_t<T>, std::string>;

template <class T>
inline constexpr bool kIsStdArray = false;
template <class T, std::size_t N>
inline constexpr bool kIsStdArray<std::array<T, N>> = true;
// Plain arrays and std::array, whose elements are all in the record itself.
template <class T>
concept Array = std::is_array_v<T> || kIsStdArray<std::remove_cv_t<T>>;

template <class T>
using ElementOf = std::remove_cvref_t<decltype(std::declval<T&>()[0])>;
template <class T>
inline constexpr bool kHoldsChars = std::is_same_v<ElementOf<T>, char>;
// A fixed text: raw bytes up to the size of the array.
template <class T>
concept FixedText = Array<T> && kHoldsChars<T>;

template <class T>
inline constexpr bool kIsList = false;
template <class T>
inline constexpr bool kIsList<std::vector<T>> = true;
template <class T>
concept List = kIsList<std::remove_cv_t<T>>;

template <class T>
inline constexpr bool kIsPair = false;
template <class A, class B>
inline constexpr bool kIsPair<std::pair<A, B>> = true;

template <class T>
inline constexpr bool kIsLazyArray = false;
template <class T, std::size_t N>
inline constexpr bool kIsLazyArray<LazyArray<T, N>> = true;
// Read it through a const reference: any other access allocates memory for its elements.
template <class T>
concept Lazy = kIsLazyArray<std::remove_cv_t<T>>;

// ---- over all members of a record --------------------------------------------------------------------

template <class Record>
struct MembersOf {
  // see(info, member) for each member.
  static constexpr void of(auto& record, auto&& see) {
    Members<Record>::apply(record, [&](auto&... members) {
      std::size_t at = 0;
      // Not a fold over an operator: compilers limit how deep these nest.
      const int done[] = {(see(Members<Record>::kInfos[at++], members), 0)...};
      (void)done;
    });
  }
  // see(info, member of one, member of other) for the members of two records.
  static constexpr void ofBoth(auto& one, auto& other, auto&& see) {
    Members<Record>::apply(one, [&](auto&... ones) {
      Members<Record>::apply(other, [&](auto&... others) {
        std::size_t at = 0;
        const int done[] = {(see(Members<Record>::kInfos[at++], ones, others), 0)...};
        (void)done;
      });
    });
  }
};

// ---- what the lists are made of ----------------------------------------------------------------------

// The names of a list as it was written. For a name with an object before it ("record.name"), only the last part.
template <std::size_t N>
consteval std::array<MemberInfo, N> infosIn(std::string_view list) {
  constexpr std::string_view kUnstored = "UNSTORED(";
  std::array<MemberInfo, N> infos;
  for (MemberInfo& info : infos) {
    const std::size_t comma = std::min(list.find(','), list.size());
    std::string_view one = list.substr(0, comma);
    list.remove_prefix(std::min(comma + 1, list.size()));
    one.remove_prefix(one.find_first_not_of(' '));
    if (one.starts_with(kUnstored)) {
      info.isStored = false;
      one = one.substr(kUnstored.size(), one.find(')') - kUnstored.size());
    }
    one.remove_prefix(one.rfind('.') + 1);
    info.name = one.substr(0, one.find(' '));
  }
  return infos;
}
consteval std::size_t countIn(std::string_view list) {
  return 1 + static_cast<std::size_t>(std::count(list.begin(), list.end(), ','));
}
template <std::size_t N, std::size_t M>
consteval std::array<MemberInfo, N + M> joined(const std::array<MemberInfo, N>& first,
                                               const std::array<MemberInfo, M>& second) {
  std::array<MemberInfo, N + M> all;
  std::copy(second.begin(), second.end(), std::copy(first.begin(), first.end(), all.begin()));
  return all;
}

}  // namespace oldtorvio::values

#define UNSTORED(name) name

// apply(record, fn) calls fn with all members. They are bound by their position, so that none can be left out;
// ByName binds them by name, and a test compares the two.
#define MEMBERS(RECORD, ...)                                                                          \
  template <>                                                                                         \
  struct Members<RECORD> : MembersOf<RECORD> {                                                        \
    static constexpr std::string_view kRecordName = #RECORD;                                          \
    static constexpr auto kInfos = infosIn<countIn(#__VA_ARGS__)>(#__VA_ARGS__);                      \
    static constexpr decltype(auto) apply(auto& recordOfAll, auto&& functionOfMembers) {              \
      auto& [__VA_ARGS__] = recordOfAll;                                                              \
      return functionOfMembers(__VA_ARGS__);                                                          \
    }                                                                                                 \
    struct ByName : RECORD {                                                                          \
      decltype(auto) applyByName(auto&& functionOfMembers) { return functionOfMembers(__VA_ARGS__); } \
    };                                                                                                \
  }

// A record with a base record, whose members come first. Its own are written as members of `record`; they cannot
// be bound by position, so that only the tests find one that is left out.
#define MEMBERS_BEYOND(BASE, RECORD, ...)                                                                              \
  template <>                                                                                                          \
  struct Members<RECORD> : MembersOf<RECORD> {                                                                         \
    static constexpr std::string_view kRecordName = #RECORD;                                                           \
    static constexpr auto kInfos = joined(Members<BASE>::kInfos, infosIn<countIn(#__VA_ARGS__)>(#__VA_ARGS__));        \
    static constexpr decltype(auto) apply(auto& record, auto&& functionOfMembers) {                                    \
      std::conditional_t<std::is_const_v<std::remove_reference_t<decltype(record)>>, const BASE, BASE>& base = record; \
      return Members<BASE>::apply(                                                                                     \
          base, [&](auto&... inherited) -> decltype(auto) { return functionOfMembers(inherited..., __VA_ARGS__); });   \
    }                                                                                                                  \
    struct ByName : RECORD {                                                                                           \
      decltype(auto) applyByName(auto&& functionOfMembers) {                                                           \
        return apply(static_cast<RECORD&>(*this), functionOfMembers);                                                  \
      }                                                                                                                \
    };                                                                                                                 \
  }
