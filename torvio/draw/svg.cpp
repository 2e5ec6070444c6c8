#include "torvio/draw/svg.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

namespace oldtorvio::draw {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD", kEllipsis = "\xE2\x80\xA6";

// Removes the first character of the text and returns it; a byte that is not UTF-8 is U+FFFD.
char32_t takeCharacter(std::string_view& utf8) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  const unsigned lead = byte(0);
  const std::size_t size = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  bool isValid = size > 0 && size <= utf8.size();
  char32_t c = size <= 1 ? lead : lead & (0x7FU >> size);
  for (std::size_t i = 1; isValid && i < size; ++i) {
    isValid = (byte(i) & 0xC0U) == 0x80U;
    c = (c << 6U) | (byte(i) & 0x3FU);
  }
  utf8.remove_prefix(isValid ? size : 1);
  return isValid ? c : U'\uFFFD';
}

bool isAllowed(char32_t c) {
  if (c < 0x20 || (c >= 0x7F && c < 0xA0)) return false;
  if ((c >= 0x200B && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F)) return false;
  return c != 0x61C && c != 0xFEFF && !(c >= 0xD800 && c < 0xE000) && (c & 0xFFFEU) != 0xFFFEU && c < 0x110000;
}

// The width of a character in thousandths of the font size; the wider of Helvetica and DejaVu Sans.
int advance(char32_t c) {
  constexpr std::string_view kNarrow = "ijl.,:;'|!` ", kSlim = "fIrt()[]/\\-\"", kWide = "mwMWOQGDHNU@%+=<>~^";
  if (c >= 0x1100) return c == U'\u2026' ? 1000 : c == U'\uFFFD' ? 1030 : c < 0x2E80 ? 840 : 1050;
  if (c >= 0x80) return c == U'\u00B7' ? 330 : 790;
  const char ascii = static_cast<char>(c);
  if (kNarrow.find(ascii) != std::string_view::npos) return 340;
  if (kSlim.find(ascii) != std::string_view::npos) return 460;
  if (ascii == 'W' || ascii == 'M' || ascii == 'm' || ascii == '@' || ascii == '%') return 1000;
  if (kWide.find(ascii) != std::string_view::npos) return 850;
  if (ascii >= 'A' && ascii <= 'Z') return 720;
  return 640;
}

std::string_view firstCharacter(std::string_view utf8) {
  std::string_view rest = utf8;
  (void)takeCharacter(rest);
  return utf8.substr(0, utf8.size() - rest.size());
}

}  // namespace

void appendCoordinate(std::string& to, double value) {
  constexpr double kMost = 1e6;
  if (!(std::fabs(value) <= kMost)) value = value > 0 ? kMost : value < 0 ? -kMost : 0;
  const long long hundredths = std::llround(value * 100);
  const long long absolute = hundredths < 0 ? -hundredths : hundredths;
  if (hundredths < 0) to += '-';
  to += std::to_string(absolute / 100);
  if (absolute % 100 == 0) return;
  to += '.';
  to += static_cast<char>('0' + absolute % 100 / 10);
  if (absolute % 10 != 0) to += static_cast<char>('0' + absolute % 10);
}

std::string sizeText(double value) {
  if (!std::isfinite(value)) return "?";
  // A length of up to nine digits needs no exponent.
  const bool isLong = std::fabs(value) >= 1e5 && std::fabs(value) < 1e9;
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, value == 0 ? 0.0 : value, std::chars_format::general,
                                 isLong ? 9 : 6);
  return {digits, end.ptr};
}

std::string countText(std::uint64_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t i = digits.size(); i > 3;) digits.insert(i -= 3, 1, ',');
  return digits;
}

std::string countText(std::uint64_t count, std::string_view one, std::string_view many) {
  return countText(count).append(" ").append(count == 1 ? one : many);
}

void appendEscaped(std::string& to, std::string_view utf8) {
  while (!utf8.empty()) {
    const std::string_view before = utf8;
    const char32_t c = takeCharacter(utf8);
    if (c == '&')
      to += "&amp;";
    else if (c == '<')
      to += "&lt;";
    else if (c == '>')
      to += "&gt;";
    else if (c == '"')
      to += "&quot;";
    else if (c == '\'')
      to += "&#39;";
    else if (!isAllowed(c) || c == U'\uFFFD')
      to += kReplacement;
    else
      to += before.substr(0, before.size() - utf8.size());
  }
}

std::string escaped(std::string_view utf8) {
  std::string text;
  appendEscaped(text, utf8);
  return text;
}

