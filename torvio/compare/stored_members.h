// Which members of a record a kind of file stores at a version, as its Layout says.
#pragma once
#include <set>
#include <string>
#include <string_view>

#include "src/frame/file_kinds.h"

namespace oldtorvio::compare {

class StoredMembers {
 public:
  // Stored whatever the values of other fields are.
  StoredMembers(frame::FileKind kind, int version);

  // A member by its path without positions: "partList.parts.patterns.items.toolNumber".
  bool has(std::string_view path) const { return paths_.find(path) != paths_.end(); }
  const std::set<std::string, std::less<>>& paths() const { return paths_; }

 private:
  std::set<std::string, std::less<>> paths_;
};

}  // namespace oldtorvio::compare
