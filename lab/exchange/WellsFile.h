#pragma once

#include <ostream>
#include <string>

#include "lab/exchange/CsvReader.h"
#include "lab/exchange/CsvWriter.h"
#include "lab/exchange/FloatReader.h"
#include "lab/model/PlateContents.h"

namespace vex2::lab {

/// The columns of the wells file.
const std::vector<std::string_view>& WellsFileColumns();

/// Reads the CSV file at `path`, or standard input for "-", in the columns
/// well,sample,target,task,quantity,reporter. A well may have several rows, one for each detector,
/// all with one sample; two of one detector are a slip, unless the well of `before` has as many.
/// The plate is the smallest that has the wells. `quantities` keeps count of those that are
/// rounded. Throws an error that names the row.
PlateContents LoadWells(const std::string& path, FloatReader& quantities,
                        const CsvFormat& format = {}, const PlateContents& before = {});

/// Writes the rows in these columns. What was loaded comes out again as it was, but for the order
/// of the wells and ways to write a number.
void WriteWells(const PlateContents& contents, std::ostream& out);
/// Writes the row of column names, or the plate's rows, to a table that is begun.
void WriteWellColumns(CsvWriter& csv);
void WriteWells(const PlateContents& contents, CsvWriter& csv, const std::string& plate);

/// A number with as few digits as tell it from every other, without exponent.
std::string DecimalText(float number);

}  // namespace vex2::lab
