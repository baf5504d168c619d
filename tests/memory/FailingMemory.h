#pragma once

namespace vex2::test {

/// While it lives, one allocation of the whole program fails: the one with this number, counted
/// from 0 from now on. One at a time.
class FailingMemory {
 public:
  explicit FailingMemory(long allocation);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  /// Whether that many allocations were made.
  static bool HasFailed();
};

/// Blocks that were allocated and not yet released.
long BlocksInUse();

}  // namespace vex2::test
