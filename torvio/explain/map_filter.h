// Chooses lines of a map, by path or by offset.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/explain/map.h"
#include "torvio/explain/offset_range.h"

namespace oldtorvio::explain {

// A pattern for paths: names separated by dots, which match consecutive names anywhere in a path. A record or list that
// matches selects everything in it.
//
//   x                   every x, and everything in a record that is called x
//   shapes.x            the x of every element of every shapes
//   shapes[3].x         the same of element 3; shapes[*] and shapes[2..5] for several, shapes for all
//   tool*.*Count        * is any part of a name, ? one character
//   parts[0].**.x       ** is any number of names
class PathPattern {
 public:
  // Nothing if the text is not a pattern; then `error` says why.
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

struct MapFilter {
  std::optional<PathPattern> path;
  std::optional<OffsetRange> range;

  bool isEmpty() const { return !path && !range; }
  // What a walk has to report for this filter. A filter with a path accepts only some of that.
  OffsetRange wanted() const { return range.value_or(OffsetRange()); }
  bool accepts(std::uint64_t offset, std::uint64_t size, std::string_view fieldPath) const {
    return (!range || range->overlaps(offset, size)) && (!path || path->matches(fieldPath));
  }
  // A line of a block is accepted if any of its fields is.
  bool accepts(const MapLine& line) const;
};

}  // namespace oldtorvio::explain
