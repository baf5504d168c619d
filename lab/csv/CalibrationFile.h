#pragma once

#include <string>

#include "lab/csv/CsvReader.h"
#include "lab/csv/CsvWriter.h"
#include "lab/csv/FloatReader.h"
#include "lab/model/Calibration.h"

namespace vex2::lab {

/// The columns of the table of spectra.
const std::vector<std::string_view>& CalibrationColumns();

/// These functions write a table of spectra: the first writes the row of column names, the second
/// one row for each spectrum. Rows begin with `plate` if the table is of several plates. The heads
/// of the two parts are not in the table.
void WriteCalibrationColumns(CsvWriter& csv);
void WriteCalibration(const Calibration& calibration, CsvWriter& csv, const std::string& plate);

/// Reads a table of spectra from the file at `path`, or from standard input for "-". The result has
/// only those parts for which the table has rows. `values` counts the numbers that are rounded.
/// Throws an error that names the row if the table cannot be used.
Calibration LoadCalibration(const std::string& path, FloatReader& values,
                            const CsvFormat& format = {});

}  // namespace vex2::lab
