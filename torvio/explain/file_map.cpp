#include "torvio/explain/file_map.h"

#include <algorithm>
#include <array>
#include <memory>

#include "src/frame/entry.h"
#include "src/machine/machine_layout.h"
#include "torvio/explain/file_content.h"
#include "src/material/material_layout.h"
#include "src/part/old_part_layout.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_layout.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_layout.h"

namespace oldtorvio::explain {
namespace {

using namespace codec;
using namespace frame;

// Each kind of file once: its name, what its load does with a version, and its walk.
constexpr std::array kKinds{
    KindName{FileKind::part, "part"},
    KindName{FileKind::groupPart, "group-part"},
    KindName{FileKind::specialTool, "special-tool"},
    KindName{FileKind::machine, "machine"},
    KindName{FileKind::material, "material"},
    KindName{FileKind::toolInventory, "tool-inventory"},
    KindName{FileKind::macro, "macro"},
    KindName{FileKind::sheet, "sheet"},
};

bool accepts(FileKind kind, int version) {
  switch (kind) {
    case FileKind::part:
      return kPartVersions.has(version);
    case FileKind::groupPart:
      return version >= kFirstGroupPartVersion;
    case FileKind::specialTool:
      return isSpecialToolVersion(version);
    case FileKind::machine:
      return isMachineVersion(version);
    case FileKind::material:
      return isMaterialVersion(version);
    case FileKind::toolInventory:
      return isToolInventoryVersion(version);
    case FileKind::macro:
      return isMacroVersion(version);
    default:
      return isSheetVersion(version);
  }
}

// A version too low is damage in a group part file, as its load has it.
std::int64_t refusalStatus(FileKind kind) { return kind == FileKind::groupPart ? kDamaged : kWrongVersion; }

// The version word of a short material belongs to the table that is the whole file.
bool isWholeTable(FileKind kind, int version) { return kind == FileKind::material && isParamTableVersion(version); }

std::int64_t statusOf(bool walked) { return walked ? kDone : kDamaged; }

template <class Io>
std::int64_t walkPart(Io& io) {
  const auto part = std::make_unique<TorvPart>();
  return statusOf(io.version() >= kFirstMainVersion ? io.walk(*part, PartForm{}) : walkOldestPart(io, *part));
}

template <class Io>
std::int64_t walkMaterial(Io& io) {
  const auto record = std::make_unique<OldMaterial>();
  OldMaterial& material = *record;
  if (!io.record(FIELDS(material.params))) {
    const bool hasNoLayout = io.stop() == Stop::refused && paramFormToRead(material.params.version) == ParamForm::none;
    return hasNoLayout ? kWrongVersion : kDamaged;
  }
  return statusOf(isParamTableVersion(io.version()) || io.walk(material));
}

template <class Record, class Io, class... A>
std::int64_t walkRecord(Io& io, const A&... more) {
  const auto record = std::make_unique<Record>();
  return statusOf(io.walk(*record, more...));
}

// The file behind its version word, or from its beginning if it is a whole table.
template <class Io>
std::int64_t walkBody(FileKind kind, Io& io) {
  switch (kind) {
    case FileKind::part:
      return walkPart(io);
    case FileKind::groupPart: {
      std::vector<TorvPart> parts;
      GroupPartFile<std::vector<TorvPart>> file{parts};
      return statusOf(io.walk(file));
    }
    case FileKind::specialTool:
      return walkRecord<OldSpecialTool>(io);
    case FileKind::machine:
      return walkRecord<OldMachine>(io, MachineForm<ShapeList>{});
    case FileKind::material:
      return walkMaterial(io);
    case FileKind::toolInventory:
      return walkRecord<OldToolInventory>(io);
    case FileKind::macro:
      return walkRecord<OldMacro>(io);
    default:
      return walkRecord<OldSheet>(io);
  }
}

std::optional<int> versionOf(std::span<const std::byte> bytes) {
  InStream stream(bytes);
  std::int16_t version = 0;
  return readUnversioned(stream, version) ? std::optional<int>(version) : std::nullopt;
}

// The report for a file that could not be read.
FileReport notRead(const std::string& error) {
  FileReport report;
  report.status = kNotOpened;
  report.fault = Fault{0, "", error};
  return report;
}

}  // namespace

std::span<const KindName> fileKinds() { return kKinds; }

std::string_view nameOf(FileKind kind) {
  return std::find_if(kKinds.begin(), kKinds.end(), [kind](const KindName& one) { return one.kind == kind; })->name;
}

std::string FileReport::unread() const {
  const std::uint64_t count = size - walked;
  return std::to_string(count) + (count == 1 ? " unread byte" : " unread bytes") + " after the last field";
}

FileReport mapFile(std::span<const std::byte> bytes, FileKind kind, const MapSink& sink) {
  FileReport report;
  InStream stream(bytes);
  report.size = bytes.size();
  report.version = versionOf(bytes);

  // The sink also keeps count: a walk that stops eats what is left of the file.
  const MapSink counting = [&](const MapLine& line) {
    if (line.size > 0) report.walked = line.offset + line.size;
    sink(line);
  };
  if (!report.version || !isWholeTable(kind, *report.version)) {
    Mapper head(stream, kUnversioned, counting);
    std::int16_t version = 0;
    if (!head.fields(FIELDS(version))) {
      report.status = kDamaged;
      report.fault = head.fault();
      return report;
    }
    if (!accepts(kind, version)) {
      report.status = refusalStatus(kind);
      report.fault = Fault{0, "version",
                           std::to_string(version) + " is not a version of a " + std::string(nameOf(kind)) + " file"};
      return report;
    }
  }
  Mapper body(stream, *report.version, counting);
  report.status = walkBody(kind, body);
  report.tolerated = body.tolerated();
  if (report.status != kDone)
    report.fault = body.fault();
  else if (stream.left() > 0)
    body.remark(report.unread());
  return report;
}

FileReport checkFile(std::span<const std::byte> bytes, FileKind kind) {
  // Sound files take the quick way; only a damaged one is worth a walk that knows its names.
  const auto version = versionOf(bytes);
  if (version && accepts(kind, *version)) {
    InStream stream(bytes);
    if (!isWholeTable(kind, *version)) (void)stream.skip(sizeof(std::int16_t));
    Reader io(stream, *version);
    if (walkBody(kind, io) == kDone && !io.forgave())
      return {kDone, version, stream.position(), bytes.size(), std::nullopt, std::nullopt};
  }
  return mapFile(bytes, kind, [](const MapLine&) {});
}

FileReport mapFile(const std::string& path, FileKind kind, const MapSink& sink) {
  const FileContent file(path);
  return file.error().empty() ? mapFile(file.bytes(), kind, sink) : notRead(file.error());
}

FileReport checkFile(const std::string& path, FileKind kind) {
  const FileContent file(path);
  return file.error().empty() ? checkFile(file.bytes(), kind) : notRead(file.error());
}

}  // namespace oldtorvio::explain
