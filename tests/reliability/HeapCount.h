#pragma once

#include <cstddef>

namespace vex2::test {

/// Measures the peak of the heap of the whole program, above its size when this object was made.
/// Only one object may exist at a time.
class HeapPeak {
 public:
  HeapPeak();

  /// The peak so far, in bytes.
  std::size_t Bytes() const;

 private:
  std::size_t before_;
};

}  // namespace vex2::test
