#include "torvio/cli/output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace torvio {
namespace {

bool somethingPrinted = false;

}  // namespace

OutputError::OutputError(int error)
    : error_(error), text_("cannot write the output: " + std::generic_category().message(error)) {}

bool OutputError::isClosedPipe() const { return error_ == EPIPE; }

void print(std::string_view text) {
  somethingPrinted = somethingPrinted || !text.empty();
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) throw OutputError(errno);
}

void finishOutput() {
  // Closing fails if there is no standard output, but without output nothing is lost.
  if (!somethingPrinted) return;
  if (std::fflush(stdout) != 0 || std::fclose(stdout) != 0) throw OutputError(errno);
}

void printError(std::string_view text) {
  (void)std::fflush(stdout);
  (void)std::fprintf(stderr, "torvio: %.*s\n", static_cast<int>(text.size()), text.data());
}

namespace {

// The code point and the number of bytes of the character that the text starts with; size 0 if it is not UTF-8.
struct Character {
  char32_t code = 0;
  std::size_t size = 0;
};

Character firstOf(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (lead < 0xC2 || lead > 0xF4 || text.size() < size) return {};
  char32_t code = lead & (0xFFU >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return {};
    code = (code << 6U) | (byte(i) & 0x3FU);
  }
  const bool isSurrogate = code >= 0xD800 && code < 0xE000;
  return code < kLeast[size] || isSurrogate || code > 0x10FFFF ? Character{} : Character{code, size};
}

// Controls, line separators and what changes the direction of a line.
bool affectsLine(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x200E && code <= 0x200F) ||
         (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x61C;
}

}  // namespace

std::string onOneLine(std::string_view text) {
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string line;
  while (!text.empty()) {
    const auto [code, size] = firstOf(text);
    const auto byte = static_cast<unsigned char>(text.front());
    if (code == '\n')
      line += "\\n";
    else if (code == '\r')
      line += "\\r";
    else if (code == '\t')
      line += "\\t";
    else if (size == 0 || (size == 1 && affectsLine(code)))
      line.append("\\x") += {kHex[byte >> 4U], kHex[byte & 0xFU]};
    else if (affectsLine(code))
      line.append("\\u") +=
          {kHex[(code >> 12U) & 0xFU], kHex[(code >> 8U) & 0xFU], kHex[(code >> 4U) & 0xFU], kHex[code & 0xFU]};
    else
      line += text.substr(0, size);
    text.remove_prefix(size == 0 ? 1 : size);
  }
  return line;
}

}  // namespace torvio
