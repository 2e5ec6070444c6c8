#include "src/sheet/nest.h"

#include <algorithm>

namespace oldtorvio {
namespace {

bool usesSpecialStation(const ProfileRecord& profile) {
  return static_cast<std::int32_t>(profile.profileWords[1]) % 10 == 7 && profile.firstBlock.motionKind != 5 &&
         profile.profileCondition1 != 0 && profile.profileCondition2 != 0;
}

bool nestUsesSpecialStation(const OldSheet& sheet) {
  const auto anyOfPattern = [](const Pattern& pattern) {
    return std::ranges::any_of(pattern.profiles, usesSpecialStation);
  };
  const auto anyOfPart = [&](const TorvPart& part) { return std::ranges::any_of(part.patterns, anyOfPattern); };
  return std::ranges::any_of(sheet.profiles, usesSpecialStation) ||
         std::ranges::any_of(sheet.partList.parts, anyOfPart);
}

}  // namespace

std::optional<std::int64_t> specialStationOf(const OldSheet& sheet) {
  constexpr std::int32_t kCombined = 4;
  constexpr unsigned kSpecial = 2;
  if (sheet.machine.machineKind != kCombined || !nestUsesSpecialStation(sheet)) return std::nullopt;
  const auto& stations = stationListOf(sheet.machine).stations;
  const auto special = std::ranges::find_if(stations, [](auto& s) { return (s.byteA & kSpecial) != 0; });
  if (special == stations.end()) return std::nullopt;
  return special - stations.begin() + 1;
}

std::uint32_t quantityOf(const TorvPart& part) {
  std::uint32_t quantity = 0;
  for (const Pattern& pattern : part.patterns) quantity += pattern.gridCount1 * pattern.gridCount2;
  return quantity;
}

}  // namespace oldtorvio
