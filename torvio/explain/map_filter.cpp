#include "torvio/explain/map_filter.h"

#include "torvio/explain/map_fields.h"

namespace oldtorvio::explain {
namespace {

constexpr std::string_view kAnyNumber = "**";

// Whether the name matches the pattern: * is any part of it, ? one character.
bool isLike(std::string_view name, std::string_view pattern) {
  std::size_t n = 0, p = 0, star = std::string_view::npos, afterStar = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      afterStar = n;
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
      ++p, ++n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++afterStar;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

// Takes the text up to the separator off the front of `rest`.
std::string_view takeUpTo(std::string_view& rest, char separator) {
  const std::size_t end = rest.find(separator);
  const std::string_view first = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return first;
}

// The dots in "[2..5]" do not separate names.
std::vector<std::string_view> componentsOf(std::string_view pattern) {
  std::vector<std::string_view> all;
  bool inIndex = false;
  std::size_t from = 0;
  for (std::size_t i = 0; i <= pattern.size(); ++i) {
    if (i < pattern.size() && pattern[i] == '[') inIndex = true;
    if (i < pattern.size() && pattern[i] == ']') inIndex = false;
    if (i < pattern.size() && (pattern[i] != '.' || inIndex)) continue;
    all.push_back(pattern.substr(from, i - from));
    from = i + 1;
  }
  return all;
}

}  // namespace

std::optional<PathPattern> PathPattern::parsed(std::string_view text, std::string& error) {
  PathPattern pattern;
  for (const std::string_view component : componentsOf(text)) {
    Step step;
    step.isAnyNumber = component == kAnyNumber;
    std::string_view rest = component;
    step.name = rest.substr(0, rest.find('['));
    if (step.name.empty() || step.name.find(']') != std::string::npos) {
      error = step.name.empty() ? "a name is missing" : "\"[\" is missing";
      return std::nullopt;
    }
    rest.remove_prefix(step.name.size());
    while (!rest.empty()) {
      const bool isClosed = rest.front() == '[' && rest.find(']') != std::string_view::npos;
      const std::string_view index = isClosed ? rest.substr(1, rest.find(']') - 1) : std::string_view();
      const auto range = index == "*" ? OffsetRange() : OffsetRange::parsed(index);
      if (!range) {
        error = "an index is a number, a range such as [2..5], or [*]";
        return std::nullopt;
      }
      step.indices.push_back({range->first, range->last});
      rest.remove_prefix(index.size() + 2);
    }
    pattern.steps_.push_back(std::move(step));
  }
  return pattern;
}

// Without indices, or with fewer than the component has, all entries match.
bool PathPattern::matchesOne(const Step& step, std::string_view component) {
  std::string_view indices = component;
  const std::string_view name = takeUpTo(indices, '[');
  if (!isLike(name, step.name)) return false;
  for (const Indices& wanted : step.indices) {
    const auto index = OffsetRange::numberIn(takeUpTo(indices, ']'));
    if (!index || *index < wanted.first || *index > wanted.last) return false;
    if (!indices.empty()) indices.remove_prefix(1);
  }
  return true;
}

bool PathPattern::matches(std::string_view path) const {
  // reached[i]: the first i steps match names that end here. A match may begin and end anywhere.
  std::vector<bool> reached(steps_.size() + 1, false), next(steps_.size() + 1, false);
  const auto skipAnyNumbers = [this](std::vector<bool>& at) {
    for (std::size_t i = 0; i < steps_.size(); ++i)
      if (at[i] && steps_[i].isAnyNumber) at[i + 1] = true;
    return at[steps_.size()];
  };
  while (true) {
    reached[0] = true;
    if (skipAnyNumbers(reached)) return true;
    if (path.empty()) return false;
    const std::string_view component = takeUpTo(path, '.');
    next.assign(next.size(), false);
    for (std::size_t i = 0; i < steps_.size(); ++i) {
      if (!reached[i]) continue;
      if (steps_[i].isAnyNumber)
        next[i] = true;
      else if (matchesOne(steps_[i], component))
        next[i + 1] = true;
    }
    reached.swap(next);
  }
}

bool MapFilter::accepts(const MapLine& line) const {
  if (line.size == 0) return accepts(line.offset, 0, line.path);
  bool any = false;
  eachField(line, [&](const MapField& field) { any = any || accepts(field.offset, field.size, field.path); });
  return any;
}

}  // namespace oldtorvio::explain
