#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "tools/vex/document/RunReading.h"

namespace vex2::tool {

/// Writes readings as rows, in the columns that `vex record` reads, and those that are added to
/// them: of several plates the plate's name in front, and behind the well the frame, from 0, where
/// nothing else may tell when a reading was taken.
class ReadingsWriter {
 public:
  struct Columns {
    bool plate = false;
    bool frame = false;
  };

  /// Writes the row of column names. `out` must outlive the writer.
  explicit ReadingsWriter(std::ostream& out, Columns columns);

  /// What follows is of the plate with this name, UTF-8, whose values were multiplied by `scale`.
  void BeginPlate(const std::string& name, std::uint32_t scale);
  /// Writes the row of a well in a frame; no reading, or one that is not known, is empty fields.
  void Write(const std::string& well, std::uint64_t frame,
             const std::optional<RunReading>& reading);

 private:
  std::ostream& out_;
  Columns columns_;
  std::string plate_;
  std::uint32_t scale_ = 1;
};

}  // namespace vex2::tool
