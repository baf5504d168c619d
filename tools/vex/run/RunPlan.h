#pragma once

#include <string>
#include <vector>

#include "tools/vex/document/RunReading.h"
#include "tools/vex/setup/Calibration.h"
#include "tools/vex/setup/PlateContents.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::tool {

/// Everything that a run's document will hold once the run is over, known beforehand.
struct RunPlan {
  PlateLayout plate;
  PlateContents contents;  ///< what stands in the wells
  Calibration calibration;
  std::vector<unsigned short> wells;            ///< the wells in use, from 1, ascending
  std::vector<std::vector<RunReading>> frames;  ///< in time order; in each a reading per well
  std::uint32_t scale = 1;                      ///< by which the readings' values were multiplied
  std::string comment;
  /// Lines of key=value that tell where the readings come from; they go into the document's log.
  std::string origin;
};

/// The records of the frame `index`, from 0, in the order of the wells.
std::vector<Vex2WellRecord> FrameRecords(const RunPlan& plan, std::size_t index);

/// The document's log, lines of key=value: a recording can be gone on with only by a run that has
/// the same.
std::string LogText(const RunPlan& plan);

/// What was run, for a reader's eyes, as the thermal cycling program.
std::string ProgramText(const RunPlan& plan);

}  // namespace vex2::tool
