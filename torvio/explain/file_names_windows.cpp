#if defined(_WIN32)
#include <windows.h>

#include <algorithm>
#include <cstdint>

#include "torvio/explain/file_names.h"

namespace oldtorvio::explain {
namespace {

constexpr char32_t kFirstHigh = 0xD800, kFirstLow = 0xDC00, kAfterLow = 0xE000, kFirstPair = 0x10000;

bool isHigh(char32_t c) { return c >= kFirstHigh && c < kFirstLow; }
bool isLow(char32_t c) { return c >= kFirstLow && c < kAfterLow; }

// The first character, which is removed; nothing if the text does not begin with one.
constexpr char32_t kNone = 0xFFFFFFFF;
char32_t take(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t size = first < 0x80   ? 1
                           : first < 0xC2 ? 0
                           : first < 0xE0 ? 2
                           : first < 0xF0 ? 3
                           : first < 0xF5 ? 4
                                          : 0;
  if (size == 0 || size > text.size()) return kNone;
  char32_t code = size == 1 ? first : first & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80) return kNone;
    code = code << 6U | (byte & 0x3FU);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, kFirstPair};
  if (code < kLeast[size] || code > 0x10FFFF) return kNone;
  text.remove_prefix(size);
  return code;
}

void append(std::string& to, char32_t code) {
  const auto last = [&](unsigned shift) { to += static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
  if (code < 0x80) {
    to += static_cast<char>(code);
  } else if (code < 0x800) {
    to += static_cast<char>(0xC0U | code >> 6U);
    last(0);
  } else if (code < kFirstPair) {
    to += static_cast<char>(0xE0U | code >> 12U);
    last(6);
    last(0);
  } else {
    to += static_cast<char>(0xF0U | code >> 18U);
    last(12);
    last(6);
    last(0);
  }
}

// The path from the root of its drive or share.
std::wstring absolute(const std::wstring& name) {
  std::wstring full(MAX_PATH, L'\0');
  while (true) {
    const DWORD size = ::GetFullPathNameW(name.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (size == 0) return name;
    const bool isComplete = size < full.size();
    full.resize(size);
    if (isComplete) return full;
  }
}

}  // namespace

std::wstring wideName(std::string_view name) {
  std::wstring wide;
  while (!name.empty()) {
    const char32_t code = take(name);
    if (code == kNone) return {};
    if (code < kFirstPair) {
      wide += static_cast<wchar_t>(code);
    } else {
      wide += static_cast<wchar_t>(kFirstHigh + ((code - kFirstPair) >> 10U));
      wide += static_cast<wchar_t>(kFirstLow + ((code - kFirstPair) & 0x3FFU));
    }
  }
  return wide;
}

std::string narrowName(std::wstring_view name) {
  std::string narrow;
  for (std::size_t i = 0; i < name.size(); ++i) {
    char32_t code = name[i];
    if (isHigh(code) && i + 1 < name.size() && isLow(name[i + 1]))
      code = kFirstPair + ((code - kFirstHigh) << 10U) + (name[++i] - kFirstLow);
    append(narrow, code);
  }
  return narrow;
}

std::wstring systemName(std::string_view name) {
  // Functions for files accept 259 characters, those for folders 247.
  constexpr std::size_t kLongest = 247;
  std::wstring wide = wideName(name);
  if (wide.starts_with(L"\\\\?\\")) {
    // Here "/" would be a character of a name.
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    return wide;
  }
  if (wide.empty()) return wide;
  const std::wstring full = absolute(wide);
  if (full.size() <= kLongest || full.starts_with(L"\\\\.\\")) return wide;
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

}  // namespace oldtorvio::explain
#endif
