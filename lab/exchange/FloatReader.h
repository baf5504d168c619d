#pragma once

#include <string>
#include <string_view>

#include "lab/exchange/CsvRow.h"
#include "lab/model/RoundedNumbers.h"

namespace vex2::lab {

/// Brings numbers of a CSV file to the 32 bits that documents keep of them, and counts those that
/// are rounded.
class FloatReader {
 public:
  /// An exact one refuses what it would have to round.
  explicit FloatReader(bool isExact) : isExact_(isExact) {}

  /// The number of `row` that `text`, with a point as its decimal mark, stands for: `number`, which
  /// the 32 bits must have room for. `what` is what an error calls it. Throws an error that names
  /// the row when it is exact and the number would be rounded.
  float Keep(const CsvRow& row, std::string_view what, const std::string& text, double number);

  const RoundedNumbers& Rounded() const { return rounded_; }

 private:
  bool isExact_;
  RoundedNumbers rounded_;
};

}  // namespace vex2::lab
