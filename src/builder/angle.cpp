#include "src/builder/angle.h"

#include <numbers>

#include "src/records/tool_layout.h"

namespace oldtorvio {

float reducedAngle(float angle, std::uint32_t symmetryFlags) {
  if ((symmetryFlags & (kHalfTurnSymmetry | kQuarterTurnSymmetry)) == 0) return angle;
  const double step = (symmetryFlags & kHalfTurnSymmetry) != 0 ? std::numbers::pi : std::numbers::pi / 2;
  for (;;) {
    const auto wide = static_cast<double>(angle);
    if (wide >= 0 && wide <= step) return angle;
    const auto next = static_cast<float>(wide < 0 ? wide + step : wide - step);
    // A NaN differs from itself.
    if (next == angle || next != next) return angle;
    angle = next;
  }
}

}  // namespace oldtorvio
