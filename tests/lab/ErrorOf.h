#pragma once

#include <gtest/gtest.h>

#include "lab/Error.h"

namespace vex2::test {

/// Returns the error that `work()` throws. The test fails if it throws none.
template <typename Work>
lab::Error ErrorOf(const Work& work) {
  try {
    work();
  } catch (const lab::Error& error) {
    return error;
  }
  ADD_FAILURE() << "no error was thrown";
  return {lab::ErrorCode::kSystem, ""};
}

}  // namespace vex2::test
