#pragma once

#include <string>
#include <vector>

#include "lab/model/Calibration.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// The content of the document's calibration record.
Calibration CalibrationOf(const Vex2FileManager& document);

/// Stores the parts that `calibration` has. Keeps the reserved words of replaced parts, and the
/// parts that `calibration` does not have. Throws an error if the document cannot hold a part, or
/// if a name is not Latin-1.
void StoreCalibration(Vex2FileManager& document, const Calibration& calibration);

/// The values of a spectrum as floating-point numbers, one for each filter.
std::vector<double> NumbersOf(const CalibrationEntry& entry);

/// Stores the parts that `calibration` has, each under the head of the part that it replaces, and
/// returns a line about each for people.
std::string ReplaceCalibration(Vex2FileManager& document, Calibration calibration);

}  // namespace vex2::lab
