// Special tool files, and the configured folder for them.
#pragma once
#include <string>

#include "OldTorvIO/records.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

// The file after its version word; results as in src/records/record_io.h.
DECLARE_RECORD_CODEC(SpecialTool, OldSpecialTool);

// For samples and tests: no export writes special tool files. -1 for a version that LoadOldSpecialTool refuses.
std::int64_t SaveSpecialTool(const char* path, const OldSpecialTool& tool, int version);

// The configured folder, with or without a final "\" as configured.
std::string GetSpecialToolFolder();

}  // namespace oldtorvio
