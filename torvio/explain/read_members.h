// What a load read from a file: the other members of its record, of a later version or after a fault, have defaults
// that are not in the file.
#pragma once
#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "torvio/explain/file_map.h"

namespace oldtorvio::explain {

class ReadMembers {
 public:
  // Has every member, as for a record into which no file was loaded.
  ReadMembers() = default;
  ReadMembers(std::span<const std::byte> bytes, FileKind kind);

  // A member by its path without positions: "width", "machine.clampInfo". A list is read if its first element was begun,
  // or the first element of a list with which it shares rows.
  bool has(std::string_view member) const { return isComplete_ || names_.find(member) != names_.end(); }

 private:
  bool isComplete_ = true;
  std::set<std::string, std::less<>> names_;
};

}  // namespace oldtorvio::explain
