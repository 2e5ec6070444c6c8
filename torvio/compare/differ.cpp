#include "torvio/compare/differ.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "torvio/values/text_encoding.h"

namespace oldtorvio::compare {

using values::Form;
using Change = Difference::Change;

namespace {

const void* at(const void* first, std::size_t i, const MemberNode& element) {
  return static_cast<const std::byte*>(first) + i * element.type->size;
}

void appendName(std::string& path, std::string_view name) {
  if (!path.empty()) path += '.';
  path += name;
}
void appendIndex(std::string& path, std::size_t i) { path.append("[").append(std::to_string(i)) += ']'; }

// Restores a path at the end of its scope.
class PathEnd {
 public:
  explicit PathEnd(std::string& path) : path_(path), size_(path.size()) {}
  PathEnd(const PathEnd&) = delete;
  PathEnd& operator=(const PathEnd&) = delete;
  ~PathEnd() { path_.resize(size_); }

 private:
  std::string& path_;
  std::size_t size_;
};

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; }

constexpr std::string_view kCut = "...";

// The beginning of a text, with at most that many bytes, and the mark of a cut.
std::string beginning(const std::string& text, std::size_t size) {
  if (text.size() <= size) return text;
  while (size > 0 && isContinuation(text[size])) --size;
  return text.substr(0, size).append(kCut);
}

}  // namespace

// The elements of two lists that are not the same at the same distance from their beginnings or ends.
struct Differ::ListPair {
  const MemberNode& element;
  const void *a, *b;
  std::size_t countOfA, countOfB;
};

Differ::Differ(const DiffOptions& options, const DifferenceSink& sink, std::string pathInA, std::string pathInB)
    : options_(options),
      sink_(sink),
      pathInA_(std::move(pathInA)),
      pathInB_(std::move(pathInB)),
      json_(options.encoding) {}

bool Differ::compare(const MemberNode& node, const void* a, const void* b) {
  compareValues(node, a, b);
  return areSame_;
}

void Differ::compareValues(const MemberNode& node, const void* a, const void* b) {
  if (isStopped_ || (node.isComplete && areSame(node, a, b, options_.tolerance))) return;
  switch (node.type->form) {
    case Form::record:
      return compareMembers(node, a, b);
    case Form::array:
      return compareEntries(node, a, b);
    case Form::lazyArray:
      for (std::size_t i = 0; i < node.type->count; ++i)
        compareElements(*node.element, node.type->lazyAt(a, i), node.type->lazyAt(b, i), i, i);
      return;
    case Form::list:
      return compareList(node, a, b);
    default:
      return report(Change::changed, node, a, b);
  }
}

void Differ::compareMembers(const MemberNode& node, const void* a, const void* b) {
  for (const MemberNode& member : node.members) {
    if (isStopped_) return;
    const PathEnd endOfA(pathInA_), endOfB(pathInB_);
    appendName(pathInA_, member.name);
    appendName(pathInB_, member.name);
    const void* const ofA = static_cast<const std::byte*>(a) + member.offset;
    const void* const ofB = static_cast<const std::byte*>(b) + member.offset;
    if (member.notStoredIn == Side::none)
      compareValues(member, ofA, ofB);
    else if (!areSame(member, ofA, ofB, options_.tolerance))
      report(Change::changed, member, ofA, ofB, member.notStoredIn);
  }
}

void Differ::compareEntries(const MemberNode& node, const void* a, const void* b) {
  for (std::size_t i = 0; i < node.type->count; ++i) {
    const void *const ofA = at(a, i, *node.element), *const ofB = at(b, i, *node.element);
    if (node.hasEntry(i)) {
      compareElements(*node.element, ofA, ofB, i, i);
    } else if (!isStopped_ && !node.entries[i].isLeftOut && !areSame(*node.element, ofA, ofB, options_.tolerance)) {
      const PathEnd endOfA(pathInA_), endOfB(pathInB_);
      appendIndex(pathInA_, i);
      appendIndex(pathInB_, i);
      report(Change::changed, *node.element, ofA, ofB, node.entries[i].notStoredIn);
    }
  }
}

