// Whether two records have equal contents, and where they differ first: every member, stored or not, every array to
// its end. Floats are compared by their bits: a NaN equals itself, and 0 differs from -0.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "torvio/values/all_members.h"

namespace oldtorvio::values {

template <class T>
constexpr bool isPlain();

struct ArePlain {
  template <class... T>
  constexpr auto operator()(T&...) const {
    constexpr bool all[] = {isPlain<std::remove_const_t<T>>()...};
    return std::bool_constant<std::find(std::begin(all), std::end(all), false) == std::end(all)>();
  }
};

// Whether a T consists only of numbers, all stored in the T itself.
template <class T>
constexpr bool isPlain() {
  if constexpr (Number<T>)
    return true;
  else if constexpr (Array<T>)
    return isPlain<ElementOf<T>>();
  else if constexpr (kIsPair<T>)
    return isPlain<typename T::first_type>() && isPlain<typename T::second_type>();
  else if constexpr (HasMembers<T>)
    return decltype(Members<T>::apply(std::declval<T&>(), ArePlain()))::value;
  else
    return false;
}

// A run of bytes in a T that are numbers without padding between them.
struct Run {
  std::size_t offset = 0, size = 0;
};

template <class T>
void addRuns(std::vector<Run>& runs, const std::byte* begin, const T& value) {
  if constexpr (Number<T> || FixedText<T>) {
    const auto offset = static_cast<std::size_t>(reinterpret_cast<const std::byte*>(&value) - begin);
    if (!runs.empty() && runs.back().offset + runs.back().size == offset)
      runs.back().size += sizeof value;
    else
      runs.push_back({offset, sizeof value});
  } else if constexpr (Array<T>) {
    for (const auto& element : value) addRuns(runs, begin, element);
  } else if constexpr (kIsPair<T>) {
    addRuns(runs, begin, value.first);
    addRuns(runs, begin, value.second);
  } else if constexpr (HasMembers<T>) {
    Members<T>::of(value, [&](const MemberInfo&, const auto& member) { addRuns(runs, begin, member); });
  }
}

// The runs are the same for every T: they are found in the first one that is compared.
template <class T>
const std::vector<Run>& runsOf(const T& value) {
  static const std::vector<Run> runs = [&] {
    std::vector<Run> found;
    addRuns(found, reinterpret_cast<const std::byte*>(&value), value);
    return found;
  }();
  return runs;
}

template <class T>
bool haveEqualRuns(const T& a, const T& b, const std::vector<Run>& runs) {
  const auto* const ofA = reinterpret_cast<const std::byte*>(&a);
  const auto* const ofB = reinterpret_cast<const std::byte*>(&b);
  for (const Run& run : runs)
    if (std::memcmp(ofA + run.offset, ofB + run.offset, run.size) != 0) return false;
  return true;
}

template <class T>
bool equalContents(const T& a, const T& b);

template <class T>
bool haveEqualElements(const std::vector<T>& a, const std::vector<T>& b) {
  if (a.size() != b.size()) return false;
  if (a.empty()) return true;
  if constexpr (isPlain<T>()) {
    const std::vector<Run>& runs = runsOf(a.front());
    if (runs.size() == 1 && runs.front().size == sizeof(T))
      return std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
  }
  for (std::size_t i = 0; i < a.size(); ++i)
    if (!equalContents(a[i], b[i])) return false;
  return true;
}

// Compares what is not in a run: texts, lists and lazy arrays.
template <class T>
bool equalBeyondRuns(const T& a, const T& b) {
  if constexpr (isPlain<T>()) {
    return true;
  } else if constexpr (Text<T>) {
    return a == b;
  } else if constexpr (List<T>) {
    return haveEqualElements(a, b);
  } else if constexpr (Array<T>) {
    for (std::size_t i = 0; i < std::size(a); ++i)
      if (!equalBeyondRuns(a[i], b[i])) return false;
    return true;
  } else if constexpr (Lazy<T>) {
    for (std::size_t i = 0; i < T::size(); ++i) {
      // All unallocated elements are one object.
      const auto &ofA = a[i], &ofB = b[i];
      if (&ofA != &ofB && !equalContents(ofA, ofB)) return false;
    }
    return true;
  } else {
    bool isEqual = true;
    Members<T>::ofBoth(a, b, [&](const MemberInfo&, const auto& ofA, const auto& ofB) {
      isEqual = isEqual && equalBeyondRuns(ofA, ofB);
    });
    return isEqual;
  }
}

// For records and everything in them.
template <class T>
bool equalContents(const T& a, const T& b) {
  return haveEqualRuns(a, b, runsOf(a)) && equalBeyondRuns(a, b);
}

// ---- where ------------------------------------------------------------------------------------------

// Paths grow from their ends: once a difference is found, each owner puts its name before the path.
inline bool prependName(std::string_view member, std::string& path) {
  if (!path.empty() && path.front() != '[') path.insert(0, 1, '.');
  path.insert(0, member);
  return true;
}
inline bool prependIndex(std::size_t index, std::string& path) {
  const std::string before = path.empty() || path.front() == '[' ? "" : ".";
  path.insert(0, '[' + std::to_string(index) + ']' + before);
  return true;
}
inline bool findInNumbers(const void* a, const void* b, std::size_t count, std::size_t size, std::string& path) {
  const auto* const ofA = static_cast<const std::byte*>(a);
  const auto* const ofB = static_cast<const std::byte*>(b);
  for (std::size_t i = 0; i < count; ++i)
    if (std::memcmp(ofA + i * size, ofB + i * size, size) != 0) return prependIndex(i, path);
  return false;
}

// Lists of different lengths differ as a whole, and so do texts.
template <class T>
bool findDifference(const T& a, const T& b, std::string& path) {
  if constexpr (Number<T> || FixedText<T>) {
    return std::memcmp(&a, &b, sizeof a) != 0;
  } else if constexpr (Text<T>) {
    return a != b;
  } else if constexpr (kIsPair<T>) {
    return findDifference(a.first, b.first, path)
               ? prependName("first", path)
               : findDifference(a.second, b.second, path) && prependName("second", path);
  } else if constexpr (HasMembers<T>) {
    bool isFound = false;
    Members<T>::ofBoth(a, b, [&](const MemberInfo& info, const auto& ofA, const auto& ofB) {
      isFound = isFound || (findDifference(ofA, ofB, path) && prependName(info.name, path));
    });
    return isFound;
  } else {
    if (std::size(a) != std::size(b)) return true;
    if constexpr (Number<ElementOf<T>>) {
      return findInNumbers(std::data(a), std::data(b), std::size(a), sizeof(ElementOf<T>), path);
    } else {
      for (std::size_t i = 0; i < std::size(a); ++i)
        if (findDifference(a[i], b[i], path)) return prependIndex(i, path);
      return false;
    }
  }
}

// The path of the first member that differs, such as "patterns[0].items[3].toolNumber".
template <HasMembers R>
std::optional<std::string> firstDifference(const R& a, const R& b) {
  std::string path;
  if (!findDifference(a, b, path)) return std::nullopt;
  return path;
}

}  // namespace oldtorvio::values

namespace oldtorvio {

template <values::HasMembers R>
bool operator==(const R& a, const R& b) {
  return values::equalContents(a, b);
}

}  // namespace oldtorvio
