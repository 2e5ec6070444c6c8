#include "torvio/draw/draw.h"

#include <utility>

#include "torvio/explain/file_map.h"
#include "torvio/values/compiled_records.h"

namespace oldtorvio::draw {

using frame::FileKind;

template <class File>
constexpr bool kIsDrawable = requires(const typename File::Record& record, FileNote file, PictureOptions options) {
  drawRecord(record, file, options);
};

bool canDraw(FileKind kind) {
  return withFileRecord(kind, [](auto one) { return kIsDrawable<decltype(one)>; });
}

DrawnFile drawFile(std::span<const std::byte> bytes, FileKind kind, std::string_view name,
                   const PictureOptions& options) {
  const explain::FileReport report = explain::checkFile(bytes, kind);
  FileNote file{std::string(name), std::string(frame::infoOf(kind).name), "", {bytes, kind}};
  file.kind.append(", version ").append(report.version ? std::to_string(*report.version) : "unknown");
  if (report.fault) file.fault = explain::describe(*report.fault);
  if (report.tolerated) file.tolerated = explain::describe(*report.tolerated);
  file.isUnreadVersion = report.endsInRest();
  std::string picture = withFileRecord(kind, [&](auto one) -> std::string {
    if constexpr (kIsDrawable<decltype(one)>)
      return drawRecord(*values::loadRecord<decltype(one)::kKind>(bytes).record, file, options);
    else
      return "";
  });
  return {std::move(picture), file.kind, file.fault, file.isUnreadVersion};
}

}  // namespace oldtorvio::draw
