#include "torvio/convert/convert.h"

#include <memory>
#include <utility>

#include "torvio/convert/complete_save.h"
#include "torvio/convert/dropped.h"
#include "torvio/convert/losses.h"
#include "torvio/convert/read_fields.h"
#include "torvio/convert/sheet_surplus.h"

namespace oldtorvio::convert {
namespace {

using frame::FileKind;

// Why a file with this report cannot be converted at all; empty if it can.
std::string obstacle(const explain::FileReport& report, FileKind kind) {
  if (!report.version) return "has no version word";
  if (!frame::infoOf(kind).accepts(*report.version))
    return std::to_string(*report.version) + " is not a version of a " + std::string(frame::infoOf(kind).name) +
           " file";
  if (report.status != frame::kDone) {
    if (report.endsInRest())
      return "is of version " + std::to_string(*report.version) + ", which no load reads to the end; " +
             "\"torvio recover\" keeps what it reads";
    const std::string place = report.fault ? ", breaks " + explain::describe(*report.fault) : "";
    return "is damaged" + place + "; \"torvio recover\" keeps what is before that";
  }
  // What follows was read at the wrong place.
  if (report.tolerated && report.walked > report.tolerated->offset)
    return "breaks " + explain::describe(*report.tolerated) +
           ", which loads tolerate, and what follows is misread; \"torvio recover\" keeps what is before that";
  return "";
}

// Members of a record or list that the file does not have are not a loss. A new record has them, but some of its
// defaults cannot be stored.
void noteOtherDefaults(const values::Type& type, const ReadFields& read, Report& report) {
  std::erase_if(report.losses, [&](const Loss& loss) {
    if (!read.lacksOwnerOf(type, loss.path)) return false;
    report.notes.push_back(loss.member +
                           " is not in the old file; the new file has defaults other than those of a new record.");
    return true;
  });
}

template <FileKind kKind>
void convertAs(std::span<const std::byte> bytes, int version, const ConvertOptions& options, const ReadFields& read,
               Dropped& dropped, Converted& to) {
  const auto loaded = values::loadRecord<kKind>(bytes);
  const auto copy = std::make_unique<typename FileRecord<kKind>::Record>(*loaded.record);
  CompleteSave saved = saveCompletely<kKind>(*copy, version);
  to.error = std::move(saved.error);
  if (!to.error.empty()) return;
  if constexpr (kKind == FileKind::sheet) {
    // For a damaged block, the record has what was read, and the comparison finds it.
    if (!loaded.record->blocks.empty()) dropped.forgetBlocks();
    if (auto kept = dropped.block().empty() ? std::nullopt
                                            : withBlock(saved.bytes, dropped.block(), *loaded.version, version)) {
      saved.bytes = std::move(*kept);
      dropped.forgetBlocks();
    }
  }
  const auto reloaded = values::loadRecord<kKind>(saved.bytes);
  // The version is not a loss.
  FileRecord<kKind>::setVersion(*reloaded.record, *loaded.version);
  to.report.losses = lossesOf<kKind>(*loaded.record, *reloaded.record, options.encoding);
  noteOtherDefaults(values::typeOfRecord(kKind), read, to.report);
  to.report.newSize = saved.bytes.size();
  to.bytes = std::move(saved.bytes);
}

}  // namespace

Converted convert(std::span<const std::byte> bytes, FileKind kind, int version, const ConvertOptions& options) {
  Converted to;
  Report& report = to.report;
  report.kind = kind;
  report.to = version;
  report.size = bytes.size();
  explain::FileReport file = explain::checkFile(bytes, kind);
  report.from = file.version;
  std::vector<std::byte> fixed;
  if (const auto surplus = surplusOf(bytes, kind, file)) {
    report.notes.push_back("fixed: removed " + bytesText(surplus->size) + " at " + explain::hexOffset(surplus->offset) +
                           ", which a save below version 152 stored and no load expects");
    fixed = without(bytes, *surplus);
    bytes = fixed;
    file = explain::checkFile(bytes, kind);
  }
  to.error = obstacle(file, kind);
  if (!to.error.empty()) return to;

  Dropped dropped(bytes);
  ReadFields read;
  (void)explain::mapFile(bytes, kind, [&](const explain::MapLine& line) {
    dropped.see(line);
    read.see(line);
  });
  withFileRecord(kind, [&](auto as) { convertAs<decltype(as)::kKind>(bytes, version, options, read, dropped, to); });
  dropped.addTo(report.leftOut);
  if (file.walked < file.size)
    report.leftOut.push_back(
        {file.walked, file.size - file.walked,
         file.tolerated ? "the beginning of " + file.tolerated->path : "unread bytes after the last field"});
  else if (file.tolerated)
    report.notes.push_back("The file ends before " + file.tolerated->path +
                           ", which loads tolerate. The new file has defaults from there on.");

  if (!to.error.empty() || options.allowLoss || report.isComplete()) return to;
  to.bytes.clear();
  to.error = "a file of version " + std::to_string(version) + " would lose what is listed";
  return to;
}

}  // namespace oldtorvio::convert
