#pragma once

#include <cstdint>

#include "vex2/framework/CFile.h"

/// The limits for content that may be malicious. Each names the attack that it stops.
namespace vex2 {

/// Records nest this deep and no deeper; a top-level record is at depth 1. Stops a file of lists
/// within lists, eight bytes a level, from using up the stack.
constexpr int kMaxNesting = 64;

/// Whether `count` bytes are left to be read. Stops a length or count field from making us allocate
/// what the file cannot fill.
inline bool HasBytesLeft(const CFile& file, std::uint64_t count) {
  return count <= file.GetRemaining();
}

/// Counts how deep the record being read stands, for as long as the object lives. Per thread,
/// because managers on different threads are independent.
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

  int& depth_;  // to look it up takes as long as to read a short record
};

}  // namespace vex2
