#pragma once

namespace oldtorvio {

// Ends the process. For caller errors that a function has no way to report, such as a text that does not fit where
// it is copied. The contents of a file cause this only where the public header says so.
[[noreturn]] void EndProcess() noexcept;

// The same for an index outside a list of the file. Throws std::out_of_range with the text "invalid vector<T>
// subscript"; since nothing catches it, the text appears on standard error.
[[noreturn]] void EndProcessForSubscript() noexcept;

}  // namespace oldtorvio
