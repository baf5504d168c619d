#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace vex2::lab {

/// A text as a field of CSV: in quotes where it needs them.
std::string CsvField(const std::string& text);

/// Writes rows of comma-separated fields as RFC 4180 has them, but with bare line ends: fields are
/// quoted where they need to be.
class CsvWriter {
 public:
  /// If the table is of several plates, each row has a field in front that names the plate. `out`
  /// must outlive the writer.
  CsvWriter(std::ostream& out, bool hasPlates) : out_(out), hasPlates_(hasPlates) {}

  /// Writes one row of UTF-8 fields, with `plate` in front if the table is of several plates.
  void Row(const std::string& plate, const std::vector<std::string>& fields);

 private:
  std::ostream& out_;
  bool hasPlates_;
};

}  // namespace vex2::lab
