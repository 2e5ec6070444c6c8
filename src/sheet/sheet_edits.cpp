// Edits of sheet files: load, change one thing, save.
#include <memory>
#include <string_view>

#include "OldTorvIO.h"
#include "src/frame/text/text.h"
#include "src/sheet/sheet_file.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Neither a failed save nor a body that cannot be read is reported.
template <class Change>
std::int64_t edit(const char* path, Change&& change) noexcept {
  return withSheet(path, isListedSheetVersion, [&](OldSheet& sheet, int version) {
    if (change(sheet)) (void)SaveOldSheet(path, &sheet, static_cast<std::uint16_t>(version));
  });
}

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t ReplaceSheetMachineNcPath(const char* path, const char* ncPath) noexcept {
  return edit(path, [&](OldSheet& sheet) {
    if (equalNoCase(fixedText(sheet.machine.ncPath), ncPath)) return false;
    setText(sheet.machine.ncPath, ncPath);
    return true;
  });
}

extern "C" int64_t ReplaceSheetSknPatListWithPartPatList(const char* path, const char* partPath) noexcept {
  const auto keepNothing = [](int) {};
  // The sheet's version is checked before the part is loaded.
  const std::int64_t versionStatus =
      loadFile(path, keepNothing, isListedSheetVersion, [](InStream&, int) -> std::int64_t { return kDone; });
  if (versionStatus != kDone) return versionStatus;
  return guarded(kNotOpened, [&]() -> std::int64_t {
    const auto part = std::make_unique<TorvPart>();
    if (LoadOldPart(partPath, part.get()) != kDone) return kNotOpened;
    (void)edit(path, [&](OldSheet& sheet) {
      sheet.partList.parts.clear();
      sheet.skeletonShapes = std::move(part->shapes);
      return true;
    });
    return kDone;
  });
}

extern "C" int64_t UpdateSheetPartWONumber(const char* path, const char* partName, const char* oldNumber,
                                           const char* newNumber) noexcept {
  if (path == nullptr || partName == nullptr || newNumber == nullptr) return kNotOpened;
  return edit(path, [&](OldSheet& sheet) {
    bool changed = false;
    for (TorvPart& part : sheet.partList.parts) {
      if (baseName(fixedText(part.partFullDosName)) != partName) continue;
      if (oldNumber != nullptr && fixedText(part.woNumber) != oldNumber) continue;
      setText(part.woNumber, newNumber);
      changed = true;
    }
    return changed;
  });
}
