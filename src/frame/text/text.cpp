#include "src/frame/text/text.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace oldtorvio::frame {
namespace {

char folded(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The largest double has 309 digits before its point.
constexpr std::size_t kLongestNumber = 352;

std::string number(double value, std::chars_format format, int precision) {
  if (std::isnan(value)) return std::signbit(value) ? "-nan" : "nan";
  char digits[kLongestNumber];
  const auto done = std::to_chars(std::begin(digits), std::end(digits), value, format, precision);
  return {digits, done.ptr};
}

}  // namespace

void copyOutBounded(std::string_view text, char* to, std::int32_t size, std::uint32_t& length) {
  length = static_cast<std::uint32_t>(text.size());
  if (static_cast<std::int64_t>(text.size()) < size) copyOut(to, text);
}

bool equalNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return folded(x) == folded(y); });
}

std::string_view baseName(std::string_view path) {
  if (path.size() >= 2 && path[1] == ':' && folded(path[0]) >= 'a' && folded(path[0]) <= 'z') path.remove_prefix(2);
  if (const std::size_t cut = path.find_last_of("\\/"); cut != std::string_view::npos) path.remove_prefix(cut + 1);
  return path.substr(0, path.rfind('.'));
}

void appendInteger(std::string& to, std::int64_t value) {
  char digits[kLongestNumber];
  const auto done = std::to_chars(std::begin(digits), std::end(digits), value);
  to.append(digits, done.ptr);
}

void appendFixed3(std::string& to, double value) {
  constexpr std::size_t kWidth = 6;
  const std::string digits = number(value, std::chars_format::fixed, 3);
  if (digits.size() < kWidth) to.append(kWidth - digits.size(), ' ');
  to.append(digits);
}

void appendFixed6(std::string& to, double value) { to += number(value, std::chars_format::fixed, 6); }

std::string general(double value) { return number(value, std::chars_format::general, 6); }

}  // namespace oldtorvio::frame
