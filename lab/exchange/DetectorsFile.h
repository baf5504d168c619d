#pragma once

#include <string>
#include <vector>

#include "lab/exchange/CsvWriter.h"
#include "vex2/setup/Vex2Detector.h"

namespace vex2::lab {

/// Writes the row of column names of a table of detectors: the fields of `DetectorFields`.
void WriteDetectorColumns(CsvWriter& csv);
/// Writes a row for each detector; `plate` only where the table is of several.
void WriteDetectors(const std::vector<Vex2Detector>& detectors, CsvWriter& csv,
                    const std::string& plate);

}  // namespace vex2::lab
