// The angle of a group, reduced by the symmetry of its tool.
#pragma once
#include <cstdint>

namespace oldtorvio {

// Reduces an angle (radians) to 0 to half a turn or 0 to a quarter turn, as the symmetry allows, both ends included.
// Each step is computed in double precision and rounded to single. An angle so large that a step does not change it
// is returned as it is then, and so is a NaN.
float reducedAngle(float angle, std::uint32_t symmetryFlags);

}  // namespace oldtorvio
