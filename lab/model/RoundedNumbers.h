#pragma once

#include <cstddef>
#include <string_view>

namespace vex2::lab {

/// The number of values that had to be rounded to fit into a document, and the largest change.
struct RoundedNumbers {
  std::size_t count = 0;
  double largestChange = 0;

  /// Counts a number that was changed by `change`.
  void Add(double change);
};

/// The change when the decimal number `text` is stored as the 32-bit number `kept`. It is 0 if the
/// text of `kept` gives the same number again.
double ChangeOf(std::string_view text, float kept);

}  // namespace vex2::lab
