#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/ReadingScale.h"
#include "lab/model/RunReading.h"
#include "lab/model/RunStart.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// The first line of the recorder's statement in a log: the source of the readings.
inline constexpr std::string_view kMeasuredSource = "source=readings";
inline constexpr std::string_view kSimulatedSource = "source=simulation";

/// What the recorder states in the log of a document that it recorded. The statement is the end of
/// the log: lines KEY=VALUE, from the last line that names the source on. Two lines are always
/// there: "frames" and "scale"; as long as the number of frames is not known, the line is
/// "frames=unknown". There may also be lines with "offset", "channels" and "started". If a log does
/// not end with such lines, another program wrote it.
struct RunLog {
  /// The number of frames of the whole run; nothing during a live run whose number of frames was
  /// not given.
  std::optional<std::uint64_t> frames;
  ReadingScale scale;  ///< scale of the readings
  /// Names of the channels, Latin-1; empty if each well has one reading.
  std::vector<std::string> channels;
  std::optional<RunStart> started;  ///< when the run began, if that is known

  /// The lines of the statement, without the source.
  std::string Text() const;
  /// Finds the statement in `log`. Returns nothing if there is none.
  static std::optional<RunLog> Find(std::string_view log);
};

/// The log that results if a user sets `text` in place of `log`: `text`, followed by the recorder's
/// statement in `log`. If `text` has a statement itself, or `log` has none, returns `text`.
std::string LogKeepingRun(std::string_view text, std::string_view log);

/// Decodes the readings of a data block that the recorder wrote. The meaning of all other readings
/// is not known.
class RecordedReadings {
 public:
  /// For the block of `plate` with this tag. The recorder writes only raw readings ("RAWa").
  RecordedReadings(const Vex2FileManager& plate, std::string_view blockTag);
  /// For the block with this tag of a document with this log.
  RecordedReadings(std::string_view log, std::string_view blockTag);

  /// The recorder's statement in the log; nothing if the recorder wrote no reading of the block.
  const std::optional<RunLog>& Log() const { return log_; }
  /// Decodes `record` of frame `frame` (from 0). Returns nothing if the record differs from what
  /// the recorder would have written, or if the frame comes after the last one of the run, so that
  /// another program added it.
  std::optional<RunReading> Read(const Vex2WellRecord& record, std::uint64_t frame) const;
  /// Decodes a record that `Read` accepted before; faster than `Read`. Returns nothing for an empty
  /// record.
  static std::optional<RunReading> ReadKnown(const Vex2WellRecord& record);

 private:
  std::optional<RunLog> log_;
};

}  // namespace vex2::lab
