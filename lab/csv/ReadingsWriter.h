#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "lab/csv/MeasuredTexts.h"
#include "lab/model/ReadingScale.h"
#include "lab/model/RunReading.h"

namespace vex2::lab {

/// Writes readings as rows with the columns that `vex record` reads. `Columns` can add further
/// columns: the name of the plate before the well, and after it the index of the frame, from 0, and
/// the channel.
class ReadingsWriter {
 public:
  struct Columns {
    bool plate = false;
    bool frame = false;
    bool channel = false;
  };

  /// Writes the row of column names. `out` must outlive the writer.
  explicit ReadingsWriter(std::ostream& out, Columns columns);

  /// Begins the rows of the plate with this name, in UTF-8, whose readings were stored with
  /// `scale`. `channels` are the names of a well's channels in Latin-1; empty if a well has one
  /// reading.
  void BeginPlate(const std::string& name, const ReadingScale& scale,
                  std::vector<std::string> channels);
  /// Appends rows to `rows`: one for each channel of a well in a frame. A missing reading is "NA".
  /// The fields are empty if there is no reading, or if its meaning is not known.
  void Append(std::string& rows, const std::string& well, std::uint64_t frame,
              const std::optional<RunReading>& reading);
  /// Writes rows that `Append` made.
  void WriteRows(std::string_view rows);

 private:
  /// The stage, cycle, time and temperature as a text. They are usually the same for all
  /// wells of a frame, so the text is kept, and made again only if they differ.
  struct Moment {
    bool isMade = false;
    bool melting = false;
    std::uint16_t cycle = 0;
    std::uint16_t temperature = 0;
    std::uint32_t time = 0;
    std::string text;
  };
  /// The number of moments that are kept; the frame index selects one.
  static constexpr std::size_t kMoments = 4096;

  const std::string& momentOf(const RunReading& reading, std::uint64_t frame);

  std::ostream& out_;
  Columns columns_;
  std::string plate_;
  std::vector<std::string> channels_;
  MeasuredTexts measured_{ReadingScale()};
  std::vector<Moment> moments_;
};

}  // namespace vex2::lab
