// Counts what the test program takes from the heap with new, and lets an allocation fail.
#pragma once
#include <cstddef>
#include <limits>

namespace testing_support {

// What was taken since the meter was made.
class AllocationMeter {
 public:
  AllocationMeter();
  std::ptrdiff_t held() const;  // bytes held beyond what was held before
  std::size_t peak() const;     // bytes held at most beyond what was held before
  std::size_t largest() const;  // largest single allocation
  std::size_t count() const;    // allocations
};

// While it lives, the n-th allocation (from 0) of this thread fails, and with `forGood` all after it.
class FailingAllocation {
 public:
  explicit FailingAllocation(std::size_t n, bool forGood);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  bool happened() const;
};

}  // namespace testing_support
