#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/csv/CsvReader.h"
#include "lab/record/RunPlan.h"

namespace vex2::lab {

/// A row of a readings file: a measured reading of one well and channel.
struct ReadingRow {
  std::size_t number = 0;  ///< number of the row in the file
  unsigned short well = 0;
  std::size_t channel = 0;  ///< index of the channel's name in the plan
  bool melting = false;
  std::uint16_t cycle = 0;
  double seconds = 0;
  double temperature = 0;              ///< degrees Celsius
  std::optional<double> fluorescence;  ///< nothing if the reading is missing
};

/// The name of a frame in messages: "amplification cycle 7" or "melt cycle 7".
std::string FrameName(bool melting, unsigned cycle);

/// How a readings file is read.
struct ReadingsSource {
  std::string path;       ///< "-" is standard input
  CsvFormat format = {};  ///< format of the file
  /// Whether channels that are not in the plan are added to it. If not, they are refused.
  bool findsChannels = true;
  /// Called repeatedly while a pipe has nothing to read. If it returns false, reading ends.
  std::function<bool()> keepsWaiting;
};

/// The columns that a readings file may have, the optional ones last.
const std::vector<std::string_view>& ReadingsFileColumns();

/// Reads the file and calls `take` with each row. Every well must be in the plan. An empty reading
/// or "NA" is a missing reading. Throws an error that names the row if the file cannot be used.
/// Returns false if `keepsWaiting` ended the reading before the end of the file.
bool ReadReadingRows(const ReadingsSource& source, RunPlan& plan,
                     const std::function<void(const ReadingRow&)>& take);

}  // namespace vex2::lab
