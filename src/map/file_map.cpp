#include "src/map/file_map.h"

#include <algorithm>
#include <array>
#include <memory>

#include "src/frame/entry.h"
#include "src/part/part_layout.h"
#include "src/tooling/special_tool_layout.h"

namespace oldtorvio::map {
namespace {

using namespace frame;

constexpr std::array kKinds{
    KindName{FileKind::part, "part"},
    KindName{FileKind::groupPart, "group-part"},
    KindName{FileKind::specialTool, "special-tool"},
};

// Empty when the version is accepted, otherwise why not.
std::string refusal(FileKind kind, int version) {
  if (kind == FileKind::part) {
    if (!kPartVersions.has(version)) return "no version of a part file";
    return version < kFirstMainVersion ? "the layout of this version is not read" : "";
  }
  if (kind == FileKind::groupPart)
    return version < kFirstGroupPartVersion ? "below the first version of group part files" : "";
  return version < kFirstMainVersion || !kSpecialToolVersions.has(version) ? "no version of a special tool file" : "";
}

std::int64_t refusalStatus(FileKind kind, int version) {
  return kind == FileKind::groupPart || (kind == FileKind::part && kPartVersions.has(version)) ? kDamaged
                                                                                               : kWrongVersion;
}

template <class Io>
bool walkBody(FileKind kind, Io& io) {
  if (kind == FileKind::part) {
    const auto part = std::make_unique<TorvPart>();
    return Layout<TorvPart>::describe(io, *part, PartForm{});
  }
  if (kind == FileKind::groupPart) {
    std::vector<TorvPart> parts;
    GroupPartFile<std::vector<TorvPart>> file{parts};
    return Layout<decltype(file)>::describe(io, file);
  }
  const auto tool = std::make_unique<OldSpecialTool>();
  return Layout<OldSpecialTool>::describe(io, *tool);
}

}  // namespace

std::span<const KindName> fileKinds() { return kKinds; }

std::string_view nameOf(FileKind kind) {
  return std::find_if(kKinds.begin(), kKinds.end(), [kind](const KindName& one) { return one.kind == kind; })->name;
}

FileReport mapFile(const char* path, FileKind kind, const MapSink& sink) {
  FileReport report;
  const File file = File::openToRead(path);
  if (!file) {
    report.status = kNotOpened;
    report.fault = Fault{0, "", "cannot be opened"};
    return report;
  }
  InStream stream(file.handle());
  report.size = stream.left();

  // The sink also keeps count: a walk that stops eats what is left of the file.
  const MapSink counting = [&](const MapLine& line) {
    if (line.size > 0) report.walked = line.offset + line.size;
    sink(line);
  };
  Mapper head(stream, 0, counting);
  std::int16_t version = 0;
  if (!head.fields(F(version))) {
    report.status = kDamaged;
    report.fault = head.fault();
    return report;
  }
  report.version = version;
  if (const std::string why = refusal(kind, version); !why.empty()) {
    report.status = refusalStatus(kind, version);
    report.fault = Fault{0, "version", std::to_string(version) + ": " + why};
    return report;
  }
  Mapper body(stream, version, counting);
  if (!walkBody(kind, body)) {
    report.status = kDamaged;
    report.fault = body.fault();
  } else if (stream.left() > 0) {
    body.remark(std::to_string(stream.left()) + " bytes behind the last field are not looked at");
  }
  return report;
}

FileReport checkFile(const char* path, FileKind kind) {
  // Sound files take the quick way; only a damaged one is worth a walk that knows its names.
  if (const File file = File::openToRead(path)) {
    InStream stream(file.handle());
    const std::uint64_t size = stream.left();
    std::int16_t version = 0;
    if (readRecord(stream, 0, version) && refusal(kind, version).empty()) {
      Reader io(stream, version);
      if (walkBody(kind, io)) return {kDone, version, stream.position(), size, std::nullopt};
    }
  }
  return mapFile(path, kind, [](const MapLine&) {});
}

}  // namespace oldtorvio::map
