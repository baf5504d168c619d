#pragma once

#include <ostream>
#include <string>

#include "lab/csv/CsvReader.h"
#include "lab/csv/CsvWriter.h"
#include "lab/csv/FloatReader.h"
#include "lab/model/PlateContents.h"

namespace vex2::lab {

/// The columns of the wells file.
const std::vector<std::string_view>& WellsFileColumns();

/// Reads the CSV file at `path`, or standard input for "-", with the columns well, sample, target,
/// task, quantity and reporter. A well may have several rows, one for each detector, all with the
/// same sample. It may have several rows for the same detector only if it has as many of them in
/// `before`. The plate is the smallest that has all the wells. `quantities` counts the quantities
/// that are rounded. Throws an error that names the row if the file cannot be used.
PlateContents LoadWells(const std::string& path, FloatReader& quantities,
                        const CsvFormat& format = {}, const PlateContents& before = {});

/// Writes the rows with the columns of the wells file. If the contents were loaded from such a
/// file, the result equals the file, except for the order of the wells and the form of numbers.
void WriteWells(const PlateContents& contents, std::ostream& out);
/// These functions write a table of wells: the first writes the row of column names, the second the
/// rows of a plate. Rows begin with `plate` if the table is of several plates.
void WriteWellColumns(CsvWriter& csv);
void WriteWells(const PlateContents& contents, CsvWriter& csv, const std::string& plate);

/// The number with the fewest digits from which the same number is read, without exponent.
std::string DecimalText(float number);

}  // namespace vex2::lab
