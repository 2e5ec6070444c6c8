// Loads of part and group part files, and the lists for group part files.
#include <new>

#include "OldTorvIO.h"
#include "OldTorvIO/part_list.h"
#include "src/frame/entry.h"
#include "src/frame/text/text.h"
#include "src/part/part_io.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Every load of an accepted version resets these fields before it reads the body.
void prepareForLoad(TorvPart& part, std::string_view path) {
  part.optionWord = 0;
  part.optionCount = 1;
  part.optionReal = 0.05;
  part.optionValue = 0;
  part.optionText[0] = '\0';
  setPath(part.partFullDosName, path);
}

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;
using namespace oldtorvio::codec;
using namespace oldtorvio::frame;

extern "C" int64_t LoadOldPart(const char* path, TorvPart* part) noexcept {
  if (part == nullptr) return kNotOpened;
  return loadFile(
      FileKind::part, path, [&](int version) { part->version = version; },
      [&](InStream& stream, int version) -> std::int64_t {
        prepareForLoad(*part, path);
        return ReadPartFile(stream, version, *part);
      });
}

extern "C" int64_t LoadGroupPart(const char* path, SheetPartList* list) noexcept {
  if (list == nullptr) return kNotOpened;
  const auto keepNothing = [](int) {};
  return loadFile(FileKind::groupPart, path, keepNothing,
                  [&](InStream& stream, int version) { return ReadGroupPart(stream, version, *list); });
}

extern "C" SheetPartList* CreateOldPartlistInfo() noexcept { return new (std::nothrow) SheetPartList; }

extern "C" void DeleteOldPartlistInfo(SheetPartList* list) noexcept { delete list; }
