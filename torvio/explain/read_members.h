// What a load read before a fault: the other members of its record have defaults that no file contains.
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
  // Every member, as of a sound file.
  ReadMembers() = default;
  // Of a file with this report.
  ReadMembers(std::span<const std::byte> bytes, FileKind kind, const FileReport& report);

  // A member by its path without positions: "width", "machine.clampInfo". A list is read if one of its elements is.
  bool has(std::string_view member) const { return isComplete_ || names_.find(member) != names_.end(); }

 private:
  void note(std::string_view path);

  bool isComplete_ = true;
  std::set<std::string, std::less<>> names_;
};

}  // namespace oldtorvio::explain
