#pragma once

#include <string>
#include <vector>

#include "lab/model/RunLog.h"

namespace vex2::lab {

/// Where the fluorescence of the first channel is among the fields.
inline constexpr std::size_t kFirstFluorescence = 4;

/// The names of a reading's fields as tables have them, with their units; one of a fluorescence for
/// each channel that `log` names.
std::vector<std::string> ReadingNames(const RunLog& log);

/// The fields of a reading, in the order of their names and in their units; "NA" where a reading is
/// missing. `log` states the scale.
std::vector<std::string> ReadingFields(const RunReading& reading, const RunLog& log);

}  // namespace vex2::lab
