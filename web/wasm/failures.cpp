// How a function of torvio.h fails where there are no exceptions: it notes why and traps. The host that called it
// asks torvio_failure() and drops the instance, whose memory is as the failed function left it.
#include <__verbose_abort>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "torvio/library/answer.h"

namespace {

constexpr torvio_error kNoMemory{"not enough memory", "", TORVIO_NO_OFFSET, TORVIO_NO_MEMORY};
const torvio_error* failure = nullptr;

[[noreturn]] void outOfMemory() {
  failure = &kNoMemory;
  std::abort();
}

// Memory may run out at any time, also before the first call.
const std::new_handler kBefore = std::set_new_handler(outOfMemory);

}  // namespace

// What libc++ calls in place of throwing an exception. A container that cannot be as long as it would have to be has
// run out of memory, too.
void std::__libcpp_verbose_abort(const char* format, ...) {
  if (std::strncmp(format, "length_error", 12) == 0 || std::strncmp(format, "bad_", 4) == 0) outOfMemory();
  va_list values;
  va_start(values, format);
  (void)std::vfprintf(stderr, format, values);
  va_end(values);
  std::abort();
}

namespace oldtorvio::library {

void fail(Problem problem) {
  failure = newError(problem.status, problem.message, problem.field, problem.offset);
  if (failure == nullptr) failure = &kNoMemory;
  std::abort();
}

}  // namespace oldtorvio::library

// Why the last call trapped; NULL if for a reason that the library does not expect.
extern "C" const torvio_error* torvio_failure() { return failure; }
