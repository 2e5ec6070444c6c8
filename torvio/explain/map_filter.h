// Chooses lines of a map, by path or by offset.
#pragma once
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/explain/map.h"

namespace oldtorvio::explain {

// A pattern for paths: names between dots, which match names that follow each other anywhere in a path. A record or list
// that matches selects everything in it.
//
//   x                   every x, and everything in a record that is called x
//   shapes.x            the x of every element of every shapes
//   shapes[3].x         the same of element 3; shapes[*] and shapes[2..5] for several, shapes for all
//   tool*.*Count        * is any part of a name, ? one character
//   parts[0].**.x       ** is any number of names
class PathPattern {
 public:
  // Nothing if the text is no pattern; then `error` says why.
  static std::optional<PathPattern> parsed(std::string_view text, std::string& error);

  bool matches(std::string_view path) const;

 private:
  struct Indices {
    std::uint64_t first, last;
  };
  struct Step {
    bool isAnyNumber = false;  // "**"
    std::string name;
    std::vector<Indices> indices;
  };

  static bool matchesOne(const Step& step, std::string_view component);

  std::vector<Step> steps_;
};

// Bytes of a file, the first and the last included.
struct OffsetRange {
  std::uint64_t first = 0;
  std::uint64_t last = std::numeric_limits<std::uint64_t>::max();

  // "18", "0x12", "0x12..0x40", "18..", "..64". Nothing for any other text, and if the last is below the first.
  static std::optional<OffsetRange> parsed(std::string_view text);

  bool overlaps(std::uint64_t offset, std::uint64_t size) const {
    return offset <= last && (size == 0 ? offset : offset + size - 1) >= first;
  }
};

struct MapFilter {
  std::optional<PathPattern> path;
  std::optional<OffsetRange> range;

  bool isEmpty() const { return !path && !range; }
  bool accepts(std::uint64_t offset, std::uint64_t size, std::string_view fieldPath) const {
    return (!range || range->overlaps(offset, size)) && (!path || path->matches(fieldPath));
  }
  // A line of a block is chosen by any of its fields.
  bool accepts(const MapLine& line) const;
};

}  // namespace oldtorvio::explain
