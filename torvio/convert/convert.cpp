#include "torvio/convert/convert.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "torvio/convert/complete_save.h"
#include "torvio/convert/losses.h"
#include "torvio/convert/read_fields.h"
#include "torvio/convert/sheet_surplus.h"
#include "torvio/values/equal.h"

namespace oldtorvio::convert {
namespace {

using frame::FileKind;

std::string hex(std::uint64_t offset) {
  char digits[32];
  (void)std::snprintf(digits, sizeof digits, "%08llx", static_cast<unsigned long long>(offset));
  return digits;
}

// What a load reads and drops: neither record nor save has it.
class Dropped {
 public:
  static constexpr const char* kBlock = "a block, which a load reads but does not keep";

  explicit Dropped(std::span<const std::byte> bytes) : bytes_(bytes) {}

  void see(const explain::MapLine& line) {
    if (line.size == 0) return;
    const auto from = static_cast<std::size_t>(line.offset), size = static_cast<std::size_t>(line.size);
    if (line.path.ends_with("reserved")) {
      const auto part = bytes_.subspan(from, size);
      if (std::any_of(part.begin(), part.end(), [](std::byte byte) { return byte != std::byte{}; }))
        found_.push_back({line.offset, line.size, "reserved bytes that are not zero"});
    } else if (line.path == "blocks.count") {
      hasOneBlock_ = line.value == "1";
    } else if (line.path.starts_with("blocks[")) {
      if (!blocks_) blocks_ = {line.offset, 0, kBlock};
      blocks_->size = line.offset + line.size - blocks_->offset;
    }
  }
  // The bytes of the only block of a sheet.
  std::span<const std::byte> block() const {
    if (!blocks_ || !hasOneBlock_) return {};
    return bytes_.subspan(static_cast<std::size_t>(blocks_->offset), static_cast<std::size_t>(blocks_->size));
  }
  void keepBlock() { blocks_.reset(); }
  std::vector<LeftOut> finished() {
    if (blocks_) {
      // A load goes on after the first one, whatever the count is.
      if (!hasOneBlock_) blocks_->reason += "; the blocks after it are read as what follows them";
      found_.push_back(*blocks_);
    }
    // One for all, since a file may have thousands.
    const auto isReserved = [](const LeftOut& one) { return one.reason.starts_with("reserved"); };
    const auto count = std::count_if(found_.begin(), found_.end(), isReserved);
    if (count < 2) return std::move(found_);
    LeftOut all{0, 0, ""};
    for (const LeftOut& one : found_) {
      if (!isReserved(one)) continue;
      if (all.size == 0) all.offset = one.offset;
      all.size += one.size;
    }
    all.reason = "reserved bytes in " + std::to_string(count) + " places that are not all zero";
    std::erase_if(found_, isReserved);
    found_.insert(found_.begin(), all);
    return std::move(found_);
  }

 private:
  std::span<const std::byte> bytes_;
  std::vector<LeftOut> found_;
  std::optional<LeftOut> blocks_;
  bool hasOneBlock_ = false;
};

// The file of a sheet with that block, stored as a version `from` stores it, and nothing if version `to` cannot store
// all of it. A load reads a complete block and drops it, a save has none: so it is neither lost nor changed if it is
// put where it was.
std::optional<std::vector<std::byte>> withBlock(const std::vector<std::byte>& sheet, std::span<const std::byte> block,
                                                int from, int to) {
  std::optional<std::uint64_t> at;
  (void)explain::mapFile(sheet, FileKind::sheet, [&](const explain::MapLine& line) {
    if (line.path == "blocks.count") at = line.offset;
  });
  ShapeWorkBlock before, after;
  codec::InStream in(block);
  codec::OutStream out;
  constexpr std::int32_t kCount = 1;
  if (!at || !codec::readRecord(in, from, before) || in.left() > 0 || !codec::writeRecord(out, to, kCount) ||
      !codec::writeRecord(out, to, before))
    return std::nullopt;
  codec::InStream again(out.bytes().subspan(sizeof kCount));
  if (!codec::readRecord(again, to, after) || !values::equalContents(before, after)) return std::nullopt;
  const auto head = std::span(sheet).first(static_cast<std::size_t>(*at));
  const auto tail = std::span(sheet).subspan(static_cast<std::size_t>(*at) + sizeof kCount);
  std::vector<std::byte> all(head.begin(), head.end());
  all.insert(all.end(), out.bytes().begin(), out.bytes().end());
  all.insert(all.end(), tail.begin(), tail.end());
  const explain::FileReport report = explain::checkFile(all, FileKind::sheet);
  if (!report.endsExactly() || report.tolerated) return std::nullopt;
  return all;
}

std::string placeOf(const explain::Fault& fault) {
  return "at " + hex(fault.offset) + " in " + fault.path + ": " + fault.reason;
}

// Why a file of this report cannot be converted at all; empty if it can.
std::string obstacle(const explain::FileReport& report, FileKind kind) {
  if (!report.version) return "has no version word";
  if (!frame::infoOf(kind).accepts(*report.version))
    return std::to_string(*report.version) + " is not a version of a " + std::string(frame::infoOf(kind).name) +
           " file";
  if (report.status != frame::kDone) {
    const std::string place = report.fault ? ", breaks " + placeOf(*report.fault) : "";
    return "is damaged" + place + "; \"torvio recover\" keeps what is before that";
  }
  // What follows was read at the wrong place.
  if (report.tolerated && report.walked > report.tolerated->offset)
    return "breaks " + placeOf(*report.tolerated) +
           ", which loads tolerate, and what follows is misread; \"torvio recover\" keeps what is before that";
  return "";
}

// Members of a record or list that the file does not have are no loss. A new record has them, but some of its defaults cannot be
// stored.
void noteOtherDefaults(const values::Type& type, const ReadFields& read, Report& report) {
  std::erase_if(report.losses, [&](const Loss& loss) {
    if (!read.lackOwnerOf(type, loss.path)) return false;
    report.notes.push_back("The file does not have " + loss.member + ", of which the new file has other defaults.");
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
  if constexpr (kKind == FileKind::sheet)
    if (auto kept = dropped.block().empty() || !loaded.record->blocks.empty()
                        ? std::nullopt
                        : withBlock(saved.bytes, dropped.block(), *loaded.version, version)) {
      saved.bytes = std::move(*kept);
      dropped.keepBlock();
    }
  const auto reloaded = values::loadRecord<kKind>(saved.bytes);
  // The version is no loss.
  values::beginLoad(*reloaded.record, *loaded.version, {});
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
    report.notes.push_back("fixed: without " + bytesText(surplus->size) + " from " + hex(surplus->offset) +
                           " on, which a save below version 152 stored and no load expects");
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
  report.leftOut = dropped.finished();
  if (file.walked < file.size)
    report.leftOut.push_back(
        {file.walked, file.size - file.walked,
         file.tolerated ? "the beginning of " + file.tolerated->path : "unread bytes after the last field"});
  else if (file.tolerated)
    report.notes.push_back("The file ends before " + file.tolerated->path +
                           ", which loads tolerate. The new file has defaults from there on.");

  if (!to.error.empty() || options.allowLoss || report.isComplete()) return to;
  to.bytes.clear();
  to.error = "would lose what is listed in version " + std::to_string(version);
  return to;
}

}  // namespace oldtorvio::convert
