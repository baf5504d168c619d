// heap: prints the peak of the heap, in bytes, while a document is read.

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "vex2/manager/Vex2FileManager.h"

namespace {

std::size_t heapNow = 0;
std::size_t heapPeak = 0;

}  // namespace

// All of the library's memory is allocated here, so the peak is exact and the same on every run.
void* operator new(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  heapNow += malloc_usable_size(memory);
  heapPeak = std::max(heapPeak, heapNow);
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  heapNow -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  operator delete(memory);
}

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: vex2_bench_heap FILE\n", stderr);
    return 2;
  }
  const std::size_t before = heapNow;
  heapPeak = before;
  Vex2FileManager manager;
  if (manager.ReadFromFile(arguments[1]) != 0 ||
      manager.GetDataFrameCount(DataRAWa) + manager.GetNumPlates() == 0) {
    std::fputs("vex2_bench_heap: cannot read the document\n", stderr);
    return 1;
  }
  std::printf("%zu\n", heapPeak - before);
  return 0;
}
