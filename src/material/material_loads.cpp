// The load of material files.
#include <string_view>

#include "OldTorvIO.h"
#include "src/frame/entry.h"
#include "src/frame/text/text.h"
#include "src/material/material_io.h"

using namespace oldtorvio;
using namespace oldtorvio::codec;
using namespace oldtorvio::frame;

namespace {

// The file consists of a parameter table only, whose version word has been read already: it is read again from the
// beginning.
std::int64_t loadShort(const char* path, OldMaterial& material) {
  const File file = File::openToRead(path);
  if (!file) return kNotOpened;
  InStream stream(file.handle());
  const int status = ReadParamTable(stream, material.params);
  if (status != 0) return status;
  const std::string_view name = fixedText(material.params.name);
  if (!name.empty() && name.size() < sizeof material.params.name) material.name = name;
  return kDone;
}

std::int64_t loadLong(InStream& stream, int version, OldMaterial& material) {
  const int status = ReadParamTable(stream, material.params);
  return status != 0 ? status : ReadOldMaterialBody(stream, version, material);
}

}  // namespace

extern "C" int64_t LoadOldMaterial(const char* path, OldMaterial* material) noexcept {
  if (material == nullptr) return kNotOpened;
  return loadFile(
      FileKind::material, path,
      [&](int version) {
        setPath(material->path, path);
        material->version = static_cast<std::uint16_t>(version);
      },
      [&](InStream& stream, int version) {
        return isParamTableVersion(version) ? loadShort(path, *material) : loadLong(stream, version, *material);
      });
}
