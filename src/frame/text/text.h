// Fixed-size texts, file names and number formatting. Nothing here reads the host's locale.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "OldTorvIO/fixed_text.h"
#include "src/frame/end_process.h"

namespace oldtorvio::frame {

// Sets a field as setFixedText does, but ends the process if the text does not fit.
template <std::size_t N>
void setText(char (&field)[N], std::string_view text) {
  if (!setFixedText(field, text)) EndProcess();
}

// As setText for the path of a load, but truncates a path that does not fit. `path` may be the field itself: a
// caller may reload a record from the path in it.
template <std::size_t N>
void setPath(char (&field)[N], std::string_view path) {
  setText(field, path.substr(0, N - 1));
}

// Copies the text of one field to another of the same size, with its NUL if it has one. The bytes after it stay.
template <std::size_t N>
void copyText(char (&field)[N], const char (&from)[N]) {
  const std::string_view text = fixedText(from);
  std::memcpy(field, from, std::min(text.size() + 1, N));
}

// Copies a text and its NUL to a caller's buffer, which must have room for both.
inline void copyOut(char* to, std::string_view text) {
  if (!text.empty()) std::memcpy(to, text.data(), text.size());
  to[text.size()] = '\0';
}

// Sets `length`, and copies the text if it fits into `size` characters with its NUL.
void copyOutBounded(std::string_view text, char* to, std::int32_t size, std::uint32_t& length);

// Ignores the case of A to Z only.
bool equalNoCase(std::string_view a, std::string_view b);

// The last component of a path without its extension. The separators are "\" and "/", and ":" after a drive
// letter.
std::string_view baseName(std::string_view path);

void appendInteger(std::string& to, std::int64_t value);
void appendFixed3(std::string& to, double value);  // as "%6.3f"
void appendFixed6(std::string& to, double value);  // as "%f"
std::string general(double value);                 // as "%g"

// The output of printf for `format` without arguments: a directive prints what it would print for zero or an empty
// text, "%%" prints "%", and a "%" that begins no directive is dropped. At most `longest` characters.
std::string printedWithoutValues(std::string_view format, std::size_t longest);

}  // namespace oldtorvio::frame
