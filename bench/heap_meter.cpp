#include "bench/heap_meter.h"

#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

// Only one thread measures. `allocated` is negative after more memory was freed than allocated.
bool counting = false;
std::int64_t allocated = 0, mostAllocated = 0;

void* take(std::size_t size) noexcept {
  void* block = std::malloc(size == 0 ? 1 : size);
  if (counting && block != nullptr) {
    allocated += static_cast<std::int64_t>(malloc_usable_size(block));
    mostAllocated = std::max(mostAllocated, allocated);
  }
  return block;
}

void release(void* block) noexcept {
  if (counting && block != nullptr) allocated -= static_cast<std::int64_t>(malloc_usable_size(block));
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
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, std::size_t) noexcept { release(block); }
void operator delete[](void* block, std::size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }

namespace bench {

HeapMeter::HeapMeter() {
  allocated = mostAllocated = 0;
  counting = true;
}
HeapMeter::~HeapMeter() { counting = false; }
std::size_t HeapMeter::peak() const { return static_cast<std::size_t>(mostAllocated); }

}  // namespace bench
