#pragma once
#include <array>
#include <concepts>
#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

namespace oldtorvio {

// A fixed number of numbered places, each with its default until something is written to it. Memory is
// taken in groups of places and only for groups in which one was asked for to be written: a part has
// 250 slots and uses few of them. Copies are deep, moves leave a Places of defaults.
template <class T, std::size_t kPlaces>
class Places {
  template <class Owner, class Element>
  class Walk {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Element*;
    using reference = Element&;

    Walk() = default;
    Walk(Owner& owner, std::size_t at) : owner_(&owner), at_(at) {}
    Element& operator*() const { return (*owner_)[at_]; }
    Element* operator->() const { return &**this; }
    Walk& operator++() {
      ++at_;
      return *this;
    }
    Walk operator++(int) {
      const Walk before = *this;
      ++at_;
      return before;
    }
    bool operator==(const Walk&) const = default;

   private:
    Owner* owner_ = nullptr;
    std::size_t at_ = 0;
  };

 public:
  using value_type = T;

  Places() = default;
  Places(const Places& other) : groups_(other.groups_.size()) {
    for (std::size_t i = 0; i < groups_.size(); ++i)
      if (other.groups_[i]) groups_[i] = std::make_unique<Group>(*other.groups_[i]);
  }
  Places(Places&& other) noexcept = default;
  Places& operator=(const Places& other) {
    Places copy(other);
    groups_.swap(copy.groups_);
    return *this;
  }
  Places& operator=(Places&& other) noexcept = default;
  ~Places() = default;

  static constexpr std::size_t size() { return kPlaces; }

  // Place i, from 0 to size() - 1, of any integer type as in an array. A reference stays good as long
  // as the Places does; one that was taken for reading from a place without memory of its own shows
  // the default for ever.
  template <std::integral I>
  T& operator[](I i) {
    return place(static_cast<std::size_t>(i));
  }
  template <std::integral I>
  const T& operator[](I i) const {
    return place(static_cast<std::size_t>(i));
  }

  auto begin() { return Walk<Places, T>(*this, 0); }
  auto end() { return Walk<Places, T>(*this, kPlaces); }
  auto begin() const { return Walk<const Places, const T>(*this, 0); }
  auto end() const { return Walk<const Places, const T>(*this, kPlaces); }

 private:
  static constexpr std::size_t kGroup = 4;
  using Group = std::array<T, kGroup>;
  static inline const T kDefault{};

  T& place(std::size_t i) {
    if (i / kGroup >= groups_.size()) groups_.resize(i / kGroup + 1);
    std::unique_ptr<Group>& group = groups_[i / kGroup];
    if (!group) group = std::make_unique<Group>();
    return (*group)[i % kGroup];
  }
  const T& place(std::size_t i) const {
    const bool isThere = i / kGroup < groups_.size() && groups_[i / kGroup];
    return isThere ? (*groups_[i / kGroup])[i % kGroup] : kDefault;
  }

  std::vector<std::unique_ptr<Group>> groups_;
};

}  // namespace oldtorvio