void Differ::compareElements(const MemberNode& element, const void* a, const void* b, std::size_t i, std::size_t j) {
  if (a == b || isStopped_) return;
  const PathEnd endOfA(pathInA_), endOfB(pathInB_);
  appendIndex(pathInA_, i);
  appendIndex(pathInB_, j);
  std::string outer = name_;
  if (nameMember(element, a) != nullptr) name_ = nameFor(element, a);
  compareValues(element, a, b);
  name_ = std::move(outer);
}

// ---- lists -------------------------------------------------------------------------------------------

void Differ::compareList(const MemberNode& node, const void* a, const void* b) {
  const MemberNode& element = *node.element;
  const void *const ofA = node.type->data(a), *const ofB = node.type->data(b);
  const std::size_t countOfA = node.lengthOf(a), countOfB = node.lengthOf(b), shorter = std::min(countOfA, countOfB);
  const auto areEqual = [&](std::size_t i, std::size_t j) {
    return areSame(element, at(ofA, i, element), at(ofB, j, element), options_.tolerance);
  };
  std::size_t before = 0, after = 0;
  while (before < shorter && areEqual(before, before)) ++before;
  if (!options_.byPosition)
    while (before + after < shorter && areEqual(countOfA - 1 - after, countOfB - 1 - after)) ++after;

  // In elements that are the same, members that do not belong to their identity may differ.
  const auto compareEqual = [&](std::size_t from, std::size_t end, std::size_t fromInB) {
    if (element.isComplete) return;
    for (std::size_t i = from; i < end; ++i)
      compareElements(element, at(ofA, i, element), at(ofB, fromInB + i - from, element), i, fromInB + i - from);
  };
  compareEqual(0, before, 0);

  const ListPair lists{element, at(ofA, before, element), at(ofB, before, element), countOfA - before - after,
                       countOfB - before - after};
  const Alignment alignment = aligned(lists);
  const auto reportElement = [&](Change change, std::size_t i, std::size_t j) {
    const PathEnd endOfA(pathInA_), endOfB(pathInB_);
    const bool isInA = change != Change::onlyInB, isInB = change != Change::onlyInA;
    if (isInA) appendIndex(pathInA_, before + i);
    if (isInB) appendIndex(pathInB_, before + j);
    std::string outer = name_;
    const void* const one = isInA ? at(lists.a, i, element) : nullptr;
    const void* const other = isInB ? at(lists.b, j, element) : nullptr;
    isOwnName_ = nameMember(element, isInA ? one : other) != nullptr;
    if (isOwnName_) name_ = nameFor(element, isInA ? one : other);
    report(change, element, one, other);
    isOwnName_ = false;
    name_ = std::move(outer);
  };
  std::size_t i = 0, j = 0;
  while (!isStopped_ && (i < lists.countOfA || j < lists.countOfB)) {
    if (i < lists.countOfA && alignment.partnerOfA(i) == Alignment::kNone) {
      reportElement(Change::onlyInA, i, 0);
      ++i;
    } else if (i < lists.countOfA && alignment.isMoved(i)) {
      ++i;  // reported at its place in B
    } else if (j < lists.countOfB && alignment.partnerOfB(j) == Alignment::kNone) {
      reportElement(Change::onlyInB, 0, j);
      ++j;
    } else {
      const std::size_t partner = alignment.partnerOfB(j);
      if (alignment.isMoved(partner))
        reportElement(Change::moved, partner, j);
      else
        ++i;
      compareElements(element, at(lists.a, partner, element), at(lists.b, j, element), before + partner, before + j);
      ++j;
    }
  }
  if (!isStopped_) compareEqual(countOfA - after, countOfA, countOfB - after);
}

