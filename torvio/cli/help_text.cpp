#include "torvio/cli/help_text.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

namespace torvio {
namespace {

// "Kinds: part, ...", with the names on the same line.
bool isListOfNames(std::string_view line) {
  const std::size_t colon = line.find(": ");
  if (colon == std::string_view::npos || colon == 0) return false;
  return std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](unsigned char c) { return std::isalpha(c) != 0; });
}

std::string_view withoutBlanks(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

HelpPart entryIn(std::string_view line) {
  const std::size_t gap = line.find("  ");
  if (gap == std::string_view::npos) return {std::string(line), ""};
  return {std::string(line.substr(0, gap)), std::string(withoutBlanks(line.substr(gap)))};
}

void goOn(std::string& text, std::string_view line) {
  if (!text.empty()) text += ' ';
  text += line;
}

}  // namespace

std::string inLines(const std::string& text, std::size_t width) {
  std::string lines;
  std::size_t column = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '\n') {
      lines += '\n';
      column = 0;
      ++at;
      continue;
    }
    const std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
    if (column > 0 && column + 1 + (end - at) > width) {
      lines += '\n';
      column = 0;
    } else if (column > 0) {
      lines += ' ';
      ++column;
    }
    lines.append(text, at, end - at);
    column += end - at;
    at = end < text.size() && text[end] == ' ' ? end + 1 : end;
  }
  return lines;
}

std::vector<HelpSection> helpSections(const std::string& text) {
  std::vector<HelpSection> sections;
  HelpSection other, *section = &other;
  HelpSection named;
  bool isAfterBlank = true;
  const auto endNamed = [&] {
    if (section == &named) sections.push_back(std::move(named));
    named = {};
    section = &other;
  };
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::vector<HelpPart>& parts = section->parts;
    const bool isContinued = !parts.empty() && !isAfterBlank;
    if (line.empty()) {
      endNamed();
      isAfterBlank = true;
      continue;
    }
    if (line == "Exit code:" || line == "Examples:") {
      endNamed();
      named.title = line.substr(0, line.size() - 1);
      section = &named;
    } else if (isContinued && (line.starts_with("   ") || (line.starts_with("  ") && parts.back().term.empty() &&
                                                           parts.back().text.ends_with(',')))) {
      goOn(parts.back().text, withoutBlanks(line));
    } else if (line.starts_with("  ")) {
      parts.push_back(entryIn(withoutBlanks(line)));
    } else if (isContinued && parts.back().term.empty() && !isListOfNames(line)) {
      goOn(parts.back().text, line);
    } else {
      parts.push_back({"", line});
    }
    isAfterBlank = false;
  }
  endNamed();
  if (!other.parts.empty()) sections.insert(sections.begin(), std::move(other));
  return sections;
}

}  // namespace torvio
