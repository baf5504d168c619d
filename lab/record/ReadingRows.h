#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/CsvReader.h"
#include "lab/record/RunPlan.h"

namespace vex2::lab {

/// A row of a readings file: what one well gave in one channel at one time, as measured.
struct ReadingRow {
  std::size_t number = 0;  ///< of the row in the file
  unsigned short well = 0;
  std::size_t channel = 0;  ///< index of its name
  bool melting = false;
  std::uint16_t cycle = 0;
  double seconds = 0;
  double temperature = 0;              ///< degrees Celsius
  std::optional<double> fluorescence;  ///< nothing if the reading is missing
};

/// "amplification cycle 7".
std::string FrameName(bool melting, unsigned cycle);

/// How a readings file is read.
struct ReadingsSource {
  std::string path;       ///< "-" is standard input
  CsvFormat format = {};  ///< how it is written
  /// Channels beyond those that the plan names are added to it as they come; else refused.
  bool findsChannels = true;
  /// Asked again and again while a pipe has nothing to read; false ends the reading.
  std::function<bool()> keepsWaiting;
};

/// The columns that a readings file may have, the optional ones last.
const std::vector<std::string_view>& ReadingsFileColumns();

/// Calls `take` with each row of the file, whose wells must be the plan's. An empty field, or "NA",
/// is a missing reading. Throws an error that names the row. False when the reading was ended
/// before the file was.
bool ReadReadingRows(const ReadingsSource& source, RunPlan& plan,
                     const std::function<void(const ReadingRow&)>& take);

}  // namespace vex2::lab
