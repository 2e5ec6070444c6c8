// Macro files.
#pragma once
#include "OldTorvIO/macro.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

// The file after its version word. Results as in src/records/record_io.h.
DECLARE_RECORD_CODEC(Macro, OldMacro);

// For samples and tests: no export writes macros. -1 for a version that LoadOldMacro refuses.
std::int64_t SaveMacro(const char* path, const OldMacro& macro, int version);

}  // namespace oldtorvio
