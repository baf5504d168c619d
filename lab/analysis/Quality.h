#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// What a person should look at before using the results.
enum class QualityProblem {
  kReplicateDiffers,  ///< a well lies more than half a cycle beside its replicates
  kControlRises,      ///< a no-template control has a quantification cycle
  kSaturated,         ///< readings are at a limit of the document or of the instrument
  kDriftingBaseline,  ///< the baseline rises or falls by a large part of the curve
  kMissingReadings,   ///< readings of a well are missing
  kIncompletePlate,   ///< wells of the setup were not measured, or the run is not complete
  kOutlier,           ///< readings far beside their neighbours were left out
};

/// A finding, and the wells that it is about.
struct QualityFinding {
  QualityProblem problem = QualityProblem::kReplicateDiffers;  ///< what kind it is
  std::string plate;                                           ///< in a study
  std::vector<std::string> wells;  ///< names; empty where it is about the whole plate
  std::string detector;            ///< empty where it is about all of them
  std::string text;                ///< one sentence for people, with the numbers
};

/// "replicate differs", "control rises", "saturated", "drifting baseline", "missing readings",
/// "incomplete plate" or "outlier reading".
VEX2_API std::string_view NameOf(QualityProblem problem);

}  // namespace vex2::lab
