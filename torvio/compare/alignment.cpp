#include "torvio/compare/alignment.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace oldtorvio::compare {
namespace {

constexpr std::size_t kNone = Alignment::kNone;

// Pairs two sequences of keys in order. Works on ranges; equal keys at their beginnings and ends are paired first.
class InOrder {
 public:
  InOrder(const std::vector<Key>& a, const std::vector<Key>& b)
      : a_(a), b_(b), stepsLeft_(kFewSteps + kStepsOfEach * (a.size() + b.size())) {}

  // Pairs of positions, in any order.
  std::vector<std::pair<std::size_t, std::size_t>> pairs() && {
    pairRange({0, a_.size(), 0, b_.size()}, kDepth);
    return std::move(pairs_);
  }

 private:
  struct Range {
    std::size_t beginA, endA, beginB, endB;
  };
  // How many elements of a range may be without a partner in the exact search, whose time and memory grow with the
  // square of that number.
  static constexpr std::ptrdiff_t kMostEdits = 500;
  static constexpr int kDepth = 8;
  // Steps of all exact searches together, so that the time is proportional to the size of the lists.
  static constexpr std::uint64_t kFewSteps = 10'000, kStepsOfEach = 200;

  void pairRange(Range range, int depth) {
    while (range.beginA < range.endA && range.beginB < range.endB && a_[range.beginA] == b_[range.beginB])
      pairs_.emplace_back(range.beginA++, range.beginB++);
    while (range.beginA < range.endA && range.beginB < range.endB && a_[range.endA - 1] == b_[range.endB - 1])
      pairs_.emplace_back(--range.endA, --range.endB);
    if (range.beginA == range.endA || range.beginB == range.endB) return;
    if (search(range)) return;
    // Keys that occur once in both lists divide the range; other keys may be between them.
    const std::vector<std::pair<std::size_t, std::size_t>> fixed =
        depth > 0 ? anchors(range) : std::vector<std::pair<std::size_t, std::size_t>>();
    if (fixed.empty()) return pairSamePlaces(range);
    Range part = range;
    for (const auto& [i, j] : fixed) {
      part.endA = i;
      part.endB = j;
      pairRange(part, depth - 1);
      pairs_.emplace_back(i, j);
      part.beginA = i + 1;
      part.beginB = j + 1;
    }
    part.endA = range.endA;
    part.endB = range.endB;
    pairRange(part, depth - 1);
  }

  void pairSamePlaces(const Range& range) {
    const std::size_t count = std::min(range.endA - range.beginA, range.endB - range.beginB);
    for (std::size_t k = 0; k < count; ++k)
      if (a_[range.beginA + k] == b_[range.beginB + k]) pairs_.emplace_back(range.beginA + k, range.beginB + k);
  }

