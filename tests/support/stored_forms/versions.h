// The versions of each kind of file, written down independently of src/frame/versions.h.
#pragma once
#include <algorithm>
#include <initializer_list>
#include <vector>

namespace testing_support {

// The versions with a stored form of their own, and the range that sheets and machines are saved in.
inline constexpr int kFirstVersion = 52, kLastVersion = 180;

// One version, or all from the first to the last.
struct VersionRun {
  int first, last;
  VersionRun(int one) : VersionRun(one, one) {}  // NOLINT: a single version reads best as a number
  VersionRun(int from, int to) : first(from), last(to) {}
};
inline std::vector<int> versionsIn(std::initializer_list<VersionRun> runs) {
  std::vector<int> all;
  for (const VersionRun& run : runs)
    for (int v = run.first; v <= run.last; ++v) all.push_back(v);
  return all;
}

inline const std::vector<int>& allVersions() {
  static const std::vector<int> all = versionsIn({{kFirstVersion, kLastVersion}});
  return all;
}
// Without 2, 3 and 5.
inline const std::vector<int>& partVersions() {
  static const std::vector<int> all = versionsIn(
      {52, 54, {60, 62}, 71, 80, {90, 92}, {100, 102}, {110, 112}, {120, 121}, 130, {140, 141}, {150, 162}, 170, 180});
  return all;
}
inline const std::vector<int>& specialToolVersions() {
  static const std::vector<int> all =
      versionsIn({52, 54, 60, {90, 92}, {100, 102}, {110, 112}, {120, 121}, 130, {140, 141}, {150, 162}, 170, 180});
  return all;
}
// Of tool inventories, and those that most functions on sheets and the two on the current machine accept.
inline const std::vector<int>& inventoryVersions() {
  static const std::vector<int> all =
      versionsIn({54, 60, 80, {90, 92}, {100, 102}, {110, 112}, {120, 121}, 130, {140, 141}, {150, 162}, 170, 180});
  return all;
}
inline const std::vector<int>& macroVersions() {
  static const std::vector<int> all = versionsIn(
      {52, 54, {60, 62}, 80, {90, 92}, {100, 102}, {110, 112}, {120, 121}, 130, {140, 141}, {150, 162}, 170, 180});
  return all;
}
// Of materials that are more than a parameter table.
inline const std::vector<int>& longMaterialVersions() {
  static const std::vector<int> all = versionsIn(
      {{61, 62}, 71, 80, {90, 92}, {101, 102}, {110, 112}, {120, 121}, 130, {140, 141}, {150, 162}, 170, 180});
  return all;
}

inline std::vector<int> joined(std::vector<int> first, const std::vector<int>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}
inline bool contains(const std::vector<int>& versions, int version) {
  return std::find(versions.begin(), versions.end(), version) != versions.end();
}

}  // namespace testing_support
