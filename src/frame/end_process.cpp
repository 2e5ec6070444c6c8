#include "src/frame/end_process.h"

#include <cstdlib>
#include <stdexcept>

namespace oldtorvio {
namespace {

[[noreturn]] void throwSubscript() { throw std::out_of_range("invalid vector<T> subscript"); }  // GCOVR_EXCL_LINE

}  // namespace

// Tested in child processes, which end before their coverage counts are saved.
void EndProcess() noexcept { std::abort(); }  // GCOVR_EXCL_LINE

void EndProcessForSubscript() noexcept { throwSubscript(); }  // GCOVR_EXCL_LINE

}  // namespace oldtorvio
