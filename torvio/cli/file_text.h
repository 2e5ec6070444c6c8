// Texts about files that several commands print.
#pragma once

namespace torvio {

inline constexpr const char* kNoMemory = "cannot be read: not enough memory";

}  // namespace torvio
