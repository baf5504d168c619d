#pragma once

#include <cstdint>
#include <string>

#include "lab/exchange/CsvWriter.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::lab {

/// The data values of a well record that documents keep; the others live in memory alone.
inline constexpr std::size_t kStoredData = 32;

/// Writes the column names of a table of well records as they are stored: well, its number, frame,
/// leading_0 to leading_7, data_0 to data_31.
void WriteStoredColumns(CsvWriter& csv);

/// A record and where it is.
struct StoredRecord {
  std::string well;
  std::uint16_t number = 0;  ///< of the well, from 1
  std::uint64_t frame = 0;   ///< from 0
  Vex2WellRecord record;
};

/// Writes the row of a record; `plate` only where the table is of several.
void WriteStoredRecord(CsvWriter& csv, const std::string& plate, const StoredRecord& stored);

}  // namespace vex2::lab
