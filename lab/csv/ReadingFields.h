#pragma once

#include <string>
#include <vector>

#include "lab/model/RunLog.h"

namespace vex2::lab {

/// The index of the first channel's fluorescence among the fields.
inline constexpr std::size_t kFirstFluorescence = 4;

/// The column names of a reading in tables, with units. There is one fluorescence for each channel
/// that `log` names.
std::vector<std::string> ReadingNames(const RunLog& log);

/// The fields of a reading, in the order and units of `ReadingNames`; "NA" for a missing reading.
/// `log` states the scale.
std::vector<std::string> ReadingFields(const RunReading& reading, const RunLog& log);

}  // namespace vex2::lab
