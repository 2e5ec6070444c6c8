// Which members a load read from a file.
#pragma once
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "torvio/explain/map_fields.h"
#include "torvio/values/types.h"

namespace oldtorvio::convert {

// The path of the member that a field of a map becomes; it may differ from that of the field.
std::string memberPathOf(std::string_view fieldPath);

class ReadFields {
 public:
  void see(const explain::MapLine& line);

  // Whether a field with that path (without indexes) was read, or one inside it.
  bool has(std::string_view pattern) const { return patterns_.find(pattern) != patterns_.end(); }
  // Whether nothing was read of an embedded record or a list that holds the member at that path.
  bool lacksOwnerOf(const values::Type& root, std::string_view path) const;
  std::uint64_t count() const { return count_; }

 private:
  void add(std::string pattern);

  std::set<std::string, std::less<>> patterns_;
  std::uint64_t count_ = 0;
};

}  // namespace oldtorvio::convert
