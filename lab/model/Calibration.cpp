#include "lab/model/Calibration.h"

#include <bit>

namespace vex2::lab {

namespace {

constexpr int kFilters = 12;

// A peak around `centre`. It does not use the exponential function, whose results differ between
// machines.
std::vector<std::uint32_t> peak(double height, double centre, double width, double floor) {
  std::vector<std::uint32_t> values;
  for (int filter = 0; filter < kFilters; ++filter) {
    const double distance = (filter - centre) / width;
    const double shape = 1 / (1 + distance * distance);
    const auto value = static_cast<float>(floor + height * shape * shape);
    values.push_back(std::bit_cast<std::uint32_t>(value));
  }
  return values;
}

}  // namespace

Calibration SimulatedCalibration() {
  Calibration calibration;
  CalibrationPart& dyes = calibration.pureDyes.emplace();
  double centre = 1.5;
  for (const char* name : {"green", "yellow", "orange", "red"}) {
    CalibrationEntry& entry = dyes.entries.emplace_back();
    entry.name = name;
    entry.dyeIndex = static_cast<std::uint16_t>(dyes.entries.size());
    entry.values = peak(0.9, centre, 2.2, 0.01);
    centre += 2.8;
  }
  CalibrationEntry& trace = calibration.background.emplace().entries.emplace_back();
  trace.name = "background";
  trace.limit = 189;
  trace.values = peak(6, 3, 6, 24);
  return calibration;
}

float NumberOf(std::uint32_t value) {
  return std::bit_cast<float>(value);
}

}  // namespace vex2::lab
