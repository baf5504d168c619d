#pragma once

#include <span>
#include <string>
#include <vector>

#include "lab/record/RecordingPlan.h"
#include "lab/record/RunPlan.h"

/// Converts the public types of a recording to those of a document. If a document cannot hold a
/// value, the functions throw an error that names it.
namespace vex2::lab {

/// The plan of a run whose frames are still to come.
RunPlan InternalPlan(const RecordingPlan& plan);

/// The encoded readings of a frame, in the order of the plan's wells. Errors call the frame `name`.
std::vector<RunReading> EncodedFrame(const RunPlan& plan, const MeasuredFrame& frame,
                                     const std::string& name);

/// The records of a frame, in the order of the plan's wells. Errors call the frame `name`.
std::vector<Vex2WellRecord> OrderedRecords(const RunPlan& plan, std::span<const RawRecord> frame,
                                           const std::string& name);

}  // namespace vex2::lab
