#include "torvio/explain/read_members.h"

#include <algorithm>

namespace oldtorvio::explain {

ReadMembers::ReadMembers(std::span<const std::byte> bytes, FileKind kind) : isComplete_(false) {
  (void)mapFile(bytes, kind, [this](const MapLine& line) {
    // One line may be of several members: "sizeX, sizeY".
    for (std::string_view rest = line.path; !rest.empty();) {
      const std::size_t comma = std::min(rest.find(','), rest.size());
      note(rest.substr(0, comma));
      rest.remove_prefix(comma);
      rest.remove_prefix(std::min(rest.find_first_not_of(", "), rest.size()));
    }
  });
}

void ReadMembers::note(std::string_view path) {
  path = path.substr(0, path.find('['));
  for (std::size_t end = path.find('.');; end = path.find('.', end + 1)) {
    const std::string_view name = path.substr(0, end);
    if (names_.find(name) == names_.end()) names_.emplace(name);
    if (end == std::string_view::npos) return;
  }
}

}  // namespace oldtorvio::explain