double textWidth(std::string_view utf8, double fontSize, bool isBold) {
  double thousandths = 0;
  while (!utf8.empty()) {
    const char32_t c = takeCharacter(utf8);
    thousandths += isAllowed(c) ? advance(c) : advance(U'\uFFFD');
  }
  return thousandths / 1000 * fontSize * (isBold ? 1.1 : 1.0);
}

std::string shortened(std::string_view utf8, double width, double fontSize, bool isBold) {
  if (textWidth(utf8, fontSize, isBold) <= width) return std::string(utf8);
  const double room = width - textWidth(kEllipsis, fontSize, isBold);
  std::string text;
  double used = 0;
  while (!utf8.empty()) {
    const std::string_view c = firstCharacter(utf8);
    used += textWidth(c, fontSize, isBold);
    if (used > room) break;
    text += c;
    utf8.remove_prefix(c.size());
  }
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text.empty() ? text : text.append(kEllipsis);
}

std::vector<std::string> inLines(std::string_view utf8, double width, double fontSize) {
  std::vector<std::string> lines(1);
  while (!utf8.empty()) {
    const std::size_t space = std::min(utf8.find(' '), utf8.size());
    const std::string word = shortened(utf8.substr(0, space), width, fontSize);
    utf8.remove_prefix(std::min(space + 1, utf8.size()));
    const std::string longer = lines.back().empty() ? word : lines.back() + " " + word;
    if (textWidth(longer, fontSize) <= width)
      lines.back() = longer;
    else
      lines.push_back(word);
  }
  return lines;
}

Svg& Svg::open(const char* element) {
  endTag();
  text_.append("<").append(element);
  elements_.push_back(element);
  isTagOpen_ = true;
  return *this;
}

Svg& Svg::set(std::string_view attribute, double value) {
  text_.append(" ").append(attribute).append("=\"");
  appendCoordinate(text_, value);
  text_ += '"';
  return *this;
}

Svg& Svg::set(std::string_view attribute, std::string_view utf8) {
  text_.append(" ").append(attribute).append("=\"");
  appendEscaped(text_, utf8);
  text_ += '"';
  return *this;
}

Svg& Svg::content(std::string_view utf8) {
  endTag();
  appendEscaped(text_, utf8);
  return *this;
}

Svg& Svg::raw(std::string_view elements) {
  endTag();
  text_ += elements;
  return *this;
}

Svg& Svg::close() {
  if (isTagOpen_)
    text_ += "/>\n";
  else
    text_.append("</").append(elements_.back()).append(">\n");
  isTagOpen_ = false;
  elements_.pop_back();
  return *this;
}

void Svg::endTag() {
  if (isTagOpen_) text_ += '>';
  isTagOpen_ = false;
}

Svg& Svg::rect(const Box& box) {
  return open("rect").set("x", box.x).set("y", box.y).set("width", box.width).set("height", box.height);
}

Svg& Svg::line(Point from, Point to) {
  return open("line").set("x1", from.x).set("y1", from.y).set("x2", to.x).set("y2", to.y);
}

Svg& Svg::path(std::string_view data) { return open("path").set("d", data); }

Svg& Svg::text(Point at, std::string_view utf8, const TextStyle& style) {
  if (utf8.empty()) return *this;
  open("text").set("x", at.x).set("y", at.y).set("font-size", style.size).set("fill", style.fill);
  if (std::string_view(style.anchor) != "start") set("text-anchor", style.anchor);
  if (style.isBold) set("font-weight", "bold");
  if (style.turn != 0) {
    std::string turn = "rotate(";
    appendCoordinate(turn, style.turn);
    appendCoordinate(turn += ' ', at.x);
    appendCoordinate(turn += ' ', at.y);
    set("transform", turn += ')');
  }
  return content(utf8).close();
}

std::string Svg::take() {
  while (!elements_.empty()) close();
  return std::exchange(text_, {});
}

Path& Path::add(char command, Point to) {
  data_ += command;
  appendCoordinate(data_, to.x);
  appendCoordinate(data_ += ' ', to.y);
  return *this;
}

Path& Path::arc(double radius, bool isLarge, Point to) {
  data_ += 'A';
  appendCoordinate(data_, radius);
  appendCoordinate(data_ += ' ', radius);
  data_ += isLarge ? " 0 1 0 " : " 0 0 0 ";
  appendCoordinate(data_, to.x);
  appendCoordinate(data_ += ' ', to.y);
  return *this;
}

Path& Path::close() {
  data_ += 'Z';
  return *this;
}

}  // namespace oldtorvio::draw
