#pragma once

#include <string>
#include <vector>

#include "lab/model/Calibration.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Study.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// The spectra of a calibration, one line for each, with a small drawing.
std::string CalibrationText(const Calibration& calibration, const TextForm& form);

/// The fields of detectors that users look for first, one line for each detector.
std::string DetectorsText(const std::vector<Vex2Detector>& detectors, const TextForm& form);

/// The field of the wells to show.
enum class WellField { kSample, kDetector, kTask };

/// A plate with the field `field` of each well, and above it a line with the numbers of wells and
/// detectors. If a well has several rows, their texts are joined. The line calls the field `name`.
std::string WellsText(const PlateContents& contents, WellField field, const std::string& name,
                      const TextForm& form);

/// The plates of the study at `path`, one line for each.
std::string StudyText(const std::string& path, const std::vector<StudyPlate>& plates,
                      const TextForm& form);

}  // namespace vex2::lab
