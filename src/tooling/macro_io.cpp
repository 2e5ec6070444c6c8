#include "src/tooling/macro_io.h"

#include "OldTorvIO.h"
#include "src/frame/entry.h"
#include "src/tooling/macro_layout.h"

namespace oldtorvio {

DEFINE_RECORD_CODEC(Macro, OldMacro)

std::int64_t SaveMacro(const char* path, const OldMacro& macro, int version) {
  return frame::saveFile(path, version, frame::isMacroVersion,
                         [&](OutStream& stream) { return WriteMacro(stream, version, macro); });
}

}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t LoadOldMacro(const char* path, OldMacro* macro) noexcept {
  if (macro == nullptr) return frame::kNotOpened;
  return frame::loadFile(
      frame::FileKind::macro, path, [&](int version) { macro->version = static_cast<std::int16_t>(version); },
      [&](InStream& stream, int version) { return ReadMacro(stream, version, *macro); });
}
