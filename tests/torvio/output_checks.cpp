#include "tests/torvio/output_checks.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <vector>

#include "torvio/values/text_encoding.h"

namespace testing_support {
namespace {

bool isNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == ':'; }

std::string takeName(std::string_view& from) {
  std::string name;
  while (!from.empty() && isNameCharacter(from.front())) name += from.front(), from.remove_prefix(1);
  return name;
}

// Of "<name" or "</name".
struct Tag {
  bool isEnd = false;
  std::string name;
};
Tag takeTag(std::string_view& from) {
  from.remove_prefix(1);
  Tag tag{from.starts_with('/'), ""};
  if (tag.isEnd) from.remove_prefix(1);
  tag.name = takeName(from);
  return tag;
}

}  // namespace

std::string plainFault(std::string_view output) {
  for (std::size_t at = 0; at < output.size();) {
    const auto [code, size] = oldtorvio::values::firstCharacter(output.substr(at));
    const auto where = [&] {
      return " at " + std::to_string(at) + " after " +
             std::string(output.substr(at < 60 ? 0 : at - 60, std::min<std::size_t>(at, 60)));
    };
    if (size == 0) return "no UTF-8" + where();
    if (code != '\n' && oldtorvio::values::isActive(code))
      return "the character " + std::to_string(static_cast<unsigned>(code)) + where();
    at += size;
  }
  return "";
}

std::string textFault(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = static_cast<unsigned char>(text[i]);
    if (code < 0x20 && text[i] != '\n') return "a control character";
    if (code == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0) return "a C1 control";
    if (text[i] != '&') continue;
    const std::size_t end = text.find(';', i);
    static const std::set<std::string_view> kEntities{"&amp;", "&lt;", "&gt;", "&quot;", "&#39;"};
    if (end == std::string_view::npos || !kEntities.contains(text.substr(i, end - i + 1))) return "an unknown entity";
  }
  return "";
}

std::string svgFault(std::string_view svg) {
  static const std::set<std::string> kElements{"svg",  "title", "desc", "rect", "line",
                                               "path", "text",  "g",    "defs", "use"};
  if (svg.starts_with("<?xml")) svg.remove_prefix(svg.find("?>") + 2);
  std::vector<std::string> open;
  std::size_t roots = 0;
  while (!svg.empty()) {
    const std::size_t start = std::min(svg.find('<'), svg.size());
    if (const std::string fault = textFault(svg.substr(0, start)); !fault.empty()) return fault;
    if (open.empty() && svg.substr(0, start).find_first_not_of('\n') != std::string_view::npos) return "text outside";
    svg.remove_prefix(start);
    if (svg.empty()) break;
    const auto [isEnd, name] = takeTag(svg);
    if (!kElements.contains(name)) return "the element " + name;
    if (isEnd) {
      if (open.empty() || open.back() != name) return "an end of " + name;
      open.pop_back();
    } else {
      roots += open.empty() ? 1 : 0;
      open.push_back(name);
      while (svg.starts_with(' ')) {
        svg.remove_prefix(1);
        const std::string attribute = takeName(svg);
        if (!svg.starts_with("=\"")) return "the attribute " + attribute;
        svg.remove_prefix(2);
        const std::string_view value = svg.substr(0, svg.find('"'));
        if (value.find('<') != std::string_view::npos || !textFault(value).empty()) return "the value of " + attribute;
        if (attribute.starts_with("on") || attribute == "style" || attribute == "href") return attribute;
        if (attribute == "xlink:href" && !value.starts_with('#')) return "a reference to elsewhere";
        static const std::set<std::string> kNumbers{"x",       "y",         "x1",          "y1",        "x2",
                                                    "y2",      "width",     "height",      "font-size", "d",
                                                    "viewBox", "transform", "stroke-width"};
        const bool isNumber = kNumbers.contains(attribute);
        for (const char* no : {"nan", "inf", "e+", "e-"})
          if (isNumber && value.find(no) != std::string_view::npos) return attribute + " with " + no;
        svg.remove_prefix(value.size() + 1);
      }
      if (svg.starts_with('/')) svg.remove_prefix(1), open.pop_back();
    }
    if (!svg.starts_with('>')) return "a tag of " + name;
    svg.remove_prefix(1);
  }
  if (!open.empty()) return "an open " + open.back();
  return roots == 1 ? "" : "no single root";
}

std::string htmlFault(std::string_view page, std::size_t scripts) {
  static const std::set<std::string> kElements{
      "html",  "head",   "meta",       "title", "style",   "body",   "header",   "h1",     "p",
      "main",  "figure", "figcaption", "div",   "span",    "b",      "a",        "svg",    "desc",
      "rect",  "line",   "path",       "text",  "g",       "defs",   "use",      "form",   "label",
      "input", "button", "output",     "kbd",   "section", "footer", "noscript", "script", "ul"};
  // What is in them is no markup up to their end.
  static const std::set<std::string> kRaw{"script", "style"};
  static const std::set<std::string> kVoid{"meta", "input"};
  std::vector<std::string> open;
  std::size_t found = 0;
  std::string lower(page.substr(0, 15));
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (!lower.starts_with("<!doctype html>")) return "no document type";
  page.remove_prefix(15);
  while (!page.empty()) {
    const std::size_t start = std::min(page.find('<'), page.size());
    if (const std::string fault = textFault(page.substr(0, start)); !fault.empty()) return fault;
    page.remove_prefix(start);
    if (page.empty()) break;
    const auto [isEnd, name] = takeTag(page);
    if (!kElements.contains(name)) return "the element " + name;
    if (isEnd) {
      if (open.empty() || open.back() != name) return "an end of " + name;
      open.pop_back();
    } else {
      if (!kVoid.contains(name)) open.push_back(name);
      found += name == "script" ? 1 : 0;
    }
    while (page.starts_with(' ')) {
      page.remove_prefix(1);
      const std::string attribute = takeName(page);
      if (attribute.empty() || attribute.starts_with("on") || attribute == "style" || attribute == "src")
        return "the attribute \"" + attribute + "\" of " + name;
      if (!page.starts_with('=')) continue;
      if (!page.starts_with("=\"")) return "no quotation mark after " + attribute;
      page.remove_prefix(2);
      const std::string_view value = page.substr(0, page.find('"'));
      if (value.find('<') != std::string_view::npos || !textFault(value).empty()) return "the value of " + attribute;
      if (attribute.ends_with("href") && !value.starts_with('#')) return "a reference to " + std::string(value);
      page.remove_prefix(std::min(page.size(), value.size() + 1));
    }
    if (page.starts_with("/>")) page.remove_prefix(1), open.pop_back();
    if (!page.starts_with('>')) return "a tag of " + name;
    page.remove_prefix(1);
    if (!isEnd && kRaw.contains(name)) {
      const std::size_t end = page.find("</");
      if (end == std::string_view::npos || !page.substr(end + 2).starts_with(name)) return "an end in " + name;
      if (page.substr(0, end).find("<!--") != std::string_view::npos) return "a comment in " + name;
      page.remove_prefix(end);
    }
  }
  if (!open.empty()) return "an open " + open.back();
  return found == scripts ? "" : std::to_string(found) + " scripts";
}

}  // namespace testing_support
