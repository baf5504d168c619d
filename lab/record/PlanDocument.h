#pragma once

#include "lab/record/RunPlan.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// Stores in the document everything in the plan except the readings: header, settings, program,
/// the content of the wells, and the calibration.
void StorePlan(Vex2FileManager& document, const RunPlan& plan);

/// Puts into the document what is known of a live run only at its end: the number of frames, in
/// the log, and the program.
void StoreWhatIsKnownLast(Vex2FileManager& document, const RunPlan& plan);

/// Puts a whole run into the document, which must be empty: what a recorder would have brought to
/// its file. Takes the frames from `plan` one by one, so that they need no memory twice. A plan
/// without frames makes a document whose run was not started.
void StoreWholeRun(Vex2FileManager& document, RunPlan& plan);

}  // namespace vex2::lab
