// What a load read of a file: the other members of its record, of a later version or after a fault, have defaults that
// the file does not contain.
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
  // Every member, as of a record that no file was loaded into.
  ReadMembers() = default;
  ReadMembers(std::span<const std::byte> bytes, FileKind kind);

  // A member by its path without positions: "width", "machine.clampInfo". A list is read if its first element was begun,
  // or that of a list with which it shares rows.
  bool has(std::string_view member) const { return isComplete_ || names_.find(member) != names_.end(); }

 private:
  bool isComplete_ = true;
  std::set<std::string, std::less<>> names_;
};

}  // namespace oldtorvio::explain
