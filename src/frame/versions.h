// The file versions that each kind of file accepts. The gaps are deliberate.
#pragma once
#include <array>
#include <cstddef>
#include <initializer_list>

namespace oldtorvio::frame {

class VersionSet {
 public:
  struct Run {
    int first, last;
    constexpr Run(int one) : first(one), last(one) {}  // NOLINT: a single version reads best as a number
    constexpr Run(int from, int to) : first(from), last(to) {}
  };

  constexpr VersionSet(std::initializer_list<Run> runs) {
    for (const Run& run : runs)
      for (int v = run.first; v <= run.last; ++v) member_[static_cast<std::size_t>(v)] = true;
  }
  [[nodiscard]] constexpr bool has(int version) const {
    return version >= 0 && version <= kHighest && member_[static_cast<std::size_t>(version)];
  }

  static constexpr int kHighest = 180;

 private:
  std::array<bool, kHighest + 1> member_{};
};

inline constexpr VersionSet kPartVersions{2,   3,   5,   52,  54,  60,  61,  62,  71,  80,  90,         91,  92, 100,
                                          101, 102, 110, 111, 112, 120, 121, 130, 140, 141, {150, 162}, 170, 180};

inline constexpr VersionSet kSpecialToolVersions{0,   1,   52,  54,  60,  90,  91,  92,  100,        101, 102,
                                                 110, 111, 112, 120, 121, 130, 140, 141, {150, 162}, 170, 180};

// Edits of sheets accept these version words; queries of sheets and machines only those of them from 54 on.
inline constexpr VersionSet KnownSheetVersions{1,   6,   52,  54,  60,  80,  90,  91,  92,         100, 101, 102,
                                               110, 111, 112, 120, 121, 130, 140, 141, {150, 162}, 170, 180};

inline constexpr VersionSet kMacroVersions{3,   5,   52,  54,  60,  61,  62,  80,  90,  91,         92,  100, 101,
                                           102, 110, 111, 112, 120, 121, 130, 140, 141, {150, 162}, 170, 180};

// A material file of one of these versions consists of a parameter table only.
constexpr bool isParamTableVersion(int version) {
  return version == 52 || version == 60 || (version >= 500 && version <= 502);
}
inline constexpr VersionSet kLongMaterialVersions{61,  62,  71,  80,  90,  91,  92,  101,        102, 110,
                                                  111, 112, 120, 121, 130, 140, 141, {150, 162}, 170, 180};
constexpr bool isMaterialVersion(int version) {
  return isParamTableVersion(version) || kLongMaterialVersions.has(version);
}

// Files below this version have other layouts, or none that is supported.
inline constexpr int kFirstMainVersion = 52;
inline constexpr int kVersion5 = 5;  // of parts

constexpr bool isPartVersion(int version) { return kPartVersions.has(version); }
constexpr bool isSpecialToolVersion(int version) {
  return version >= kFirstMainVersion && kSpecialToolVersions.has(version);
}
// Tool inventories have the same list.
constexpr bool isToolInventoryVersion(int version) { return version >= 54 && KnownSheetVersions.has(version); }
constexpr bool isMacroVersion(int version) { return version >= kFirstMainVersion && kMacroVersions.has(version); }
// Machine files load at any version of this range; queries of the current machine accept only those of inventories.
inline constexpr VersionSet kMachineVersions{{kFirstMainVersion, 180}};
constexpr bool isMachineVersion(int version) { return kMachineVersions.has(version); }
constexpr bool isKnownSheetVersion(int version) { return isToolInventoryVersion(version); }
// Edits of sheets check only the list.
constexpr bool isListedSheetVersion(int version) { return KnownSheetVersions.has(version); }
inline constexpr VersionSet kSavedSheetVersions{{kFirstMainVersion, 180}};
constexpr bool isSavedSheetVersion(int version) { return kSavedSheetVersions.has(version); }
constexpr bool isSheetVersion(int version) { return isSavedSheetVersion(version) || version >= 500; }

// The first version of group part files. Every later one is accepted.
inline constexpr int kFirstGroupPartVersion = 152;
constexpr bool isGroupPartVersion(int version) { return version >= kFirstGroupPartVersion; }

}  // namespace oldtorvio::frame

namespace oldtorvio {
using frame::KnownSheetVersions;
}  // namespace oldtorvio
