// Fixed texts, names and numbers as text. Nothing here looks at the host's locale.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "src/frame/end_process.h"

namespace oldtorvio::frame {

// The text of a fixed field: up to its NUL, or all of it when it has none.
template <std::size_t N>
std::string_view textOf(const char (&field)[N]) {
  return {field, static_cast<std::size_t>(std::find(field, field + N, '\0') - field)};
}

// Sets a field to a text and its NUL; the bytes behind them stay, as they would be stored.
template <std::size_t N>
void setText(char (&field)[N], std::string_view text) {
  if (text.size() >= N) EndProcess();
  // A caller may load a record again from the path that it holds.
  if (!text.empty()) std::memmove(field, text.data(), text.size());
  field[text.size()] = '\0';
}

// As setText, for a path that a load was given: of a longer one the field keeps what fits.
template <std::size_t N>
void setPath(char (&field)[N], std::string_view path) {
  setText(field, path.substr(0, N - 1));
}

// Sets a field to another's text and NUL, as setText does; a text without a NUL fills it.
template <std::size_t N>
void copyText(char (&field)[N], const char (&from)[N]) {
  const std::string_view text = textOf(from);
  std::memcpy(field, from, std::min(text.size() + 1, N));
}

// Copies a text and its NUL to a caller's buffer, whose size the caller answers for.
inline void giveText(char* to, std::string_view text) {
  if (!text.empty()) std::memcpy(to, text.data(), text.size());
  to[text.size()] = '\0';
}

// Gives the length, and the text where it fits with its NUL into `size` characters.
void giveBoundedText(std::string_view text, char* to, std::int32_t size, std::uint32_t& length);

// Without regard to case of A to Z; other characters compare as they stand.
bool equalNoCase(std::string_view a, std::string_view b);

// The last piece of a path without its extension. "\" and "/" separate, so does ":" behind a drive
// letter.
std::string_view baseName(std::string_view path);

void appendInteger(std::string& to, std::int64_t value);
void appendFixed3(std::string& to, double value);  // as "%6.3f"
void appendFixed6(std::string& to, double value);  // as "%f"
std::string general(double value);                 // as "%g"

// What printing `format` without any values gives: a directive prints what it prints for zero or an
// empty text, "%%" a "%", and a "%" that begins no directive is left out. At most `longest` characters.
std::string printedWithoutValues(std::string_view format, std::size_t longest);

}  // namespace oldtorvio::frame
