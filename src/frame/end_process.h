#pragma once

namespace oldtorvio {

// Ends the process: the one answer to a caller's error that has no result, such as a text that does
// not fit a checked copy. What a file holds leads here where the public header says so and nowhere else.
[[noreturn]] void EndProcess() noexcept;

}  // namespace oldtorvio
