#include "src/frame/end_process.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace oldtorvio {
namespace {

#if defined(__cpp_exceptions)
[[noreturn]] void throwSubscript() { throw std::out_of_range("invalid vector<T> subscript"); }  // GCOVR_EXCL_LINE
#else
[[noreturn]] void throwSubscript() {
  (void)std::fputs("invalid vector<T> subscript\n", stderr);
  std::abort();
}
#endif

}  // namespace

// Tested in child processes, which end before their coverage counts are saved.
void EndProcess() noexcept { std::abort(); }  // GCOVR_EXCL_LINE

void EndProcessForSubscript() noexcept { throwSubscript(); }  // GCOVR_EXCL_LINE

}  // namespace oldtorvio
