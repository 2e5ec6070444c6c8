#include "src/frame/end_process.h"

#include <cstdlib>
#include <stdexcept>

namespace oldtorvio {
namespace {

[[noreturn]] void throwSubscript() { throw std::out_of_range("invalid vector<T> subscript"); }  // GCOVR_EXCL_LINE

}  // namespace

// Tested in processes that end before they could count their lines.
void EndProcess() noexcept { std::abort(); }  // GCOVR_EXCL_LINE

void EndProcessForSubscript() noexcept { throwSubscript(); }  // GCOVR_EXCL_LINE

}  // namespace oldtorvio
