#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

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
  /// Writes the row of a well in a frame, or a row for each channel; a reading that is missing is
  /// "NA", no reading, or one that is not known, is empty fields.
  void Write(const std::string& well, std::uint64_t frame,
             const std::optional<RunReading>& reading);

 private:
  std::ostream& out_;
  Columns columns_;
  std::string plate_;
  ReadingScale scale_;
  std::vector<std::string> channels_;
};

}  // namespace vex2::lab
