#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/csv/CsvReader.h"
#include "lab/record/FrameEncoder.h"
#include "lab/record/RunPlan.h"

namespace vex2::lab {

/// The files of a measured run, and how to store its readings.
struct MeasuredRunFiles {
  std::string readings;  ///< CSV: well,stage,cycle,time_s,temperature_c,fluorescence and a channel
  std::string wells;     ///< CSV: well,sample,target,task,quantity,reporter
  /// The scale, without offset. If it is not given, the scale that loses least is chosen.
  std::optional<ReadingScale> scale;
  /// If it is not given, the offset is 0, or it is chosen with the scale.
  std::optional<DecimalNumber> offset;
  std::vector<std::string> channels;  ///< Latin-1; if empty, those that the readings name
  std::optional<RunStart> started;    ///< when the run began
  std::string assay;                  ///< four-character code, or empty
  CsvFormat readingsFormat = {};      ///< format of the readings file
  CsvFormat wellsFormat = {};         ///< format of the wells file
  bool isExact = false;               ///< refuse numbers that would have to be rounded
};

struct MeasuredRun {
  RunPlan plan;
  Rounding rounding;          ///< the measured numbers that were rounded
  RoundedNumbers quantities;  ///< the quantities in the wells file that were rounded
};

/// Loads the run in the files. Every well of the wells file must have exactly one reading of each
/// channel in every frame. If not, throws an error that says what is missing or wrong, and in which
/// row.
MeasuredRun LoadMeasuredRun(const MeasuredRunFiles& files);

/// The plan of the run in the files, still without readings and their scale. Sets `quantities` to
/// what was rounded of the quantities in the wells.
RunPlan PlanMeasuredRun(const MeasuredRunFiles& files, RoundedNumbers& quantities);

/// Sorts the frames of the plan by time: each frame by its earliest reading. Frames with the same
/// time keep their order.
void SortFrames(RunPlan& plan);

/// The scale that the caller gave, with its offset; nothing if none was given.
std::optional<ReadingScale> GivenScale(const MeasuredRunFiles& files);

}  // namespace vex2::lab
