#include "torvio/draw/draw.h"

#include <utility>

#include "torvio/explain/file_map.h"
#include "torvio/values/compiled_records.h"

namespace oldtorvio::draw {

using frame::FileKind;

const char* const kDrawableKinds = "sheets, parts, group parts and machines";

bool canDraw(FileKind kind) {
  return kind == FileKind::sheet || kind == FileKind::part || kind == FileKind::groupPart || kind == FileKind::machine;
}

DrawnFile drawFile(std::span<const std::byte> bytes, FileKind kind, std::string_view name,
                   const PictureOptions& options) {
  const explain::FileReport report = explain::checkFile(bytes, kind);
  FileNote file{std::string(name), std::string(frame::infoOf(kind).name), "", {bytes, kind}};
  file.kind.append(", version ").append(report.version ? std::to_string(*report.version) : "unknown");
  if (report.fault) file.fault = explain::describe(*report.fault);
  if (report.tolerated) file.tolerated = explain::describe(*report.tolerated);
  file.isUnreadVersion = report.endsInRest();
  const auto picture = [&]() -> std::string {
    switch (kind) {
      case FileKind::sheet:
        return drawSheet(*values::loadRecord<FileKind::sheet>(bytes).record, file, options);
      case FileKind::part:
        return drawPart(*values::loadRecord<FileKind::part>(bytes).record, file, options);
      case FileKind::groupPart:
        return drawGroupPart(*values::loadRecord<FileKind::groupPart>(bytes).record, file, options);
      case FileKind::machine:
        return drawMachine(*values::loadRecord<FileKind::machine>(bytes).record, file, options);
      default:
        return "";
    }
  };
  return {picture(), file.kind, file.fault, file.isUnreadVersion};
}

}  // namespace oldtorvio::draw
