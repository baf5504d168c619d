#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "lab/Error.h"

namespace vex2::lab {

/// How a text file marks decimals. Where nobody said so, the file's numbers tell: "59,82" has a
/// decimal comma, but "12,345" may be twelve thousand, and is refused until another number has
/// told. Once it is known, a number with the other mark is refused: no number is ever guessed.
class DecimalMark {
 public:
  /// '.' or ',' where it is known, 0 where the numbers are to tell.
  explicit DecimalMark(char mark) : mark_(mark) {}

  /// What a number is with a point as its mark, or why it cannot be said, to follow the number.
  struct Plain {
    std::string text;
    std::string why;  ///< empty where `text` holds
    ErrorRemedy remedy = ErrorRemedy::kNone;
  };
  /// Of the number `text`. `beside` are fields of the same row, of which one may tell the mark. A
  /// text that is no number stays one that is none.
  Plain Read(std::string_view text, std::span<const std::string_view> beside);

 private:
  char mark_;
};

}  // namespace vex2::lab
