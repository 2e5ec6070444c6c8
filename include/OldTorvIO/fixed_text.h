// The texts of the records: fields of a fixed size with a text, a NUL and whatever bytes the file stores after it. A
// text that fills its field has no NUL. These two functions get and set such a field.
#pragma once
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace oldtorvio {

// The text of a field: up to its NUL, or the complete field if it has none. The view refers to the field itself.
template <std::size_t N>
std::string_view fixedText(const char (&field)[N]) {
  return {field, static_cast<std::size_t>(std::find(field, field + N, '\0') - field)};
}
template <std::size_t N>
std::string_view fixedText(const std::array<char, N>& field) {
  return {field.data(), static_cast<std::size_t>(std::find(field.begin(), field.end(), '\0') - field.begin())};
}

// Sets a field to `text` and a NUL. The bytes after the NUL are unchanged; a save stores them too. Returns false and
// leaves the field unchanged if text and NUL do not fit or if the text contains a NUL. `text` may be part of the field
// itself.
template <std::size_t N>
[[nodiscard]] bool setFixedText(char (&field)[N], std::string_view text) {
  if (text.size() >= N || text.find('\0') != std::string_view::npos) return false;
  if (!text.empty()) std::memmove(field, text.data(), text.size());
  field[text.size()] = '\0';
  return true;
}
template <std::size_t N>
[[nodiscard]] bool setFixedText(std::array<char, N>& field, std::string_view text) {
  if (text.size() >= N || text.find('\0') != std::string_view::npos) return false;
  if (!text.empty()) std::memmove(field.data(), text.data(), text.size());
  field[text.size()] = '\0';
  return true;
}

}  // namespace oldtorvio
