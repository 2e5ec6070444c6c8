#include "tests/support/allocation_meter.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

#if defined(_WIN32)
std::size_t malloc_usable_size(void* block) { return _msize(block); }
#endif

std::atomic<std::size_t> held{0}, peakHeld{0}, largestTaken{0}, taken{0};
std::size_t heldBefore = 0;

thread_local std::size_t untilFailure = std::numeric_limits<std::size_t>::max();
thread_local bool failsForGood = false, hasFailed = false;

void raise(std::atomic<std::size_t>& highest, std::size_t value) {
  std::size_t seen = highest.load();
  while (seen < value && !highest.compare_exchange_weak(seen, value)) {
  }
}

void* take(std::size_t size) noexcept {
  if (untilFailure != std::numeric_limits<std::size_t>::max()) {
    if (untilFailure == 0 && (failsForGood || !hasFailed)) {
      hasFailed = true;
      return nullptr;
    }
    if (untilFailure > 0) --untilFailure;
  }
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) return nullptr;
  raise(largestTaken, size);
  raise(peakHeld, held += malloc_usable_size(block));
  ++taken;
  return block;
}

void give(void* block) noexcept {
  if (block == nullptr) return;
  held -= malloc_usable_size(block);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* block = take(size)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return take(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return take(size); }
void operator delete(void* block) noexcept { give(block); }
void operator delete[](void* block) noexcept { give(block); }
void operator delete(void* block, std::size_t) noexcept { give(block); }
void operator delete[](void* block, std::size_t) noexcept { give(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { give(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { give(block); }

namespace testing_support {

AllocationMeter::AllocationMeter() {
  heldBefore = ::held;
  peakHeld = heldBefore;
  largestTaken = 0;
  taken = 0;
}
std::ptrdiff_t AllocationMeter::held() const { return static_cast<std::ptrdiff_t>(::held - heldBefore); }
std::size_t AllocationMeter::peak() const { return peakHeld - heldBefore; }
std::size_t AllocationMeter::largest() const { return largestTaken; }
std::size_t AllocationMeter::count() const { return taken; }

FailingAllocation::FailingAllocation(std::size_t n, bool forGood) {
  hasFailed = false;
  failsForGood = forGood;
  untilFailure = n;
}
FailingAllocation::~FailingAllocation() { untilFailure = std::numeric_limits<std::size_t>::max(); }
bool FailingAllocation::happened() const { return hasFailed; }

}  // namespace testing_support