  // The greedy search for the shortest edit script: for each diagonal, `reached` says how far it comes in A with the
  // current number of edits. False if there are too many.
  bool search(const Range& range) {
    const auto n = static_cast<std::ptrdiff_t>(range.endA - range.beginA),
               m = static_cast<std::ptrdiff_t>(range.endB - range.beginB);
    const std::ptrdiff_t most = std::min(n + m, kMostEdits);
    if (std::max(n, m) - std::min(n, m) > most) return false;
    const Key *const a = a_.data() + range.beginA, *const b = b_.data() + range.beginB;
    std::vector<std::vector<std::ptrdiff_t>> trace;
    std::vector<std::ptrdiff_t> reached(static_cast<std::size_t>(2 * most + 3), 0);
    const auto at = [&](std::ptrdiff_t diagonal) -> std::ptrdiff_t& {
      return reached[static_cast<std::size_t>(diagonal + most + 1)];
    };
    for (std::ptrdiff_t edits = 0; edits <= most; ++edits) {
      for (std::ptrdiff_t diagonal = -edits; diagonal <= edits; diagonal += 2) {
        const bool isDown = diagonal == -edits || (diagonal != edits && at(diagonal - 1) < at(diagonal + 1));
        std::ptrdiff_t x = isDown ? at(diagonal + 1) : at(diagonal - 1) + 1;
        const std::ptrdiff_t from = x;
        while (x < n && x - diagonal < m && x >= diagonal && a[x] == b[x - diagonal]) ++x;
        const auto steps = static_cast<std::uint64_t>(x - from) + 1;
        stepsLeft_ -= std::min(stepsLeft_, steps);
        at(diagonal) = x;
        if (x >= n && x - diagonal >= m) {
          addTrace(range, trace, edits, diagonal, x);
          return true;
        }
      }
      if (stepsLeft_ == 0) return false;
      // Only the diagonals that this round can have reached.
      trace.emplace_back(reached.begin() + (most + 1 - edits), reached.begin() + (most + 2 + edits));
    }
    return false;
  }
  // Follows the search from its end.
  void addTrace(const Range& range, const std::vector<std::vector<std::ptrdiff_t>>& trace, std::ptrdiff_t edits,
                std::ptrdiff_t diagonal, std::ptrdiff_t x) {
    for (; edits >= 0; --edits) {
      std::ptrdiff_t from = 0, before = diagonal;
      if (edits > 0) {
        const std::vector<std::ptrdiff_t>& row = trace[static_cast<std::size_t>(edits - 1)];
        const auto at = [&](std::ptrdiff_t one) { return row[static_cast<std::size_t>(one + edits - 1)]; };
        const bool isDown = diagonal == -edits || (diagonal != edits && valueAt(row, diagonal - 1, edits) <
                                                                            valueAt(row, diagonal + 1, edits));
        before = isDown ? diagonal + 1 : diagonal - 1;
        from = isDown ? at(before) : at(before) + 1;
        // Below the run of equal keys.
        addRun(range, from, x, diagonal);
        x = at(before);
      } else {
        addRun(range, 0, x, diagonal);
      }
      diagonal = before;
    }
  }
  // The search never came from diagonals that are not in the row.
  static std::ptrdiff_t valueAt(const std::vector<std::ptrdiff_t>& row, std::ptrdiff_t diagonal, std::ptrdiff_t edits) {
    const std::ptrdiff_t i = diagonal + edits - 1;
    return i < 0 || i >= std::ssize(row) ? 0 : row[static_cast<std::size_t>(i)];
  }
  void addRun(const Range& range, std::ptrdiff_t from, std::ptrdiff_t end, std::ptrdiff_t diagonal) {
    for (std::ptrdiff_t x = from; x < end; ++x)
      pairs_.emplace_back(range.beginA + static_cast<std::size_t>(x),
                          range.beginB + static_cast<std::size_t>(x - diagonal));
  }

  // The longest sequence, in the same order in both, of keys that occur once in A and once in B.
  std::vector<std::pair<std::size_t, std::size_t>> anchors(const Range& range) const {
    struct Seen {
      std::size_t inA = kNone, inB = kNone;
      bool isUnique = true;
    };
    std::unordered_map<Key, Seen> seen;
    for (std::size_t i = range.beginA; i < range.endA; ++i) {
      Seen& one = seen[a_[i]];
      if (one.inA != kNone) one.isUnique = false;
      one.inA = i;
    }
    for (std::size_t j = range.beginB; j < range.endB; ++j) {
      const auto found = seen.find(b_[j]);
      if (found == seen.end()) continue;
      if (found->second.inB != kNone) found->second.isUnique = false;
      found->second.inB = j;
    }
    std::vector<std::pair<std::size_t, std::size_t>> unique;
    for (std::size_t i = range.beginA; i < range.endA; ++i) {
      const Seen& one = seen.find(a_[i])->second;
      if (one.isUnique && one.inB != kNone) unique.emplace_back(i, one.inB);
    }
    // The longest increasing sequence of their places in B: piles[k] ends the best one of length k + 1.
    std::vector<std::size_t> piles, before(unique.size(), kNone);
    for (std::size_t i = 0; i < unique.size(); ++i) {
      const auto pile =
          std::lower_bound(piles.begin(), piles.end(), unique[i].second,
                           [&](std::size_t one, std::size_t place) { return unique[one].second < place; });
      if (pile != piles.begin()) before[i] = *(pile - 1);
      if (pile == piles.end())
        piles.push_back(i);
      else
        *pile = i;
    }
    std::vector<std::pair<std::size_t, std::size_t>> sequence;
    for (std::size_t i = piles.empty() ? kNone : piles.back(); i != kNone; i = before[i]) sequence.push_back(unique[i]);
    std::reverse(sequence.begin(), sequence.end());
    return sequence;
  }

