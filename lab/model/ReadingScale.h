#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A decimal number, mantissa times 10 to the exponent.
struct DecimalNumber {
  std::int64_t mantissa = 0;  ///< the digits, with the sign
  int exponent = 0;           ///< the power of 10

  /// The number, rounded to the nearest double.
  VEX2_API double Value() const;
};

/// The shortest decimal number that stands for `value`; nothing if it has more than 15 digits, of
/// which no text is sure to come back from a double.
VEX2_API std::optional<DecimalNumber> ShortestDecimal(double value);

/// How readings become the 16-bit numbers of a document: a reading, less the offset, times the
/// scale, rounded. The scale is a fraction of whole numbers above 0.
class VEX2_API ReadingScale {
 public:
  static constexpr std::uint64_t kLargestPart = 1'000'000'000'000;  ///< of the fraction
  static constexpr double kLargestReading = 1e12;                   ///< in both directions

  /// Scale 1, offset 0.
  ReadingScale() : ReadingScale(1) {}
  /// The scale is a whole number, from 1 to `kLargestPart`.
  explicit ReadingScale(std::uint64_t scale, DecimalNumber offset = {})
      : ReadingScale(scale, 1, offset) {}
  /// Both parts are from 1 to `kLargestPart`.
  ReadingScale(std::uint64_t numerator, std::uint64_t denominator, DecimalNumber offset);

  /// The scale that `text` stands for, as "1000", "0.5" or "1000/3"; nothing for any other text and
  /// for parts that are too large.
  static std::optional<ReadingScale> Parse(std::string_view text, DecimalNumber offset = {});
  /// The offset that `text` stands for; nothing if it is no number of at most 15 digits, or is
  /// beyond what a reading can be.
  static std::optional<DecimalNumber> ParseOffset(std::string_view text);

  /// The same scale with this offset.
  ReadingScale WithOffset(DecimalNumber offset) const { return {numerator_, denominator_, offset}; }

  /// The number that stands for `reading`; nothing for one below the offset or above 65535.
  std::optional<std::uint16_t> Store(double reading) const;
  /// The reading that `stored` stands for.
  double Measured(std::uint16_t stored) const;
  /// The shortest text of that reading, without exponent: the same number is read back from it.
  std::string MeasuredText(std::uint16_t stored) const;

  /// From one stored number to the next.
  double Step() const;
  /// As "1000" or "1000/3".
  std::string ScaleText() const;
  /// As "-12.5"; "0" when there is none.
  std::string OffsetText() const;
  /// Whether the offset is not 0.
  bool HasOffset() const { return offset_.mantissa != 0; }
  /// What is taken from a reading before it is scaled.
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
  // The same in whole steps of 10 to the minus `decimals_`, when it can be said so without loss.
  bool isDecimal_ = false;
  int decimals_ = 0;
  std::int64_t step_ = 0;
  std::int64_t base_ = 0;
};

/// `number` without exponent, in as few digits as tell it from every other.
VEX2_API std::string PlainText(double number);

}  // namespace vex2::lab
