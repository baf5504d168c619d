#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/memory/FailingMemory.h"
#include "tests/support/RunDocument.h"
#include "tests/support/Sweep.h"

namespace vex2::test {

/// Runs `prepare`, then `operation` with one allocation failing, then `check` with its status and a
/// manager in the state that it is left in; for each allocation until none fails. Nothing may leak
/// and no file stay open.
struct AllocationSweep {
  std::function<void(OpenedManager&)> prepare;
  std::function<int(OpenedManager&)> operation;
  std::function<void(OpenedManager&, int status)> check;

  /// How many allocations the operation makes.
  int Run() const {
    const int allocations = failEach();
    const auto points = static_cast<std::uint64_t>(allocations);
    ReportSweep({"a read fails, memory runs out", "each allocation of every operation", points,
                 points, testing::Test::HasFailure() ? 1U : 0U});
    return allocations;
  }

 private:
  int failEach() const {
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
      if (testing::Test::HasFailure()) return allocation;
      EXPECT_EQ(BlocksInUse(), before);
      if (!failed) return allocation;
    }
  }
};

}  // namespace vex2::test
