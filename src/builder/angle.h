// The angle of a group, reduced by the symmetry of its tool.
#pragma once
#include <cstdint>

namespace oldtorvio {

// Reduces an angle (radians) to the range from 0 to half a turn or to a quarter turn, by symmetry, both ends included.
// Each step is computed in double precision and rounded to single. If a step does not change the angle because it is
// too large, it is returned as it is, and so is a NaN.
float reducedAngle(float angle, std::uint32_t symmetryFlags);

}  // namespace oldtorvio
