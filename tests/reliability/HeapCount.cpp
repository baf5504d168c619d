#include "tests/reliability/HeapCount.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> now{0};
std::atomic<std::size_t> peak{0};

void* allocate(std::size_t size) noexcept {
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) return nullptr;
  const std::size_t taken = now += malloc_usable_size(memory);
  std::size_t most = peak;
  while (taken > most && !peak.compare_exchange_weak(most, taken)) {
  }
  return memory;
}

void release(void* memory) noexcept {
  if (memory != nullptr) now -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

// All allocations of the library use these operators. The operators for arrays call them.
void* operator new(std::size_t size) {
  if (void* memory = allocate(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  release(memory);
}

namespace vex2::test {

HeapPeak::HeapPeak() : before_(now) {
  peak = before_;
}

std::size_t HeapPeak::Bytes() const {
  return peak - before_;
}

}  // namespace vex2::test
