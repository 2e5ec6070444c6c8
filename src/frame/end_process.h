#pragma once

namespace oldtorvio {

// Ends the process: the one answer to a caller's error that has no result, such as a text that does
// not fit a checked copy. Nothing that a file holds may lead here.
[[noreturn]] void EndProcess() noexcept;

}  // namespace oldtorvio
