// The load of material files.
#include "OldTorvIO.h"
#include "src/material/material_file_record.h"

using namespace oldtorvio;

extern "C" int64_t LoadOldMaterial(const char* path, OldMaterial* material) noexcept {
  return frame::loadRecord<frame::FileKind::material>(path, material);
}
