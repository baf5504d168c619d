#pragma once

#include <string>

#include "lab/exchange/CsvReader.h"
#include "lab/exchange/CsvWriter.h"
#include "lab/exchange/FloatReader.h"
#include "lab/model/Calibration.h"

namespace vex2::lab {

/// The columns of the table of spectra.
const std::vector<std::string_view>& CalibrationColumns();

/// Writes the row of column names, or a row for each spectrum, to a table that is begun. The heads
/// are not in it.
void WriteCalibrationColumns(CsvWriter& csv);
void WriteCalibration(const Calibration& calibration, CsvWriter& csv, const std::string& plate);

/// Reads such a table from the file at `path`, "-" for standard input. A part without rows is
/// nothing. `values` keeps count of those that are rounded. Throws an error that names the row.
Calibration LoadCalibration(const std::string& path, FloatReader& values,
                            const CsvFormat& format = {});

}  // namespace vex2::lab
