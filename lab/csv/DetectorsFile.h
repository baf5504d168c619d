#pragma once

#include <string>
#include <vector>

#include "lab/csv/CsvWriter.h"
#include "vex2/setup/Vex2Detector.h"

namespace vex2::lab {

/// Writes the column names of a table of detectors: the fields of `DetectorFields`.
void WriteDetectorColumns(CsvWriter& csv);
/// Writes a row for each detector, with `plate` in front if the table is of several plates.
void WriteDetectors(const std::vector<Vex2Detector>& detectors, CsvWriter& csv,
                    const std::string& plate);

}  // namespace vex2::lab
