// Prints a text from a file as a printf format without arguments, which would be undefined behaviour in printf itself.
#include <algorithm>
#include <cctype>

#include "src/frame/text/text.h"

namespace oldtorvio::frame {
namespace {

struct Directive {
  bool isLeft = false, hasPlus = false, hasBlank = false, isAlternate = false, hasZeros = false;
  std::size_t width = 0;
  std::size_t precision = 0;
  bool hasPrecision = false;
  char kind = 0;
};

bool isOneOf(char c, std::string_view all) { return all.find(c) != std::string_view::npos; }

// Parses the directive after a "%".
class Scanner {
 public:
  Scanner(std::string_view format, std::size_t at) : format_(format), at_(at) {}
  std::size_t at() const { return at_; }

  Directive scan() {
    Directive d;
    for (; isOneOf(peek(), "-+ #0"); ++at_) {
      d.isLeft = d.isLeft || peek() == '-';
      d.hasPlus = d.hasPlus || peek() == '+';
      d.hasBlank = d.hasBlank || peek() == ' ';
      d.isAlternate = d.isAlternate || peek() == '#';
      d.hasZeros = d.hasZeros || peek() == '0';
    }
    d.width = number();
    if (peek() == '.') {
      ++at_;
      d.hasPrecision = true;
      d.precision = number();
    }
    skipLength();
    if (at_ < format_.size()) d.kind = format_[at_++];
    return d;
  }

 private:
  char peek(std::size_t ahead = 0) const { return at_ + ahead < format_.size() ? format_[at_ + ahead] : '\0'; }
  bool isDigit() const { return peek() >= '0' && peek() <= '9'; }
  // A number, or "*" for a missing argument, which is read as 0.
  std::size_t number() {
    if (peek() == '*') {
      ++at_;
      return 0;
    }
    std::size_t n = 0;
    for (; isDigit(); ++at_) n = std::min(n * 10 + static_cast<std::size_t>(peek() - '0'), kMaxWidth);
    return n;
  }
  void skipLength() {
    if (peek() == 'I' && ((peek(1) == '6' && peek(2) == '4') || (peek(1) == '3' && peek(2) == '2'))) {
      at_ += 3;
      return;
    }
    while (isOneOf(peek(), "hlLqjztwI")) ++at_;
  }

  static constexpr std::size_t kMaxWidth = 0x7FFFFFFF;

  std::string_view format_;
  std::size_t at_;
};

// A file may ask for any width. Only as many digits are produced as the result can show.
struct Digits {
  std::string text;
  std::size_t omitted = 0;  // digits beyond `longest`

  void append(std::size_t count, char digit, std::size_t longest) {
    text.append(std::min(count, longest), digit);
    omitted += count - std::min(count, longest);
  }
};

Digits zeroReal(const Directive& d, std::size_t longest) {
  const std::size_t precision = d.hasPrecision ? d.precision : 6;
  const char kind = static_cast<char>(d.kind | 0x20);
  Digits digits{kind == 'a' ? "0x0" : "0"};
  std::string& text = digits.text;
  std::size_t places = precision;
  if (kind == 'g') places = d.isAlternate ? std::max<std::size_t>(precision, 1) - 1 : 0;
  if (kind == 'a' && !d.hasPrecision) places = 0;
  if (places > 0 || d.isAlternate) text += '.';
  digits.append(places, '0', longest);
  if (kind == 'e') text += "e+00";
  if (kind == 'a') text += "p+0";
  if (d.kind != kind)
    for (char& c : text) c = c >= 'a' ? static_cast<char>(c - 0x20) : c;
  return digits;
}

Digits zeroInteger(const Directive& d, std::size_t longest) {
  Digits digits;
  const std::size_t least = !d.hasPrecision || (d.kind == 'o' && d.isAlternate) ? 1 : 0;
  digits.append(std::max(d.precision, least), '0', longest);
  return digits;
}

// What the directive prints for zero or an empty text; for an unknown directive, its last character.
std::string printed(const Directive& d, std::size_t longest) {
  const bool isInteger = isOneOf(d.kind, "diouxX");
  const bool isReal = isOneOf(d.kind, "eEfFgGaA");
  Digits digits;
  std::string& text = digits.text;
  if (isInteger)
    digits = zeroInteger(d, longest);
  else if (isReal)
    digits = zeroReal(d, longest);
  else if (d.kind == 'p')
    text = "0000000000000000";
  else if (d.kind == 'c' || d.kind == 'C')
    text = std::string(1, '\0');
  else if (d.kind == 'n')
    return {};
  else if (d.kind != 's' && d.kind != 'S')
    return d.kind == 0 ? std::string() : std::string(1, d.kind);

  const bool isSigned = isReal || d.kind == 'd' || d.kind == 'i';
  std::string sign;
  if (isSigned) sign = d.hasPlus ? "+" : d.hasBlank ? " " : "";
  const std::size_t length = sign.size() + text.size() + digits.omitted;
  const std::size_t fill = std::min(d.width > length ? d.width - length : 0, longest);
  if (d.isLeft) return sign + text + std::string(fill, ' ');
  if (d.hasZeros && (isReal || (isInteger && !d.hasPrecision))) {
    // The zeros follow the "0x" of a hexadecimal real.
    const std::size_t head = d.kind == 'a' || d.kind == 'A' ? 2 : 0;
    return sign + text.substr(0, head) + std::string(fill, '0') + text.substr(head);
  }
  return std::string(fill, ' ') + sign + text;
}

}  // namespace

std::string printedWithoutValues(std::string_view format, std::size_t longest) {
  std::string text;
  for (std::size_t i = 0; i < format.size() && text.size() < longest;) {
    if (format[i] != '%') {
      text += format[i++];
      continue;
    }
    Scanner scanner(format, i + 1);
    text += printed(scanner.scan(), longest);
    i = scanner.at();
  }
  // "%c" prints a NUL, which ends the result.
  text.resize(std::min({text.size(), longest, text.find('\0')}));
  return text;
}

}  // namespace oldtorvio::frame
