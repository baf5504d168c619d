#include "lab/csv/DetectorsFile.h"

#include "lab/model/DetectorFields.h"

namespace vex2::lab {

void WriteDetectorColumns(CsvWriter& csv) {
  std::vector<std::string> names;
  for (const DetectorField& field : DetectorFields()) names.emplace_back(field.key);
  csv.Row("plate", names);
}

void WriteDetectors(const std::vector<Vex2Detector>& detectors, CsvWriter& csv,
                    const std::string& plate) {
  for (const Vex2Detector& detector : detectors) {
    std::vector<std::string> values;
    for (const DetectorField& field : DetectorFields()) {
      values.push_back(ValueText(field.get(detector)));
    }
    csv.Row(plate, values);
  }
}

}  // namespace vex2::lab
