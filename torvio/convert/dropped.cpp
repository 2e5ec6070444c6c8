#include "torvio/convert/dropped.h"

#include <algorithm>

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "src/sheet/sheet_layout.h"
#include "torvio/values/equal.h"

namespace oldtorvio::convert {

void Dropped::see(const explain::MapLine& line) {
  if (line.size == 0) return;
  const auto from = static_cast<std::size_t>(line.offset), size = static_cast<std::size_t>(line.size);
  if (line.path.ends_with("reserved")) {
    const auto reserved = bytes_.subspan(from, size);
    if (std::all_of(reserved.begin(), reserved.end(), [](std::byte byte) { return byte == std::byte{}; })) return;
    if (!reserved_) reserved_ = {line.offset, 0, ""};
    reserved_->size += line.size;
    ++reservedPlaces_;
  } else if (line.path == "spareWord") {
    // In a sheet. A save stores -1.
    if (line.value != "-1") spareWord_ = {line.offset, line.size, "spareWord, which a load does not keep"};
  } else if (line.path == "blocks.count") {
    hasOneBlock_ = line.value == "1";
  } else if (line.path.starts_with("blocks[")) {
    if (!blocks_) blocks_ = {line.offset, 0, ""};
    blocks_->size = line.offset + line.size - blocks_->offset;
  }
}

std::span<const std::byte> Dropped::block() const {
  if (!blocks_ || !hasOneBlock_) return {};
  return bytes_.subspan(static_cast<std::size_t>(blocks_->offset), static_cast<std::size_t>(blocks_->size));
}

void Dropped::addTo(std::vector<LeftOut>& leftOut) const {
  if (reserved_) {
    const std::string places = reservedPlaces_ > 1 ? " in " + std::to_string(reservedPlaces_) + " places" : "";
    leftOut.push_back({reserved_->offset, reserved_->size, "reserved bytes" + places + " that are not all zero"});
  }
  if (spareWord_) leftOut.push_back(*spareWord_);
  if (blocks_) {
    // A load continues after the first block, whatever the count is.
    const std::string others = hasOneBlock_ ? "" : "; what is after it is read at the wrong place";
    leftOut.push_back({blocks_->offset, blocks_->size, "a block, which a load reads but does not keep" + others});
  }
}

std::optional<std::vector<std::byte>> withBlock(std::span<const std::byte> sheet, std::span<const std::byte> block,
                                                int from, int to) {
  std::optional<std::uint64_t> at;
  (void)explain::mapFile(sheet, explain::FileKind::sheet, [&](const explain::MapLine& line) {
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
  const auto head = sheet.first(static_cast<std::size_t>(*at));
  const auto tail = sheet.subspan(static_cast<std::size_t>(*at) + sizeof kCount);
  std::vector<std::byte> all(head.begin(), head.end());
  all.insert(all.end(), out.bytes().begin(), out.bytes().end());
  all.insert(all.end(), tail.begin(), tail.end());
  const explain::FileReport report = explain::checkFile(all, explain::FileKind::sheet);
  if (!report.endsExactly() || report.tolerated) return std::nullopt;
  return all;
}

}  // namespace oldtorvio::convert
