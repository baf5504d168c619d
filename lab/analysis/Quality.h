#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The kinds of problems that the user should look at before using the results.
enum class QualityProblem {
  kReplicateDiffers,  ///< a well differs from its replicates by more than half a cycle
  kControlRises,      ///< a no-template control has a quantification cycle
  kSaturated,         ///< readings are at a limit of the document or of the instrument
  kDriftingBaseline,  ///< over the run, the baseline rises or falls by a large part of the curve
  kMissingReadings,   ///< readings of a well are missing
  kIncompletePlate,   ///< wells of the setup were not measured, or the run is not complete
  kOutlier,           ///< readings that differ much from their neighbours were left out
  kSettingNotUsed,    ///< a setting of the document for the analysis was not used
  kNoStandardCurve,   ///< there is no standard curve, or standards are not part of it
};

/// A problem, and the wells with it.
struct QualityFinding {
  QualityProblem problem = QualityProblem::kReplicateDiffers;  ///< the kind of problem
  std::string plate;                                           ///< name of the plate in a study
  std::vector<std::string> wells;  ///< names of the wells; empty for the whole plate
  std::string detector;            ///< empty for all detectors
  std::string text;                ///< one sentence for the user, with the numbers
};

/// The name of a problem: "replicate differs", "control rises", "saturated", "drifting baseline",
/// "missing readings", "incomplete plate", "outlier reading", "setting not used" or "no standard
/// curve".
VEX2_API std::string_view NameOf(QualityProblem problem);

}  // namespace vex2::lab
