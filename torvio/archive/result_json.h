// The result for a file, in words and as JSON.
#pragma once
#include <string>

#include "torvio/archive/examine.h"

namespace oldtorvio::archive {

// Why a file is foreign: "12 bytes, 7 is not a version of any kind of file".
std::string whyForeign(const FileResult& result);

// One line with one JSON object: path, verdict, kind, version, sizes, the fault and the warnings.
std::string resultJson(const FileResult& result);

}  // namespace oldtorvio::archive
