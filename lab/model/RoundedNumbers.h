#pragma once

#include <cstddef>
#include <string_view>

namespace vex2::lab {

/// How many numbers a document could not hold as they were, and what that changed.
struct RoundedNumbers {
  std::size_t count = 0;
  double largestChange = 0;

  /// Counts a number that was changed by so much.
  void Add(double change);
};

/// By how much the decimal number `text` was changed when it became `kept`, a number of 32 bits.
/// 0 when it comes back from the document: it is the shortest text of `kept`, or the same number.
double ChangeOf(std::string_view text, float kept);

}  // namespace vex2::lab
