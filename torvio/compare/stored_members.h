// Which members of a record a kind of file stores at a version, as its Layout says.
#pragma once
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "src/frame/file_kinds.h"

namespace oldtorvio::compare {

class StoredMembers {
 public:
  // The entries of an array that are stored; none for all of a member.
  using Entries = std::optional<std::set<std::size_t>>;
  using Paths = std::map<std::string, Entries, std::less<>>;

  // All members that the version stores, including those that depend on the values of other fields.
  StoredMembers(frame::FileKind kind, int version);

  // A member by its path without positions: "partList.parts.patterns.items.toolNumber".
  bool has(std::string_view path) const { return paths_.find(path) != paths_.end(); }
  // An entry of an array: some versions store only a few.
  bool hasEntry(std::string_view path, std::size_t entry) const;

 private:
  void nameBindings(const std::string& pattern);

  Paths paths_;
};

}  // namespace oldtorvio::compare
