// Sheets: create, free, load, save.
#include <memory>

#include "OldTorvIO.h"
#include "src/frame/text/text.h"
#include "src/sheet/sheet_file_record.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// LoadOldSheetInformation loads it; no function reads it.
OldSheet currentSheet;

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" OldSheet* CreateSheetInfo() noexcept {
  return guarded(static_cast<OldSheet*>(nullptr), [] { return std::make_unique<OldSheet>().release(); });
}

extern "C" void DeleteSheetInfo(OldSheet* sheet) noexcept { delete sheet; }

extern "C" void FreeSheetHandle(OldSheet* sheet) noexcept { DeleteSheetInfo(sheet); }

extern "C" int64_t LoadOldSheet(const char* path, OldSheet* sheet) noexcept {
  return loadRecord<FileKind::sheet>(path, sheet);
}

extern "C" int64_t SaveOldSheet(const char* path, OldSheet* sheet, uint16_t version) noexcept {
  return sheet == nullptr ? kNotSaved : saveRecord<FileKind::sheet>(path, *sheet, version);
}

extern "C" int32_t LoadOldSheetInformation(const char* path) noexcept {
  return static_cast<std::int32_t>(loadFile(
      path,
      [&](int version) {
        FileRecord<FileKind::sheet>::setVersion(currentSheet, version);
        setPath(currentSheet.sheetPath, path);
      },
      isKnownSheetVersion,
      [&](InStream& stream, int version) -> std::int64_t {
        attempt([&] { (void)ReadOldSheet(stream, version, currentSheet); });
        return kDone;
      }));
}

extern "C" int64_t GetOldSheetHandle(const char* path, OldSheet** sheet) noexcept {
  if (sheet == nullptr) return kNotOpened;
  const auto keepNothing = [](int) {};
  return loadFile(path, keepNothing, isKnownSheetVersion, [&](InStream& stream, int version) -> std::int64_t {
    auto loaded = std::make_unique<OldSheet>();
    FileRecord<FileKind::sheet>::setVersion(*loaded, version);
    const int status = ReadOldSheet(stream, version, *loaded);
    if (status == 0) *sheet = loaded.release();
    return status;
  });
}
