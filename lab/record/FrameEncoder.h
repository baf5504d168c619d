#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/RoundedNumbers.h"
#include "lab/record/FrameCollector.h"

namespace vex2::lab {

/// What the frames of a run lost when they were brought to the document's numbers.
struct Rounding {
  RoundedNumbers readings;
  RoundedNumbers times;         ///< seconds, to the millisecond
  RoundedNumbers temperatures;  ///< degrees, to the hundredth

  bool IsExact() const {
    return readings.count == 0 && times.count == 0 && temperatures.count == 0;
  }
};

/// Brings collected frames to what a document holds, and counts what is rounded.
class FrameEncoder {
 public:
  /// `plan`, whose scale is known by now, must outlive the encoder. An exact one refuses what it
  /// would have to round.
  FrameEncoder(const RunPlan& plan, std::string file, bool isExact)
      : plan_(plan), file_(std::move(file)), isExact_(isExact) {}

  /// The readings of a complete frame, one of each well. Throws an error that names the row of a
  /// reading that does not fit or, if exact, would be rounded.
  std::vector<RunReading> Encode(const CollectedFrame& frame);

  /// Why the reading does not fit into a document, naming its row; nothing if it does.
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
