#pragma once

#include <ostream>
#include <string>

#include "tools/vex/RunReading.h"

namespace vex2::tool {

/// Writes readings as rows, in the columns that `vex record` reads.
class ReadingsWriter {
 public:
  /// Writes the row of column names. The readings' values were multiplied by `scale`. `out` must
  /// outlive the writer.
  ReadingsWriter(std::ostream& out, std::uint32_t scale);

  void Write(const std::string& well, const RunReading& reading);
  /// The same of a record. A well that gave nothing in a frame has its row, and no numbers in it.
  void Write(const std::string& well, const Vex2WellRecord& record);

 private:
  std::ostream& out_;
  std::uint32_t scale_;
};

}  // namespace vex2::tool
