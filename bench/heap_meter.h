// What the program takes from the heap with new. It counts only while a meter lives: what is timed does
// not pay for it.
#pragma once
#include <cstddef>

namespace bench {

class HeapMeter {
 public:
  HeapMeter();
  ~HeapMeter();
  HeapMeter(const HeapMeter&) = delete;
  HeapMeter& operator=(const HeapMeter&) = delete;
  std::size_t peak() const;  // bytes held at most beyond what was held before
};

// The most that once() holds at a time.
template <class Once>
std::size_t peakOf(const Once& once) {
  const HeapMeter meter;
  once();
  return meter.peak();
}

}  // namespace bench
