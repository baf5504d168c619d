#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/exchange/CsvReader.h"
#include "lab/record/FrameEncoder.h"
#include "lab/record/RunPlan.h"

namespace vex2::lab {

/// Where a measured run's readings are, and how to store them.
struct MeasuredRunFiles {
  std::string readings;  ///< CSV: well,stage,cycle,time_s,temperature_c,fluorescence and a channel
  std::string wells;     ///< CSV: well,sample,target,task,quantity,reporter
  std::optional<ReadingScale> scale;    ///< without offset; nothing is the one that loses least
  std::optional<DecimalNumber> offset;  ///< nothing is none, or what goes with a chosen scale
  std::vector<std::string> channels;    ///< Latin-1; none: those that the readings name
  std::optional<RunStart> started;      ///< when the run began
  std::string assay;                    ///< a code of four characters, or empty
  CsvFormat readingsFormat = {};        ///< how the readings file is written
  CsvFormat wellsFormat = {};           ///< how the wells file is written
  bool isExact = false;                 ///< what would have to be rounded is refused
};

struct MeasuredRun {
  RunPlan plan;
  Rounding rounding;          ///< what the document does not hold as it was measured
  RoundedNumbers quantities;  ///< what it does not hold as the wells file has it
};

/// The run that the files hold. Every well of the wells file has exactly one reading of each
/// channel in every frame, else an error names what is missing or wrong and its row.
MeasuredRun LoadMeasuredRun(const MeasuredRunFiles& files);

/// The plan of the run that the files hold, without the readings, which are still to come, and
/// without their scale. Sets `quantities` to what was rounded of the quantities in the wells.
RunPlan PlanMeasuredRun(const MeasuredRunFiles& files, RoundedNumbers& quantities);

/// Brings the plan's frames into the order of their first readings' times; frames of the same time
/// stay as they are.
void SortFrames(RunPlan& plan);

/// The scale that was asked for; nothing if none was.
std::optional<ReadingScale> GivenScale(const MeasuredRunFiles& files);

}  // namespace vex2::lab
