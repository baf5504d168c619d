#pragma once

#include <ostream>
#include <string>

#include "tools/vex/document/RunReading.h"

namespace vex2::tool {

/// Writes readings as rows, in the columns that `vex record` reads; those of several plates behind
/// a column of the plates' names.
class ReadingsWriter {
 public:
  /// Writes the row of column names. `out` must outlive the writer.
  explicit ReadingsWriter(std::ostream& out, bool ofPlates = false);

  /// What follows is of the plate with this name, UTF-8, whose values were multiplied by `scale`.
  void BeginPlate(const std::string& name, std::uint32_t scale);
  void Write(const std::string& well, const RunReading& reading);
  /// The same of a record. A well that gave nothing in a frame has its row, and no numbers in it.
  void Write(const std::string& well, const Vex2WellRecord& record);

 private:
  std::ostream& out_;
  bool ofPlates_;
  std::string plate_;
  std::uint32_t scale_ = 1;
};

}  // namespace vex2::tool
