#include "lab/csv/StoredValues.h"

#include <iterator>

#include "vex2/format/DataBlockHead.h"

namespace vex2::lab {

void WriteStoredColumns(CsvWriter& csv) {
  std::vector<std::string> names = {"well", "number", "frame"};
  for (std::size_t i = 0; i < std::size(Vex2WellRecord().leading); ++i) {
    names.push_back("leading_" + std::to_string(i));
  }
  for (std::size_t i = 0; i < kStoredDataValues; ++i) names.push_back("data_" + std::to_string(i));
  csv.Row("plate", names);
}

void WriteStoredRecord(CsvWriter& csv, const std::string& plate, const StoredRecord& stored) {
  std::vector<std::string> fields = {stored.well, std::to_string(stored.number),
                                     std::to_string(stored.frame)};
  for (const std::uint16_t value : stored.record.leading) fields.push_back(std::to_string(value));
  for (std::size_t i = 0; i < kStoredDataValues; ++i) {
    fields.push_back(std::to_string(stored.record.data[i]));
  }
  csv.Row(plate, fields);
}

}  // namespace vex2::lab
