#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/MeasuredTexts.h"
#include "lab/model/ReadingScale.h"
#include "lab/model/RunReading.h"

namespace vex2::lab {

/// Writes readings as rows, in the columns that `vex record` reads, and those that are added to
/// them: of several plates the plate's name in front, and after the well the frame, from 0, where
/// nothing else may tell when a reading was taken, and the channel where a well has several.
class ReadingsWriter {
 public:
  struct Columns {
    bool plate = false;
    bool frame = false;
    bool channel = false;
  };

  /// Writes the row of column names. `out` must outlive the writer.
  explicit ReadingsWriter(std::ostream& out, Columns columns);

  /// What follows is of the plate with this name, UTF-8, whose readings were stored with `scale`.
  /// `channels` are the names of those that a well has, Latin-1; none where it has one reading.
  void BeginPlate(const std::string& name, const ReadingScale& scale,
                  std::vector<std::string> channels);
  /// Appends the row of a well in a frame to `rows`, or a row for each channel; a reading that is
  /// missing is "NA", no reading, or one that is not known, is empty fields.
  void Append(std::string& rows, const std::string& well, std::uint64_t frame,
              const std::optional<RunReading>& reading);
  /// Writes rows that were appended.
  void WriteRows(std::string_view rows);

 private:
  /// Stage, cycle, time and temperature as text. All wells of a frame were read at one moment, so
  /// that the text is made once for all of them.
  struct Moment {
    bool isMade = false;
    bool melting = false;
    std::uint16_t cycle = 0;
    std::uint16_t temperature = 0;
    std::uint32_t time = 0;
    std::string text;
  };
  static constexpr std::size_t kMoments = 4096;  ///< that are kept, by the frame's number

  const std::string& momentOf(const RunReading& reading, std::uint64_t frame);

  std::ostream& out_;
  Columns columns_;
  std::string plate_;
  std::vector<std::string> channels_;
  MeasuredTexts measured_{ReadingScale()};
  std::vector<Moment> moments_;
};

}  // namespace vex2::lab
