// A fault as JSON on one line, for maps and reports.
#pragma once
#include <string>

#include "torvio/explain/map.h"

namespace oldtorvio::values {

// {"offset":40,"field":"width","reason":"needs 4 bytes, the file has 2"}
std::string faultJson(const explain::Fault& fault);

}  // namespace oldtorvio::values
