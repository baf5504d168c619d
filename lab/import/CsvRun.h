#pragma once

#include <string>

#include "lab/exchange/ExchangedRun.h"

namespace vex2::lab {

/// Reads the run in a CSV file of readings with the columns `ReadingsFileColumns`. The file has
/// only the names of the wells, not their content. Errors name the file and the row.
ExchangedRun ReadCsvRun(const std::string& path, const std::string& file);

}  // namespace vex2::lab
