// Measures what the program allocates with new. It counts only while a meter exists, so timed code is not slowed down.
#pragma once
#include <cstddef>

namespace bench {

class HeapMeter {
 public:
  HeapMeter();
  ~HeapMeter();
  HeapMeter(const HeapMeter&) = delete;
  HeapMeter& operator=(const HeapMeter&) = delete;
  std::size_t peak() const;  // most bytes allocated at a time, in addition to those before
};

// The most bytes that once() has allocated at a time.
template <class Once>
std::size_t peakOf(const Once& once) {
  const HeapMeter meter;
  once();
  return meter.peak();
}

}  // namespace bench
