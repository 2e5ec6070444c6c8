// Which elements of two lists belong together, found by keys: equal keys may be partners.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace oldtorvio::compare {

// The key of an element; kNoKey matches no key.
using Key = std::uint64_t;
inline constexpr Key kNoKey = 0;

class Alignment {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  Alignment(std::size_t countOfA, std::size_t countOfB) : toB_(countOfA, kNone), toA_(countOfB, kNone) {}

  std::size_t partnerOfA(std::size_t i) const { return toB_[i]; }
  std::size_t partnerOfB(std::size_t j) const { return toA_[j]; }
  // Whether element i of A has its partner at another place among the elements that both have.
  bool isMoved(std::size_t i) const { return !moved_.empty() && moved_[i]; }

  void pair(std::size_t i, std::size_t j) {
    toB_[i] = j;
    toA_[j] = i;
  }

  // Pairs elements with equal keys so that no two pairs cross: as many as possible, unless the lists differ very much.
  void pairInOrder(std::span<const Key> a, std::span<const Key> b);
  // Pairs the remaining elements, wherever they are: the first with a key with the first, the second with the second.
  // Elements whose key is very frequent stay without a partner.
  void pairMoved(std::span<const Key> a, std::span<const Key> b);

  // Elements without a partner between two pairs in order.
  struct Gap {
    std::vector<std::size_t> a, b;
  };
  // Only gaps with elements of both lists.
  std::vector<Gap> gaps() const;

  // The same alignment with A and B exchanged.
  Alignment mirrored() const;

 private:
  std::vector<std::size_t> toB_, toA_;
  std::vector<bool> moved_;  // of A
};

}  // namespace oldtorvio::compare
