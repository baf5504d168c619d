#pragma once

namespace vex2::test {

/// While this object exists, one allocation of the whole program fails: the one with this index,
/// counted from 0 from the construction on. Only one such object may exist at a time.
class FailingMemory {
 public:
  explicit FailingMemory(long allocation);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  /// Whether the allocation that was to fail has been reached.
  static bool HasFailed();
};

/// The number of allocated blocks that are not yet released.
long BlocksInUse();

}  // namespace vex2::test
