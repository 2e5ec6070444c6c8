#include "torvio/explain/file_map.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "src/file_records.h"
#include "src/frame/entry.h"
#include "torvio/explain/file_content.h"

namespace oldtorvio::explain {
namespace {

using namespace codec;
using namespace frame;

// The file after its version word, or all of it if it starts with a table.
std::int64_t walkBody(FileKind kind, Mapper& io) {
  return withFileRecord(kind, [&](auto file) {
    const auto record = std::make_unique<typename decltype(file)::Record>();
    return file.walk(io, *record);
  });
}
std::int64_t readBody(FileKind kind, InStream& stream, int version) {
  return withFileRecord(kind, [&](auto file) {
    const auto record = std::make_unique<typename decltype(file)::Record>();
    return file.read(stream, version, *record);
  });
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

std::string FileReport::unread() const {
  const std::uint64_t count = size - walked;
  return std::to_string(count) + (count == 1 ? " unread byte" : " unread bytes") + " after the last field";
}

std::string hexOffset(std::uint64_t offset) {
  char digits[32];
  (void)std::snprintf(digits, sizeof digits, "%08llx", static_cast<unsigned long long>(offset));
  return digits;
}

std::string describe(const Fault& fault) {
  return "at " + hexOffset(fault.offset) + " in " + fault.path + ": " + fault.reason;
}

FileReport mapFile(std::span<const std::byte> bytes, FileKind kind, const MapSink& sink, OffsetRange wanted) {
  FileReport report;
  InStream stream(bytes);
  report.size = bytes.size();
  report.version = versionOf(bytes);

  if (!report.version || !startsWithTable(kind, *report.version)) {
    Mapper head(stream, kUnversioned, sink, wanted);
    std::int16_t version = 0;
    if (!head.fields(FIELDS(version))) {
      report.status = kDamaged;
      report.fault = head.fault();
      return report;
    }
    report.walked = head.walked();
    if (!infoOf(kind).accepts(version)) {
      report.status = infoOf(kind).refusal;
      report.fault = Fault{
          0, "version", std::to_string(version) + " is not a version of a " + std::string(infoOf(kind).name) + " file"};
      return report;
    }
  }
  Mapper body(stream, *report.version, sink, wanted);
  report.status = walkBody(kind, body);
  report.walked = body.walked();
  report.tolerated = body.tolerated();
  if (report.status != kDone)
    report.fault = body.fault();
  else if (stream.left() > 0)
    body.remark(report.unread());
  return report;
}

FileReport mapFile(std::span<const std::byte> bytes, std::optional<FileKind> kind, const MapSink& sink,
                   OffsetRange wanted) {
  if (kind) return mapFile(bytes, *kind, sink, wanted);
  FileReport report;
  report.size = bytes.size();
  report.status = kDamaged;
  InStream stream(bytes);
  Mapper head(stream, kUnversioned, sink, wanted);
  std::int16_t version = 0;
  if (!head.fields(FIELDS(version))) {
    report.fault = head.fault();
    return report;
  }
  report.version = version;
  report.walked = stream.position();
  const bool isKnown = std::any_of(kFileKinds.begin(), kFileKinds.end(),
                                   [version](const FileKindInfo& info) { return info.accepts(version); });
  if (!isKnown) report.status = kWrongVersion;
  const std::string other = std::to_string(version) + " is not a version of any kind of file";
  report.fault = Fault{0, "version", isKnown ? "unlike any kind of file; choose the kind (--kind)" : other};
  return report;
}

FileReport checkFile(std::span<const std::byte> bytes, FileKind kind) {
  // Sound files take the fast path; only the others are walked with names.
  const auto version = versionOf(bytes);
  if (version && infoOf(kind).accepts(*version)) {
    InStream stream(bytes);
    if (!startsWithTable(kind, *version)) (void)stream.skip(sizeof(std::int16_t));
    if (readBody(kind, stream, *version) == kDone && !stream.wasForgiven())
      return {kDone, version, stream.position(), bytes.size(), std::nullopt, std::nullopt};
  }
  return mapFile(bytes, kind, nullptr);
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
