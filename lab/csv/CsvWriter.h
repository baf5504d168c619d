#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace vex2::lab {

/// A text as a field of CSV: in quotes if it needs them.
std::string CsvField(const std::string& text);

/// Writes rows of comma-separated fields as in RFC 4180, but with bare line ends. Fields that need
/// quotes get them.
class CsvWriter {
 public:
  /// If `hasPlates`, the table is of several plates, and each row begins with a field that names
  /// the plate. `out` must outlive the writer.
  CsvWriter(std::ostream& out, bool hasPlates) : out_(out), hasPlates_(hasPlates) {}

  /// Writes one row of UTF-8 fields, with `plate` in front if the table is of several plates.
  void Row(const std::string& plate, const std::vector<std::string>& fields);

 private:
  std::ostream& out_;
  bool hasPlates_;
};

}  // namespace vex2::lab