Alignment Differ::aligned(ListPair lists) {
  if (lists.countOfA == 0 || lists.countOfB == 0) return {lists.countOfA, lists.countOfB};
  if (options_.byPosition) {
    Alignment alignment(lists.countOfA, lists.countOfB);
    for (std::size_t i = 0; i < std::min(lists.countOfA, lists.countOfB); ++i) alignment.pair(i, i);
    return alignment;
  }
  const auto keysOf = [&](const void* first, std::size_t count) {
    std::vector<Key> keys(count);
    for (std::size_t i = 0; i < count; ++i)
      keys[i] = hashOf(lists.element, at(first, i, lists.element), options_.tolerance);
    return keys;
  };
  const auto namesOf = [&](const void* first, std::size_t count) {
    std::vector<Key> keys(lists.element.names.empty() ? 0 : count, kNoKey);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const std::string_view name = nameOf(lists.element, at(first, i, lists.element));
      if (!name.empty()) keys[i] = std::hash<std::string_view>()(name);
    }
    return keys;
  };
  std::vector<Key> a = keysOf(lists.a, lists.countOfA), b = keysOf(lists.b, lists.countOfB);
  // If there are several ways to pair them, the choice must depend neither on which of the two is A nor on the host.
  const auto [differentA, differentB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  const auto i = static_cast<std::size_t>(differentA - a.begin());
  const bool isMirrored =
      differentA == a.end() || differentB == b.end()
          ? b.size() < a.size()
          : orderOf(lists.element, at(lists.b, i, lists.element), at(lists.a, i, lists.element)) < 0;
  if (isMirrored) {
    std::swap(a, b);
    std::swap(lists.a, lists.b);
    std::swap(lists.countOfA, lists.countOfB);
  }
  Alignment alignment(lists.countOfA, lists.countOfB);
  alignment.pairInOrder(a, b);
  alignment.pairMoved(a, b);
  const std::vector<Key> namesOfA = namesOf(lists.a, lists.countOfA), namesOfB = namesOf(lists.b, lists.countOfB);
  if (!namesOfA.empty()) {
    alignment.pairInOrder(namesOfA, namesOfB);
    alignment.pairMoved(namesOfA, namesOfB);
  }
  pairGaps(alignment, lists, namesOfA, namesOfB);
  return isMirrored ? alignment.mirrored() : alignment;
}

// Pairs elements that were changed: those that are most alike, or else those at the same position.
void Differ::pairGaps(Alignment& alignment, const ListPair& lists, const std::vector<Key>& namesOfA,
                      const std::vector<Key>& namesOfB) {
  constexpr std::uint64_t kMostOfOneGap = 65536;
  const auto isNamed = [](const std::vector<Key>& names, std::size_t i) {
    return !names.empty() && names[i] != kNoKey;
  };
  for (const Alignment::Gap& gap : alignment.gaps()) {
    const std::uint64_t similarities = std::uint64_t{gap.a.size()} * gap.b.size();
    const bool isOnePair = similarities == 1 && !isNamed(namesOfA, gap.a[0]) && !isNamed(namesOfB, gap.b[0]);
    if (!isOnePair && similarities <= std::min(kMostOfOneGap, similaritiesLeft_)) {
      similaritiesLeft_ -= similarities;
      pairSimilar(alignment, lists, gap, namesOfA, namesOfB);
      continue;
    }
    for (std::size_t k = 0; k < std::min(gap.a.size(), gap.b.size()); ++k)
      if (!isNamed(namesOfA, gap.a[k]) && !isNamed(namesOfB, gap.b[k])) alignment.pair(gap.a[k], gap.b[k]);
  }
}

