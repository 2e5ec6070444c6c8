// The fields of a map: a line of a block has several.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "torvio/explain/map.h"

namespace oldtorvio::explain {

struct MapField {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;
  std::string_view path;
  const StoredForm* form = nullptr;
};

// Calls use(MapField) for each field of the line, and for no remark. The path is valid during the call.
template <class Use>
void eachField(const MapLine& line, const Use& use) {
  if (line.forms.size() == 1) return use(MapField{line.offset, line.size, line.path, line.forms.data()});
  std::uint64_t offset = line.offset;
  std::size_t from = line.nameAt;
  std::string path;
  for (const StoredForm& form : line.forms) {
    constexpr std::string_view kBetween = ", ";
    const std::size_t end = line.path.find(kBetween, from);
    path.assign(line.path, 0, line.nameAt).append(line.path, from, end == std::string::npos ? end : end - from);
    use(MapField{offset, form.size, path, &form});
    offset += form.size;
    if (end != std::string::npos) from = end + kBetween.size();
  }
}

}  // namespace oldtorvio::explain
