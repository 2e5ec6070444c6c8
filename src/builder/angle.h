// The angle of a group whose tool repeats itself.
#pragma once
#include <cstdint>

namespace oldtorvio {

// Brings an angle (radians) into the range that the tool's symmetry leaves different: 0 to a half
// turn or a quarter turn, both ends included. Each step is taken in double precision and rounded to
// single. An angle that a step no longer changes, and one that is no number, is left as it is.
float reducedAngle(float angle, std::uint32_t symmetryFlags);

}  // namespace oldtorvio