  const std::vector<Key>&a_, &b_;
  std::vector<std::pair<std::size_t, std::size_t>> pairs_;
  std::uint64_t stepsLeft_;
};

// The elements of a gap whose keys are in the other list, too: no others can have partners.
std::vector<std::size_t> withCommonKeys(const std::vector<std::size_t>& elements, std::span<const Key> keys,
                                        const std::vector<std::size_t>& others, std::span<const Key> otherKeys) {
  std::unordered_map<Key, bool> there;
  for (const std::size_t other : others) there[otherKeys[other]] = true;
  std::vector<std::size_t> common;
  for (const std::size_t element : elements)
    if (keys[element] != kNoKey && there.contains(keys[element])) common.push_back(element);
  return common;
}

std::vector<Key> keysOf(const std::vector<std::size_t>& elements, std::span<const Key> keys) {
  std::vector<Key> all;
  all.reserve(elements.size());
  for (const std::size_t element : elements) all.push_back(keys[element]);
  return all;
}

}  // namespace

void Alignment::pairInOrder(std::span<const Key> a, std::span<const Key> b) {
  for (const Gap& gap : gaps()) {
    const std::vector<std::size_t> ofA = withCommonKeys(gap.a, a, gap.b, b), ofB = withCommonKeys(gap.b, b, gap.a, a);
    const std::vector<Key> keysOfA = keysOf(ofA, a), keysOfB = keysOf(ofB, b);
    for (const auto& [i, j] : InOrder(keysOfA, keysOfB).pairs()) pair(ofA[i], ofB[j]);
  }
}

void Alignment::pairMoved(std::span<const Key> a, std::span<const Key> b) {
  // Any of the equal elements may be the one that moved.
  constexpr std::size_t kMostOfOneKey = 8;
  struct Left {
    std::vector<std::size_t> a, b;
  };
  std::unordered_map<Key, Left> left;
  for (std::size_t i = 0; i < toB_.size(); ++i)
    if (toB_[i] == kNone && a[i] != kNoKey) left[a[i]].a.push_back(i);
  for (std::size_t j = 0; j < toA_.size(); ++j)
    if (const auto found = toA_[j] == kNone ? left.find(b[j]) : left.end(); found != left.end())
      found->second.b.push_back(j);
  for (const auto& [key, both] : left) {
    const std::size_t pairs = std::min(both.a.size(), both.b.size());
    if (pairs == 0 || std::max(both.a.size(), both.b.size()) > kMostOfOneKey) continue;
    moved_.resize(toB_.size());
    for (std::size_t k = 0; k < pairs; ++k) {
      pair(both.a[k], both.b[k]);
      moved_[both.a[k]] = true;
    }
  }
}

Alignment Alignment::mirrored() const {
  Alignment other(toA_.size(), toB_.size());
  other.toB_ = toA_;
  other.toA_ = toB_;
  if (!moved_.empty()) {
    other.moved_.resize(toA_.size());
    for (std::size_t j = 0; j < toA_.size(); ++j) other.moved_[j] = toA_[j] != kNone && moved_[toA_[j]];
  }
  return other;
}

std::vector<Alignment::Gap> Alignment::gaps() const {
  std::vector<Gap> all;
  Gap gap;
  std::size_t j = 0;
  const auto endGap = [&](std::size_t endOfB) {
    for (; j < endOfB; ++j)
      if (toA_[j] == kNone) gap.b.push_back(j);
    if (!gap.a.empty() && !gap.b.empty()) all.push_back(std::move(gap));
    gap = {};
    ++j;
  };
  for (std::size_t i = 0; i < toB_.size(); ++i) {
    if (toB_[i] == kNone)
      gap.a.push_back(i);
    else if (!isMoved(i))
      endGap(toB_[i]);
  }
  endGap(toA_.size());
  return all;
}

}  // namespace oldtorvio::compare
