#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/model/Calibration.h"
#include "lab/model/PlateContents.h"
#include "lab/model/ReadingScale.h"
#include "lab/model/Run.h"
#include "lab/model/RunReading.h"
#include "lab/model/RunStart.h"
#include "vex2/run/Vex2WellRecord.h"

namespace vex2::lab {

/// Everything that a run's document will hold once the run is over, known beforehand but for a
/// live run's frames.
struct RunPlan {
  PlateLayout plate;
  PlateContents contents;  ///< the content of the wells
  Calibration calibration;
  std::vector<unsigned short> wells;            ///< the wells in use, from 1, ascending
  std::vector<std::vector<RunReading>> frames;  ///< in time order; in each a reading per well
  ReadingScale scale;                           ///< of the readings' values
  std::vector<std::string> channels;  ///< Latin-1; none where a well has one reading in a frame
  std::optional<RunStart> started;    ///< when the run began, if anyone has said
  std::string assay;  ///< a code of four characters; empty is that of a new document
  /// The readings come while they are recorded: `frames` are those that have come.
  bool isLive = false;
  /// How many frames a live run will have had; nothing while it is not known.
  std::optional<std::size_t> liveFrames;
  std::string comment;
  /// Lines of key=value that say where the readings come from; they go into the document's log.
  std::string origin;
  /// Whether the frames hold readings of this library's making, and the log says so.
  bool statesReadings = true;

  std::vector<Vex2Detector> detectors;    ///< besides what the contents say of them
  std::vector<std::string> requiredDyes;  ///< besides the contents' reporters; Latin-1
  std::vector<SettingValue> settings;
  bool hasSettings = true;  ///< otherwise the document gets none that `settings` do not name
  bool hasSetup = true;     ///< otherwise it gets no plate setup, if the contents are empty
  std::vector<std::uint8_t> program;  ///< empty: described from the frames
};

/// How many frames the run will have had at its end; nothing while it is not known.
std::optional<std::size_t> FrameTotal(const RunPlan& plan);

/// How many readings a well has in a frame.
std::size_t ChannelCount(const RunPlan& plan);

/// The time of the last reading, in milliseconds.
std::uint32_t LastTime(const RunPlan& plan);

/// The index, from 0, of the first frame of a melting stage; the number of frames without one.
std::size_t FirstMelting(const RunPlan& plan);

/// The records of the frame `index`, from 0, in the order of the wells.
std::vector<Vex2WellRecord> FrameRecords(const RunPlan& plan, std::size_t index);

/// The document's log, lines of key=value: a recording can be resumed only by a run that has the
/// same.
std::string LogText(const RunPlan& plan);

/// What was run, for a reader's eyes, as the thermal cycling program.
std::string ProgramText(const RunPlan& plan);

}  // namespace vex2::lab
