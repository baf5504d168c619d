#pragma once

#include <cstdint>
#include <string>

#include "lab/csv/CsvWriter.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::lab {

/// Writes the column names of a table of stored well records: well, its number, frame, leading_0 to
/// leading_7, data_0 to data_31.
void WriteStoredColumns(CsvWriter& csv);

/// A record with its well and frame.
struct StoredRecord {
  std::string well;
  std::uint16_t number = 0;  ///< well number, from 1
  std::uint64_t frame = 0;   ///< index from 0
  Vex2WellRecord record;
};

/// Writes the row of a record, with `plate` in front if the table is of several plates.
void WriteStoredRecord(CsvWriter& csv, const std::string& plate, const StoredRecord& stored);

}  // namespace vex2::lab
