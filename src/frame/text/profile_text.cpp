#include "src/frame/text/profile_text.h"

#include <algorithm>

#include "src/frame/text/text.h"

namespace oldtorvio::frame {
namespace {

std::string_view withoutOuterBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\v\f";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view withoutQuotes(std::string_view text) {
  if (text.size() < 2 || text.front() != text.back()) return text;
  if (text.front() != '"' && text.front() != '\'') return text;
  return text.substr(1, text.size() - 2);
}

}  // namespace

std::string profileValue(std::string_view content, std::string_view section, std::string_view key, std::size_t size) {
  bool inSection = false;
  while (!content.empty()) {
    const std::size_t end = std::min(content.find('\n'), content.size());
    const std::string_view line = withoutOuterBlanks(content.substr(0, end));
    content.remove_prefix(std::min(end + 1, content.size()));

    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[') {
      if (inSection) return {};
      const std::size_t close = line.find(']');
      inSection =
          close != std::string_view::npos && equalNoCase(withoutOuterBlanks(line.substr(1, close - 1)), section);
      continue;
    }
    const std::size_t equals = line.find('=');
    if (!inSection || equals == std::string_view::npos) continue;
    if (!equalNoCase(withoutOuterBlanks(line.substr(0, equals)), key)) continue;
    return std::string(withoutQuotes(withoutOuterBlanks(line.substr(equals + 1))).substr(0, size - 1));
  }
  return {};
}

}  // namespace oldtorvio::frame
