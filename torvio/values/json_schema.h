// JSON Schemas (draft 2020-12) of the documents that writeJson writes and readJson reads.
#pragma once
#include <string>

#include "src/frame/file_kinds.h"

namespace oldtorvio::values {

// The schema for documents of that kind.
std::string jsonSchema(frame::FileKind kind);

}  // namespace oldtorvio::values
