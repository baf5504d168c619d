#pragma once

#include "lab/record/RunPlan.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// Stores in the document everything in the plan except the readings: header, settings, program,
/// the content of the wells, and the calibration.
void StorePlan(Vex2FileManager& document, const RunPlan& plan);

/// Stores in the document what is known of a live run only at its end: the program, and the number
/// of frames, which is part of the log.
void StoreWhatIsKnownLast(Vex2FileManager& document, const RunPlan& plan);

/// Stores a whole run in the document, which must be empty. The result equals that of a finished
/// recording. To save memory, frees each frame in `plan` after storing it. If the plan has no
/// frames, the run in the document has not started.
void StoreWholeRun(Vex2FileManager& document, RunPlan& plan);

}  // namespace vex2::lab
