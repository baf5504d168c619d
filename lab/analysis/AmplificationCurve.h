#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/Readings.h"
#include "lab/model/RunReader.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A well and one of its detectors whose readings are analysed. Texts are UTF-8.
struct AnalysedWell {
  std::string plate;         ///< name of the plate in a study; empty for other documents
  std::uint16_t number = 0;  ///< well number from 1, counted along the rows of the plate
  std::string name;          ///< name of the well, such as "A1"
  std::string sample;        ///< empty if none was given
  /// The name of the detector. In a document whose wells name no detector, it is the name of the
  /// channel, which is empty if the channel has none.
  std::string detector;
  std::string task;  ///< a code, such as "UNKN", "STND" or "NTC"; empty if none is given
  std::optional<double> quantity;  ///< quantity in the document; nothing if it has none

  /// Whether all fields are equal.
  friend bool operator==(const AnalysedWell&, const AnalysedWell&) = default;
};

/// The amplification readings of one well in the channel of one detector.
struct AmplificationCurve {
  AnalysedWell well;             ///< the well with these readings
  std::string reporter;          ///< the dye of the detector; empty if it is not known
  std::string channel;           ///< name of the channel; empty for a single channel without a name
  std::vector<double> cycles;    ///< ascending, from 1; empty if there are no readings
  std::vector<double> readings;  ///< one for each cycle, in real units; NaN for a missing one
  /// The number of readings that are stored as 65535, the largest number in a document. The true
  /// readings may have been larger.
  std::size_t atStoredLimit = 0;
  /// Whether the plate was measured at all. In a study there may be plates without readings.
  bool isPlateMeasured = true;
};

/// The curves of `run`: one for each well and each of its detectors, sorted by well, and within a
/// well in the order of its detectors. For a study, the curves of its plates, plate by plate; those
/// of a plate that has no amplification readings with a known meaning have no readings.
///
/// The readings of a detector are those of the channel with the name of its reporter. If there is
/// only one channel, it belongs to all detectors. A detector without a channel has a curve without
/// readings. In a document whose wells name no detector, every well with readings has a curve for
/// each channel.
///
/// Throws `Error` of class `kDocument` if there are no amplification readings with a known meaning,
/// in a study on no plate: the document has no frames, or this library did not record the run. Also
/// throws the errors of `RunReader::Readings`.
VEX2_API std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run);
/// The curves of one plate from `readings`, the readings of `run`, which the caller has read
/// already. Rules and errors are those of `AmplificationCurvesOf(run)`.
VEX2_API std::vector<AmplificationCurve> AmplificationCurvesOf(const RunReader& run,
                                                               const Readings& readings);

}  // namespace vex2::lab
