#pragma once

#include <string>

#include "lab/exchange/ExchangedRun.h"

namespace vex2::lab {

/// The run in a CSV file of readings, as `ReadingsFileColumns` names its columns: nothing is known
/// of the wells but their names. Errors name the file and the row.
ExchangedRun ReadCsvRun(const std::string& path, const std::string& file);

}  // namespace vex2::lab