// The pairs, in order, with the largest sum of similarities.
void Differ::pairSimilar(Alignment& alignment, const ListPair& lists, const Alignment::Gap& gap,
                         const std::vector<Key>& namesOfA, const std::vector<Key>& namesOfB) const {
  // A pair without anything in common is still better than none, unless names say that the two are different.
  constexpr double kOfAnyPair = 0.05, kLeastOfRenamed = 0.5;
  const MemberNode& element = lists.element;
  const std::size_t n = gap.a.size(), m = gap.b.size();
  Sketch fresh, ofA, ofB;
  if (element.type->fresh) appendSketch(fresh, element, element.type->fresh.get(), options_.tolerance);
  for (const std::size_t i : gap.a) appendSketch(ofA, element, at(lists.a, i, element), options_.tolerance);
  for (const std::size_t j : gap.b) appendSketch(ofB, element, at(lists.b, j, element), options_.tolerance);
  const auto worth = [&](std::size_t i, std::size_t j) {
    const double alike =
        fresh.empty() ? 0 : similarity(ofA.data() + i * fresh.size(), ofB.data() + j * fresh.size(), fresh);
    const bool areNamed = !namesOfA.empty() && (namesOfA[gap.a[i]] != kNoKey || namesOfB[gap.b[j]] != kNoKey);
    return areNamed && alike < kLeastOfRenamed ? -1 : alike + kOfAnyPair;
  };
  enum class Step : std::uint8_t { pair, skipA, skipB };
  std::vector<Step> steps(n * m);
  std::vector<double> above(m + 1, 0), row(m + 1, 0);
  for (std::size_t i = n; i > 0; --i) {
    row[m] = 0;
    for (std::size_t j = m; j > 0; --j) {
      const double ofPair = worth(i - 1, j - 1), skipA = above[j - 1], skipB = row[j], both = above[j] + ofPair;
      Step& step = steps[(i - 1) * m + j - 1];
      if (ofPair > 0 && both >= skipA && both >= skipB)
        step = Step::pair;
      else
        step = skipA >= skipB ? Step::skipA : Step::skipB;
      row[j - 1] = step == Step::pair ? both : std::max(skipA, skipB);
    }
    std::swap(above, row);
  }
  for (std::size_t i = 0, j = 0; i < n && j < m;) {
    const Step step = steps[i * m + j];
    if (step == Step::pair) alignment.pair(gap.a[i], gap.b[j]);
    if (step != Step::skipB) ++i;
    if (step != Step::skipA) ++j;
  }
}

// ---- differences -------------------------------------------------------------------------------------

void Differ::report(Change change, const MemberNode& node, const void* a, const void* b, Side notStoredIn) {
  areSame_ = false;
  Difference difference;
  difference.change = change;
  if (a != nullptr) {
    difference.pathInA = pathInA_;
    difference.a = textOf(node, a);
  }
  if (b != nullptr) {
    difference.pathInB = pathInB_;
    difference.b = textOf(node, b);
  }
  if (options_.longestValue != 0) shorten(difference.a, difference.b);
  difference.name = name_;
  difference.isOwnName = isOwnName_;
  difference.notStoredIn = notStoredIn;
  if (!sink_(difference)) isStopped_ = true;
}

std::string Differ::textOf(const MemberNode& node, const void* value) {
  std::string text;
  // A text or block is needed completely to find where it differs.
  json_.append(text, *node.type, value, node.isLeaf() ? 0 : options_.longestValue);
  return text;
}

// Two long values are shown from where they begin to differ.
void Differ::shorten(std::string& a, std::string& b) const {
  const std::size_t longest = options_.longestValue;
  if (a.size() <= longest && b.size() <= longest) return;
  const auto same = static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
  // Keeps some of what comes before that.
  std::size_t from = 0;
  if (same < std::max(a.size(), b.size()) && same > longest / 2) {
    from = same - longest / 4;
    while (from > 0 && isContinuation(a[from])) --from;
  }
  for (std::string* text : {&a, &b}) {
    if (text->empty()) continue;
    *text =
        (from > 0 ? std::string(kCut) : std::string()) + beginning(text->substr(std::min(from, text->size())), longest);
  }
}

std::string Differ::nameFor(const MemberNode& node, const void* record) {
  constexpr std::size_t kLongestName = 200;
  std::string utf8, json;
  values::TextEncoding::named(options_.encoding)
      .value_or(values::TextEncoding())
      .appendUtf8(utf8, nameOf(node, record).substr(0, kLongestName));
  values::appendJsonString(json, utf8);
  return json;
}

}  // namespace oldtorvio::compare
