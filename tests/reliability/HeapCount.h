#pragma once

#include <cstddef>

namespace vex2::test {

/// How much of the heap the whole program takes while it lives, at most, beyond what was taken when
/// it was made. One at a time.
class HeapPeak {
 public:
  HeapPeak();

  /// Bytes so far.
  std::size_t Bytes() const;

 private:
  std::size_t before_;
};

}  // namespace vex2::test
