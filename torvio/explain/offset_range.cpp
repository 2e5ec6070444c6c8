#include "torvio/explain/offset_range.h"

#include <charconv>

namespace oldtorvio::explain {

std::optional<std::uint64_t> OffsetRange::numberIn(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  const bool isNumber = error == std::errc() && end == text.data() + text.size();
  return isNumber ? std::optional(value) : std::nullopt;
}

std::optional<OffsetRange> OffsetRange::parsed(std::string_view text) {
  constexpr std::string_view kDots = "..";
  OffsetRange range;
  const std::size_t dots = text.find(kDots);
  const std::string_view first = text.substr(0, dots);
  const std::string_view last = dots == std::string_view::npos ? first : text.substr(dots + kDots.size());
  if (first.empty() && last.empty()) return std::nullopt;
  if (!first.empty()) {
    const auto number = numberIn(first);
    if (!number) return std::nullopt;
    range.first = *number;
  }
  if (!last.empty()) {
    const auto number = numberIn(last);
    if (!number || *number < range.first) return std::nullopt;
    range.last = *number;
  }
  return range;
}

}  // namespace oldtorvio::explain
