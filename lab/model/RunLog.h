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

/// The line with which the recorder's statement in a log begins, by where the readings come from.
inline constexpr std::string_view kMeasuredSource = "source=readings";
inline constexpr std::string_view kSimulatedSource = "source=simulation";

/// What the recorder states in the log of a document whose readings it wrote: the log's last lines,
/// each KEY=VALUE, from the one that names the source on, with "frames" and "scale" once each among
/// them ("frames=unknown" while that is so), and where they are needed "offset", "channels" and
/// "started". A log without such an end is another program's, whatever its lines say.
struct RunLog {
  /// Of the whole run; nothing while a live run goes on whose number of frames nobody has given.
  std::optional<std::uint64_t> frames;
  ReadingScale scale;                 ///< of the readings
  std::vector<std::string> channels;  ///< their names, Latin-1; none where a well has one reading
  std::optional<RunStart> started;    ///< when the run began, if anyone has said

  /// The lines that state this, but for the source.
  std::string Text() const;
  /// Returns nothing for a log in which the recorder states nothing.
  static std::optional<RunLog> Find(std::string_view log);
};

/// `text` as a new log in place of `log`, which keeps what the recorder states there. `text` alone
/// when it has a statement of its own, or `log` has none.
std::string LogKeepingRun(std::string_view text, std::string_view log);

/// Tells which readings of a data block the recorder wrote, so that they can be interpreted. The
/// meaning of all others is their own program's, and not known.
class RecordedReadings {
 public:
  /// The block of `plate` with this tag. The recorder writes raw data ("RAWa") alone.
  RecordedReadings(const Vex2FileManager& plate, std::string_view blockTag);
  /// The block with this tag of a document with this log.
  RecordedReadings(std::string_view log, std::string_view blockTag);

  /// What the log states; nothing if no reading of the block is the recorder's.
  const std::optional<RunLog>& Log() const { return log_; }
  /// The reading in `record`, which frame `frame` (from 0) holds. Returns nothing for a record that
  /// holds anything but what the recorder would have written, and for frames after the run's last
  /// one, which only others can have added.
  std::optional<RunReading> Read(const Vex2WellRecord& record, std::uint64_t frame) const;
  /// The same, faster, of a record that is the recorder's or empty, as `Read` has told before.
  static std::optional<RunReading> ReadKnown(const Vex2WellRecord& record);

 private:
  std::optional<RunLog> log_;
};

}  // namespace vex2::lab
