#include "src/tooling/macro_io.h"

#include "OldTorvIO.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/tooling_file_records.h"

namespace oldtorvio {

DEFINE_RECORD_CODEC(Macro, OldMacro)

std::int64_t SaveMacro(const char* path, const OldMacro& macro, int version) {
  return frame::saveRecord<frame::FileKind::macro>(path, macro, version);
}

}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t LoadOldMacro(const char* path, OldMacro* macro) noexcept {
  return frame::loadRecord<frame::FileKind::macro>(path, macro);
}
