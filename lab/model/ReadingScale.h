#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A decimal number, mantissa times 10 to the exponent.
struct DecimalNumber {
  std::int64_t mantissa = 0;  ///< digits and sign
  int exponent = 0;           ///< power of 10

  /// The number, rounded to the nearest double.
  VEX2_API double Value() const;
};

/// The shortest decimal number that represents `value`. Returns nothing if it has more than 15
/// digits: a double does not preserve every decimal number with so many digits.
VEX2_API std::optional<DecimalNumber> ShortestDecimal(double value);

/// Converts readings to the 16-bit numbers of a document: subtracts the offset, multiplies by the
/// scale and rounds. The scale is a fraction of whole numbers above 0.
class VEX2_API ReadingScale {
 public:
  /// The largest numerator or denominator.
  static constexpr std::uint64_t kLargestPart = 1'000'000'000'000;
  static constexpr double kLargestReading = 1e12;  ///< in both directions

  /// Makes scale 1 with offset 0.
  ReadingScale() : ReadingScale(1) {}
  /// Makes a scale that is a whole number, from 1 to `kLargestPart`.
  explicit ReadingScale(std::uint64_t scale, DecimalNumber offset = {})
      : ReadingScale(scale, 1, offset) {}
  /// Makes a scale that is a fraction. Numerator and denominator are from 1 to `kLargestPart`.
  ReadingScale(std::uint64_t numerator, std::uint64_t denominator, DecimalNumber offset);

  /// Parses a scale such as "1000", "0.5" or "1000/3". Returns nothing for any other text, or if
  /// numerator or denominator is too large.
  static std::optional<ReadingScale> Parse(std::string_view text, DecimalNumber offset = {});
  /// Parses an offset. Returns nothing if `text` is not a number of at most 15 digits, or is larger
  /// than any reading.
  static std::optional<DecimalNumber> ParseOffset(std::string_view text);

  /// The same scale with this offset.
  ReadingScale WithOffset(DecimalNumber offset) const { return {numerator_, denominator_, offset}; }

  /// The number that the document stores for `reading`; nothing if the reading is below the offset,
  /// or if the number would be above 65535.
  std::optional<std::uint16_t> Store(double reading) const;
  /// The reading that `stored` represents.
  double Measured(std::uint16_t stored) const;
  /// The shortest text of the reading that `stored` represents, without exponent. Parsing it gives
  /// the same number.
  std::string MeasuredText(std::uint16_t stored) const;

  /// The difference between the readings of two adjacent stored numbers.
  double Step() const;
  /// The scale as a text: "1000" or "1000/3".
  std::string ScaleText() const;
  /// The offset as a text: "-12.5", or "0" if there is none.
  std::string OffsetText() const;
  /// Whether the offset is not 0.
  bool HasOffset() const { return offset_.mantissa != 0; }
  /// The number that is subtracted from a reading before it is scaled.
  DecimalNumber Offset() const { return offset_; }

  /// Whether scale and offset are equal.
  friend bool operator==(const ReadingScale& one, const ReadingScale& other) {
    return one.numerator_ == other.numerator_ && one.denominator_ == other.denominator_ &&
           one.offset_.Value() == other.offset_.Value();
  }

 private:
  void findSteps();

  std::uint64_t numerator_;
  std::uint64_t denominator_;
  DecimalNumber offset_;
  // Step and offset as whole multiples of 10 to the power of -`decimals_`, in `step_` and `base_`.
  // They are set only if this form is exact, that is if `isDecimal_`.
  bool isDecimal_ = false;
  int decimals_ = 0;
  std::int64_t step_ = 0;
  std::int64_t base_ = 0;
};

/// `number` without exponent, in the fewest digits from which the same number is read.
VEX2_API std::string PlainText(double number);

}  // namespace vex2::lab
