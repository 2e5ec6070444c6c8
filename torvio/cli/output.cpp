#include "torvio/cli/output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "torvio/values/text_encoding.h"

using namespace oldtorvio;

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

std::string onOneLine(std::string_view text) {
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string line;
  while (!text.empty()) {
    const auto [code, size] = values::firstCharacter(text);
    const auto byte = static_cast<unsigned char>(text.front());
    if (code == '\n')
      line += "\\n";
    else if (code == '\r')
      line += "\\r";
    else if (code == '\t')
      line += "\\t";
    else if (size == 0 || (size == 1 && values::isActive(code)))
      line.append("\\x") += {kHex[byte >> 4U], kHex[byte & 0xFU]};
    else if (values::isActive(code))
      values::appendCodeInHex(line += "\\u", code);
    else
      line += text.substr(0, size);
    text.remove_prefix(size == 0 ? 1 : size);
  }
  return line;
}

}  // namespace torvio
