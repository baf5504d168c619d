#pragma once

#include <span>
#include <string>
#include <vector>

#include "lab/record/RecordingPlan.h"
#include "lab/record/RunPlan.h"

/// What programs hand to a recorder, in the terms of a document. All throw an error that says what
/// a document cannot hold.
namespace vex2::lab {

/// The plan of a run whose frames are still to come.
RunPlan InternalPlan(const RecordingPlan& plan);

/// The readings of a frame, in the order of the plan's wells. `name` is the frame's in errors.
std::vector<RunReading> EncodedFrame(const RunPlan& plan, const MeasuredFrame& frame,
                                     const std::string& name);

/// The records of a frame, in the order of the plan's wells.
std::vector<Vex2WellRecord> OrderedRecords(const RunPlan& plan, std::span<const RawRecord> frame,
                                           const std::string& name);

}  // namespace vex2::lab
