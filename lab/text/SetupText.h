#pragma once

#include <string>
#include <vector>

#include "lab/model/Calibration.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Study.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// The spectra of a calibration, a line for each with a small drawing of it.
std::string CalibrationText(const Calibration& calibration, const TextForm& form);

/// What people look for first in detectors, a line for each.
std::string DetectorsText(const std::vector<Vex2Detector>& detectors, const TextForm& form);

/// What a plate shows of its wells.
enum class WellField { kSample, kDetector, kTask };

/// The plate with what its wells hold, and a line above that counts it. Where a well has several
/// texts, they stand one after the other. `name` is what the line calls the field.
std::string WellsText(const PlateContents& contents, WellField field, const std::string& name,
                      const TextForm& form);

/// The plates of the study at `path`, a line for each.
std::string StudyText(const std::string& path, const std::vector<StudyPlate>& plates,
                      const TextForm& form);

}  // namespace vex2::lab
