// Lookup in the text of a "win.ini" file, by the rules of the Windows call GetPrivateProfileString.
#pragma once
#include <string>
#include <string_view>

namespace oldtorvio::frame {

// The value of `key` in the first section with that name, without outer blanks and one pair of quotes, at most
// `size` - 1 characters. Empty if there is none. The case of A to Z is ignored in section and key.
std::string profileValue(std::string_view content, std::string_view section, std::string_view key, std::size_t size);

}  // namespace oldtorvio::frame
