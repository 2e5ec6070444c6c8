#include "torvio/convert/member_path.h"

#include <algorithm>
#include <charconv>

namespace oldtorvio::convert {
namespace {

using values::Form;
using values::Type;

const void* at(const void* first, std::size_t bytes) {
  return first == nullptr ? nullptr : static_cast<const std::byte*>(first) + bytes;
}

std::optional<Place> elementOf(const Place& place, std::size_t i) {
  const Type& type = *place.type;
  switch (type.form) {
    case Form::list:
      if (i >= type.length(place.value)) return std::nullopt;
      return Place{type.element, at(type.data(place.value), i * type.element->size), type.element->fresh.get()};
    case Form::lazyArray:
      if (i >= type.count) return std::nullopt;
      return Place{type.element, type.lazyAt(place.value, i), type.unwritten};
    case Form::array:
    case Form::bytes:
      if (i >= type.count) return std::nullopt;
      return Place{type.element, at(place.value, i * type.element->size), at(place.fresh, i * type.element->size)};
    case Form::pair: {
      if (i >= type.members.size()) return std::nullopt;
      const values::TypeMember& member = type.members[i];
      return Place{member.type, at(place.value, member.offset), at(place.fresh, member.offset)};
    }
    default:
      return std::nullopt;
  }
}

std::optional<Place> memberOf(const Place& place, std::string_view name) {
  const auto& members = place.type->members;
  const auto member =
      std::find_if(members.begin(), members.end(), [name](const values::TypeMember& one) { return one.name == name; });
  if (member == members.end()) return std::nullopt;
  return Place{member->type, at(place.value, member->offset), at(place.fresh, member->offset)};
}

}  // namespace

std::vector<PathStep> stepsOf(std::string_view path) {
  std::vector<PathStep> steps;
  std::size_t from = 0;
  while (from <= path.size()) {
    const std::size_t end = std::min(path.find('.', from), path.size());
    const std::size_t bracket = std::min(path.find('[', from), end);
    PathStep step{path.substr(from, bracket - from), {}, bracket};
    for (std::size_t open = bracket; open < end && path[open] == '[';) {
      const std::size_t close = std::min(path.find(']', open), end);
      std::size_t index = 0;
      (void)std::from_chars(path.data() + open + 1, path.data() + close, index);
      step.indexes.push_back(index);
      open = close + 1;
    }
    steps.push_back(std::move(step));
    from = end + 1;
  }
  return steps;
}

std::optional<Place> placeAt(const Type& type, const void* record, std::string_view path) {
  std::optional<Place> place = Place{&type, record, type.fresh.get()};
  for (const PathStep& step : stepsOf(path)) {
    place = memberOf(*place, step.name);
    if (!place) return std::nullopt;
    for (const std::size_t index : step.indexes) {
      place = elementOf(*place, index);
      if (!place) return std::nullopt;
    }
  }
  return place;
}

}  // namespace oldtorvio::convert
