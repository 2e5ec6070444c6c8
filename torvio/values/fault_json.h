// A fault as JSON, in one form for all documents.
#pragma once
#include <string>

#include "torvio/explain/map.h"

namespace oldtorvio::values {

// {"offset":40,"field":"width","reason":"needs 4 bytes, the file has 2"}
std::string faultJson(const explain::Fault& fault);

}  // namespace oldtorvio::values
