#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/Readings.h"
#include "lab/model/RunReader.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A well and one of its detectors, whose readings are analysed. Texts are UTF-8.
struct AnalysedWell {
  std::string plate;         ///< the plate's name in a study; empty outside a study
  std::uint16_t number = 0;  ///< from 1, counted by rows of the plate
  std::string name;          ///< of the well, as "A1"
  std::string sample;        ///< empty where none was given
  /// The detector's name. In a document whose wells name no detector this is the channel's name,
  /// empty where the channel has none.
  std::string detector;
  std::string task;  ///< a code, as "UNKN", "STND" or "NTC"; empty where none is given
  std::optional<double> quantity;  ///< as the document gives it; nothing if it does not

  /// Whether all fields are equal.
  friend bool operator==(const AnalysedWell&, const AnalysedWell&) = default;
};

/// The readings of the amplification stage in one well, through the channel of one detector.
struct AmplificationCurve {
  AnalysedWell well;             ///< whose readings these are
  std::string reporter;          ///< the dye of the detector; empty where it is not known
  std::string channel;           ///< that was read; empty for the one channel without a name
  std::vector<double> cycles;    ///< ascending, from 1; empty where there are no readings
  std::vector<double> readings;  ///< one for each cycle, in real units; NaN where one is missing
  /// How many of the readings are the largest number that a document can store, 65535: the true
  /// readings may have been larger.
  std::size_t atStoredLimit = 0;
};

/// The curves of all wells of `run` that have a detector, by wells, and in a well in the order of
/// its detectors. A detector is read through the channel that bears the name of its reporter, and
/// through the only one where there is one; a detector without a channel has a curve without
/// readings. In a document whose wells name no detector, every well with readings has a curve for
/// each channel. In a study they are the curves of its plates, plate by plate.
///
/// Throws `Error` of class `kDocument` when there are no amplification readings whose meaning is
/// known: without frames, or where this library did not record the run; and as
/// `RunReader::Readings` does.
VEX2_API std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run);
/// The curves of one plate from `readings`, the readings of `run`, which the caller has read
/// already. Rules and errors are those of `AmplificationCurvesOf(run)`.
VEX2_API std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run,
                                                               const Readings& readings);

}  // namespace vex2::lab
