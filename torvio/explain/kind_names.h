// The names of kinds of files.
#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "src/frame/file_kinds.h"

namespace oldtorvio::explain {

inline std::vector<std::string> kindNames() {
  std::vector<std::string> names;
  for (const frame::FileKindInfo& kind : frame::kFileKinds) names.emplace_back(kind.name);
  return names;
}

inline std::optional<frame::FileKind> kindNamed(std::string_view name) {
  for (const frame::FileKindInfo& kind : frame::kFileKinds)
    if (kind.name == name) return kind.kind;
  return std::nullopt;
}

}  // namespace oldtorvio::explain
