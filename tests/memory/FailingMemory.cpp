#include "tests/memory/FailingMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constexpr long kNever = -1;

std::atomic<long> left{kNever};  // the number of allocations before the one that fails
std::atomic<bool> failed{false};
std::atomic<long> blocks{0};

void* allocate(std::size_t size) noexcept {
  if (left.load() != kNever && left.fetch_sub(1) == 0) {
    failed = true;
    return nullptr;
  }
  void* block = std::malloc(size != 0 ? size : 1);
  if (block != nullptr) ++blocks;
  return block;
}

void* allocateOrThrow(std::size_t size) {
  void* block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void release(void* block) noexcept {
  if (block != nullptr) --blocks;
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
  return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* block) noexcept {
  release(block);
}
void operator delete[](void* block) noexcept {
  release(block);
}
void operator delete(void* block, std::size_t) noexcept {
  release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
  release(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
  release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  release(block);
}

namespace vex2::test {

FailingMemory::FailingMemory(long allocation) {
  failed = false;
  left = allocation;
}

FailingMemory::~FailingMemory() {
  left = kNever;
}

bool FailingMemory::HasFailed() {
  return failed;
}

long BlocksInUse() {
  return blocks;
}

}  // namespace vex2::test
