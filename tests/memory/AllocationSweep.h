#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/memory/FailingMemory.h"
#include "tests/support/RunDocument.h"
#include "tests/support/Sweep.h"

namespace vex2::test {

/// Makes each allocation of an operation fail in turn. For each allocation, runs `prepare`, then
/// `operation` with this allocation failing, then `check` with the manager and the status of the
/// operation. Checks that nothing leaks and that no file stays open.
struct AllocationSweep {
  std::function<void(OpenedManager&)> prepare;
  std::function<int(OpenedManager&)> operation;
  std::function<void(OpenedManager&, int status)> check;

  /// Runs the sweep. Returns the number of allocations that the operation makes.
  int Run() const {
    std::uint64_t bad = 0;
    const int allocations = failEach(bad);
    const auto points = static_cast<std::uint64_t>(allocations);
    ReportSweep({"a read fails, memory runs out", "each allocation of every operation", points,
                 points, bad});
    return allocations;
  }

 private:
  int failEach(std::uint64_t& bad) const {
    NewFailures failures;
    for (int allocation = 0;; ++allocation) {
      SCOPED_TRACE("allocation " + std::to_string(allocation));
      const long before = BlocksInUse();
      bool failed = false;
      {
        OpenedManager manager;
        prepare(manager);
        int status = 0;
        {
          const FailingMemory memory(allocation);
          status = operation(manager);
          failed = FailingMemory::HasFailed();
        }
        EXPECT_FALSE(manager.IsOpen());
        EXPECT_TRUE(failed || status == kSuccess) << status;
        check(manager, status);
      }
      // The message of a failed expectation stays allocated, so look for leaks only if no
      // expectation failed.
      bool isBad = failures.Any();
      if (!isBad) {
        EXPECT_EQ(BlocksInUse(), before);
        isBad = failures.Any();
      }
      if (isBad) ++bad;
      if (!failed) return allocation;
    }
  }
};

}  // namespace vex2::test
