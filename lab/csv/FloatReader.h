#pragma once

#include <string>
#include <string_view>

#include "lab/csv/CsvRow.h"
#include "lab/model/RoundedNumbers.h"

namespace vex2::lab {

/// Rounds numbers of a CSV file to the 32 bits in which documents store them, and counts those that
/// change.
class FloatReader {
 public:
  /// If `isExact`, a number that would have to be rounded is refused.
  explicit FloatReader(bool isExact) : isExact_(isExact) {}

  /// Rounds `number` of `row` to 32 bits. The number must be in the range of 32-bit numbers. `text`
  /// is the number with a point as decimal mark, and errors call it `what`. Throws an error that
  /// names the row if the reader is exact and the number would be rounded.
  float Keep(const CsvRow& row, std::string_view what, const std::string& text, double number);

  const RoundedNumbers& Rounded() const { return rounded_; }

 private:
  bool isExact_;
  RoundedNumbers rounded_;
};

}  // namespace vex2::lab
