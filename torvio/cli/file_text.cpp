#include "torvio/cli/file_text.h"

#include <cstdio>

namespace torvio {

std::string hex(std::uint64_t offset) {
  char digits[32];
  (void)std::snprintf(digits, sizeof digits, "%08llx", static_cast<unsigned long long>(offset));
  return digits;
}

std::string describe(const oldtorvio::explain::Fault& fault) {
  return "at " + hex(fault.offset) + " in " + fault.path + ": " + fault.reason;
}

void nameVersionOfUnknown(oldtorvio::explain::FileReport& report) {
  if (report.version) report.fault->reason = std::to_string(*report.version) + " is not a version of any kind of file";
}

}  // namespace torvio
