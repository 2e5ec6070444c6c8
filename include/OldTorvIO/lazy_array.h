// An array that allocates memory for its elements on first use.
#pragma once
#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <vector>

namespace oldtorvio {

// A fixed number of elements, used like a plain array: an index of any integer type reads and writes, range-for works,
// copies are deep. An element has its default value until it is written. A part has room for 250 process slots and uses
// few of them; a plain array would more than triple its size.
//
// It differs from a plain array in five ways:
//   - The elements are not contiguous: there is no data(), and pointers to them do not support arithmetic.
//   - Through a non-const LazyArray, the first access to an element allocates memory for it and its neighbours, even if
//     it only reads, and may throw std::bad_alloc. Access through a const LazyArray (see std::as_const) never
//     allocates.
//   - A reference stays valid as long as the LazyArray exists. A reference to an unallocated element that was taken
//     through a const LazyArray keeps showing the default, even after the element is written.
//   - All elements of a moved-from LazyArray have their defaults.
//   - sizeof does not depend on the number of elements; size() returns it.
// An index outside 0 to size() - 1 is undefined behaviour, as in an array.
template <class T, std::size_t kSize>
class LazyArray {
  template <class Owner, class Element>
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Element*;
    using reference = Element&;

    Iterator() = default;
    Iterator(Owner& owner, std::size_t at) : owner_(&owner), at_(at) {}
    Element& operator*() const { return (*owner_)[at_]; }
    Element* operator->() const { return &**this; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++at_;
      return before;
    }
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.owner_ == b.owner_ && a.at_ == b.at_; }
    friend bool operator!=(const Iterator& a, const Iterator& b) { return !(a == b); }

   private:
    Owner* owner_ = nullptr;
    std::size_t at_ = 0;
  };

 public:
  using value_type = T;

  LazyArray() = default;
  LazyArray(const LazyArray& other) : groups_(other.groups_.size()) {
    for (std::size_t i = 0; i < groups_.size(); ++i)
      if (other.groups_[i]) groups_[i] = std::make_unique<Group>(*other.groups_[i]);
  }
  LazyArray(LazyArray&& other) noexcept = default;
  LazyArray& operator=(const LazyArray& other) {
    LazyArray copy(other);
    groups_.swap(copy.groups_);
    return *this;
  }
  LazyArray& operator=(LazyArray&& other) noexcept = default;
  ~LazyArray() = default;

  static constexpr std::size_t size() { return kSize; }

  template <class Index, class = std::enable_if_t<std::is_integral_v<Index>>>
  T& operator[](Index i) {
    return element(static_cast<std::size_t>(i));
  }
  template <class Index, class = std::enable_if_t<std::is_integral_v<Index>>>
  const T& operator[](Index i) const {
    return element(static_cast<std::size_t>(i));
  }

  auto begin() { return Iterator<LazyArray, T>(*this, 0); }
  auto end() { return Iterator<LazyArray, T>(*this, kSize); }
  auto begin() const { return Iterator<const LazyArray, const T>(*this, 0); }
  auto end() const { return Iterator<const LazyArray, const T>(*this, kSize); }

 private:
  static constexpr std::size_t kGroup = 4;
  using Group = std::array<T, kGroup>;
  static inline const T kDefault{};

  T& element(std::size_t i) {
    if (i / kGroup >= groups_.size()) groups_.resize(i / kGroup + 1);
    std::unique_ptr<Group>& group = groups_[i / kGroup];
    if (!group) group = std::make_unique<Group>();
    return (*group)[i % kGroup];
  }
  const T& element(std::size_t i) const {
    const bool isWritten = i / kGroup < groups_.size() && groups_[i / kGroup];
    return isWritten ? (*groups_[i / kGroup])[i % kGroup] : kDefault;
  }

  std::vector<std::unique_ptr<Group>> groups_;
};

}  // namespace oldtorvio
