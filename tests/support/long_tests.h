// Whether tests run in their long form, which takes too long for every build.
#pragma once
#include <cstdlib>

namespace testing_support {

inline bool isLongRun() { return std::getenv("OLDTORVIO_LONG_TESTS") != nullptr; }

}  // namespace testing_support
