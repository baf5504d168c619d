#pragma once

#include "lab/model/Calibration.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// What the document's calibration container says.
Calibration CalibrationOf(const Vex2FileManager& document);

/// Makes the parts that there are the document's, and keeps the reserved words of those that they
/// replace; parts that there are not stay as they are. Throws an error when the document cannot
/// hold them, or a name is not Latin-1.
void StoreCalibration(Vex2FileManager& document, const Calibration& calibration);

/// The values of a spectrum as numbers, a filter each.
std::vector<double> NumbersOf(const CalibrationEntry& entry);

}  // namespace vex2::lab
