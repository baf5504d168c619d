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

/// Everything that a document will hold at the end of a run. It is known before the run, except for
/// the frames of a live run.
struct RunPlan {
  PlateLayout plate;
  PlateContents contents;  ///< the content of the wells
  Calibration calibration;
  std::vector<unsigned short> wells;            ///< the wells in use, from 1, ascending
  std::vector<std::vector<RunReading>> frames;  ///< in time order; each has one reading per well
  ReadingScale scale;                           ///< scale of the readings
  /// Channel names, Latin-1; empty if each well has one reading in a frame.
  std::vector<std::string> channels;
  std::optional<RunStart> started;  ///< when the run began, if that is known
  std::string assay;                ///< four-character code; if empty, that of a new document
  /// Whether the readings arrive during the recording. `frames` then holds those that have arrived.
  bool isLive = false;
  /// The number of frames of a live run; nothing while it is not known.
  std::optional<std::size_t> liveFrames;
  std::string comment;
  /// Lines of key=value that name the source of the readings. They become part of the document's
  /// log.
  std::string origin;
  /// Whether this library encoded the readings in the frames. The log then states their meaning.
  bool statesReadings = true;

  /// Detectors with details. Those that only `contents` names are added without details.
  std::vector<Vex2Detector> detectors;
  std::vector<std::string> requiredDyes;  ///< in addition to the reporters in `contents`; Latin-1
  std::vector<SettingValue> settings;
  bool hasSettings = true;  ///< if false, the document gets only the settings that `settings` names
  bool hasSetup = true;  ///< if false, the document gets no plate setup unless `contents` has rows
  std::vector<std::uint8_t> program;  ///< if empty, a description is made from the frames
};

/// The number of frames of the whole run; nothing while it is not known.
std::optional<std::size_t> FrameTotal(const RunPlan& plan);

/// The number of readings of a well in a frame.
std::size_t ChannelCount(const RunPlan& plan);

/// The time of the last reading, in milliseconds.
std::uint32_t LastTime(const RunPlan& plan);

/// The index, from 0, of the first frame of a melting stage; the number of frames without one.
std::size_t FirstMelting(const RunPlan& plan);

/// The records of the frame `index`, from 0, in the order of the wells.
std::vector<Vex2WellRecord> FrameRecords(const RunPlan& plan, std::size_t index);

/// The document's log, lines of key=value. A recording can be resumed only by a plan with the same
/// log.
std::string LogText(const RunPlan& plan);

/// A description of the run for users, which is stored as the thermal cycling program.
std::string ProgramText(const RunPlan& plan);

}  // namespace vex2::lab
