#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/RoundedNumbers.h"
#include "lab/record/FrameCollector.h"

namespace vex2::lab {

/// The numbers of a run that were rounded to fit into a document.
struct Rounding {
  RoundedNumbers readings;
  RoundedNumbers times;         ///< seconds, rounded to 0.001
  RoundedNumbers temperatures;  ///< degrees Celsius, rounded to 0.01

  bool IsExact() const {
    return readings.count == 0 && times.count == 0 && temperatures.count == 0;
  }
};

/// Encodes collected frames as a document stores them, and counts the numbers that it rounds.
class FrameEncoder {
 public:
  /// The scale of `plan` must already be known. `plan` must outlive the encoder. If `isExact`,
  /// numbers that would have to be rounded are refused.
  FrameEncoder(const RunPlan& plan, std::string file, bool isExact)
      : plan_(plan), file_(std::move(file)), isExact_(isExact) {}

  /// Encodes a complete frame: one reading for each well. Throws an error that names the row if a
  /// reading does not fit, or if the encoder is exact and a number would be rounded.
  std::vector<RunReading> Encode(const CollectedFrame& frame);

  /// The reason why the reading of the row does not fit into a document, as a text that names the
  /// row; nothing if it fits.
  std::optional<std::string> WhyUnfit(const ReadingRow& row) const;

  const Rounding& Rounded() const { return rounding_; }

 private:
  void encodeShared(const ReadingRow& row, RunReading& reading);
  std::uint16_t encodeValue(const ReadingRow& row);
  double roundTo(RoundedNumbers& rounded, const ReadingRow& row, const char* what, double number,
                 double parts);
  void requireExact(const ReadingRow& row, const std::string& what, double number,
                    double stored) const;

  const RunPlan& plan_;
  std::string file_;
  bool isExact_;
  Rounding rounding_;
};

}  // namespace vex2::lab
