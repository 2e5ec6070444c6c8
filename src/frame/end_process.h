#pragma once

namespace oldtorvio {

// Ends the process: the one answer to a caller's error that has no result, such as a text that does
// not fit a checked copy. What a file holds leads here where the public header says so and nowhere else.
[[noreturn]] void EndProcess() noexcept;

// The same for an index outside a list of the file: std::out_of_range is thrown with the text "invalid vector<T>
// subscript" and not caught, so that the text appears on the error stream.
[[noreturn]] void EndProcessForSubscript() noexcept;

}  // namespace oldtorvio
