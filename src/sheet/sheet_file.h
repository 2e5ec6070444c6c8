// What queries and edits of sheet files share: check the version, load the sheet, use it, discard it.
#pragma once
#include <cstdint>
#include <memory>

#include "src/frame/entry.h"
#include "src/sheet/sheet_io.h"

namespace oldtorvio {

// Loads the sheet onto the heap and, if its body could be read, calls use(sheet, version). A body that cannot be read
// returns 0 as well. A version that accepts(version) refuses returns -1; one that it accepts but that no sheet has (1
// and 6) returns 0 without reading the body.
template <class Accepts, class Use>
std::int64_t withSheet(const char* path, Accepts&& accepts, Use&& use) noexcept {
  std::unique_ptr<OldSheet> loaded;
  const std::int64_t status = frame::loadFile(
      path, [](int) {}, accepts,
      [&](codec::InStream& stream, int version) -> std::int64_t {
        frame::attempt([&] {
          if (!frame::isSheetVersion(version)) return;
          auto sheet = std::make_unique<OldSheet>();
          sheet->version = static_cast<std::uint16_t>(version);
          if (ReadOldSheet(stream, version, *sheet) == 0) loaded = std::move(sheet);
        });
        return frame::kDone;
      });
  // The file is closed here, so that an edit can write it.
  if (status != frame::kDone || !loaded) return status;
  return frame::guarded(frame::kDone, [&]() -> std::int64_t {
    use(*loaded, loaded->version);
    return frame::kDone;
  });
}

}  // namespace oldtorvio
