// Lookup in the text of a "win.ini", as the system call of that name does it.
#pragma once
#include <string>
#include <string_view>

namespace oldtorvio::frame {

// The value of `key` in the first section of that name: outer blanks and one pair of quotes taken
// off, cut to `size` - 1 characters. Empty when there is none.
std::string profileValue(std::string_view content, std::string_view section, std::string_view key, std::size_t size);

}  // namespace oldtorvio::frame
