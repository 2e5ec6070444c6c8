// Names of files for Windows. torvio keeps every name as UTF-8, on all hosts.
#pragma once
#if defined(_WIN32)
#include <string>
#include <string_view>

namespace oldtorvio::explain {

// The name in UTF-16; empty if it is not UTF-8. Half of a surrogate pair, which Windows allows in names, is encoded as
// the three bytes that UTF-8 would use for its code.
std::wstring wideName(std::string_view name);
// The name in UTF-8: the inverse.
std::string narrowName(std::wstring_view name);

// The name for functions of the system: one of more than 260 characters is made absolute, with "\\?\" before it.
std::wstring systemName(std::string_view name);

}  // namespace oldtorvio::explain
#endif
