#pragma once

#include <cstdint>

#include "vex2/framework/CFile.h"

/// Limits that protect against malicious documents. Each names the attack that it stops.
namespace vex2 {

/// The greatest nesting depth of records; a top-level record is at depth 1. Stops a file of nested
/// lists, ten bytes for each level, from using up the stack.
constexpr int kMaxNesting = 64;

/// Whether `count` bytes are left to read. Stops a length or count field from making us allocate
/// memory for more bytes than the file has.
inline bool HasBytesLeft(const CFile& file, std::uint64_t count) {
  return count <= file.GetRemaining();
}

/// Counts a level of nesting for as long as the object lives. The count is per thread, because
/// managers on different threads are independent.
class NestingGuard {
 public:
  NestingGuard() noexcept : depth_(depthOfThread()) { ++depth_; }
  ~NestingGuard() { --depth_; }
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;

  bool IsTooDeep() const noexcept { return depth_ > kMaxNesting; }

 private:
  static int& depthOfThread() noexcept {
    thread_local int value = 0;
    return value;
  }

  int& depth_;  // kept because looking it up takes as long as reading a short record
};

}  // namespace vex2
