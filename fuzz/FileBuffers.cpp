// Reuses a few file buffers of a quarter of a megabyte, because allocating one at each open would
// take most of the time of an execution. The address sanitizer still finds writes outside a buffer
// or to a released one.

#include <sanitizer/asan_interface.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

#include "vex2/framework/CFile.h"

namespace {

struct Buffer {
  alignas(16) std::array<char, 64> before;
  alignas(16) std::array<char, CFile::kBufferSize> bytes;
  alignas(16) std::array<char, 64> behind;
  bool isTaken;
};

std::array<Buffer, 8>& buffers() {
  static std::array<Buffer, 8> all;
  static const bool poisoned = [] {
    for (Buffer& buffer : all) {
      ASAN_POISON_MEMORY_REGION(&buffer, offsetof(Buffer, isTaken));
    }
    return true;
  }();
  static_cast<void>(poisoned);
  return all;
}

}  // namespace

void* operator new[](std::size_t size) {
  if (size == CFile::kBufferSize) {
    for (Buffer& buffer : buffers()) {
      if (buffer.isTaken) continue;
      buffer.isTaken = true;
      ASAN_UNPOISON_MEMORY_REGION(buffer.bytes.data(), size);
      return buffer.bytes.data();
    }
  }
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

void operator delete[](void* memory) noexcept {
  auto& all = buffers();
  const char* place = static_cast<const char*>(memory);
  if (place >= reinterpret_cast<const char*>(all.data()) &&
      place < reinterpret_cast<const char*>(all.data() + all.size())) {
    const auto found = std::find_if(all.begin(), all.end(), [place](const Buffer& buffer) {
      return buffer.bytes.data() == place && buffer.isTaken;
    });
    if (found == all.end()) std::abort();
    found->isTaken = false;
    ASAN_POISON_MEMORY_REGION(memory, CFile::kBufferSize);
    return;
  }
  std::free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  operator delete[](memory);
}
