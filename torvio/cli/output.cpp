#include "torvio/cli/output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace torvio {
namespace {

bool somethingPrinted = false;
// Of a flush that failed: it drops its text, so that the next one succeeds.
int lostOutput = 0;

}  // namespace

OutputError::OutputError(int error)
    : error_(error), text_("cannot write the output: " + std::generic_category().message(error)) {}

bool OutputError::isClosedPipe() const { return error_ == EPIPE; }

void print(std::string_view text) {
  somethingPrinted = somethingPrinted || !text.empty();
  if (lostOutput != 0) throw OutputError(lostOutput);
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) throw OutputError(errno);
}

void finishOutput() {
  // Closing fails if there is no standard output, but without output nothing is lost.
  if (!somethingPrinted) return;
  if (lostOutput != 0) throw OutputError(lostOutput);
  if (std::fflush(stdout) != 0 || std::fclose(stdout) != 0) throw OutputError(errno);
}

void printError(std::string_view text) {
  if (std::fflush(stdout) != 0 && lostOutput == 0) lostOutput = errno;
  (void)std::fprintf(stderr, "torvio: %.*s\n", static_cast<int>(text.size()), text.data());
}

}  // namespace torvio
