// What a load reads from a file and drops: neither its record nor a save of it has these bytes.
#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "torvio/convert/report.h"

namespace oldtorvio::convert {

class Dropped {
 public:
  explicit Dropped(std::span<const std::byte> bytes) : bytes_(bytes) {}

  void see(const explain::MapLine& line);

  // The only block of a sheet, or nothing if there is none or more than one.
  std::span<const std::byte> block() const;
  // Call it if the blocks are not left out.
  void forgetBlocks() { blocks_.reset(); }

  // One entry for all reserved bytes that are not zero, since a file may have thousands, and one for the blocks.
  void addTo(std::vector<LeftOut>& leftOut) const;

 private:
  std::span<const std::byte> bytes_;
  std::optional<LeftOut> reserved_, spareWord_, blocks_;
  std::size_t reservedPlaces_ = 0;
  bool hasOneBlock_ = false;
};

// The file of a sheet with that block from a file of version `from`; nothing if version `to` cannot store all of it. A
// load reads a complete block and drops it, and a save stores none: so the block is kept only if it is put back where
// it was.
std::optional<std::vector<std::byte>> withBlock(std::span<const std::byte> sheet, std::span<const std::byte> block,
                                                int from, int to);

}  // namespace oldtorvio::convert
