#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "lab/Error.h"

namespace vex2::lab {

/// Finds the decimal mark of a text file from its numbers, unless the caller has given it: "59,82"
/// has a decimal comma, but "12,345" may be twelve thousand. Such a number is refused until another
/// number shows the mark. Once the mark is known, a number with the other mark is refused: the
/// value of a number is never guessed.
class DecimalMark {
 public:
  /// '.' or ',' if the mark is known; 0 to find it from the numbers.
  explicit DecimalMark(char mark) : mark_(mark) {}

  /// A number with a point as its decimal mark. If the mark is not clear, `why` is the reason, as a
  /// text that follows the number in an error.
  struct Plain {
    std::string text;
    std::string why;  ///< empty if `text` is valid
    ErrorRemedy remedy = ErrorRemedy::kNone;
  };
  /// Converts the number `text`. `beside` has other fields of the same row, which may show the
  /// decimal mark. A text that is not a number stays unchanged.
  Plain Read(std::string_view text, std::span<const std::string_view> beside);

 private:
  char mark_;
};

}  // namespace vex2::lab
