#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/AmplificationCurve.h"
#include "lab/model/Readings.h"
#include "lab/model/RunReader.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A product that melts around one temperature.
struct MeltPeak {
  double temperature = 0;  ///< temperature of the maximum of -dF/dT, degrees Celsius
  double height = 0;       ///< -dF/dT at the maximum, fluorescence per degree
  /// The full width at half the prominence, in degrees. The prominence is the height of the peak
  /// above its base. To find the base, take on each side the lowest value before the next higher
  /// peak; the base is the higher of the two values.
  double width = 0;
  double prominence = 0;  ///< fluorescence per degree
  /// Standard error of `prominence`, from the deviations of the readings. It is the prominence
  /// divided by the number of standard errors by which the derivative falls on both sides.
  double prominenceError = 0;

  /// Whether all fields are equal.
  friend bool operator==(const MeltPeak&, const MeltPeak&) = default;
};

/// The melting stage of one well and detector.
struct MeltCurve {
  AnalysedWell well;    ///< the well with these readings
  std::string channel;  ///< name of the channel; empty for a single channel without a name
  std::vector<double> temperatures;  ///< ascending, degrees Celsius; empty without readings
  std::vector<double> readings;      ///< one for each temperature, in real units
  std::vector<double> derivative;    ///< -dF/dT of the smoothed readings, per degree
  std::vector<MeltPeak> peaks;       ///< ascending by temperature; empty if nothing melts
};

/// The derivative at a temperature is found from the readings up to this distance on both sides, in
/// degrees.
inline constexpr double kMeltWindow = 1.0;

/// The melting curves of `run` and their peaks, in the order of `AmplificationCurvesOf`; in a study
/// plate by plate, without readings those of a plate that has no melting stage.
///
/// The derivative at a temperature is the slope of a parabola that is fitted by least squares to
/// the readings within `kMeltWindow` degrees, or to the nearest five readings if these are fewer
/// (Savitzky and Golay 1964, Anal. Chem. 36:1627, for any distances). Each well has its own
/// temperatures if the recorder gave it some. A peak is a local maximum whose prominence is at
/// least 10 % of the largest in the well, 5 % of the largest in the channel, and more than 8 times
/// its standard error, which is larger at both ends of the curve than in the middle. (Ririe,
/// Rasmussen and Wittwer 1997, "Product differentiation by analysis of DNA melting curves during
/// the polymerase chain reaction", Anal. Biochem. 245:154.)
///
/// If `detector` is given, only its curves are returned. Throws `Error` of class `kDocument` if
/// there is no melting stage with at least five temperatures whose readings have a known meaning,
/// in a study on no plate, and of class `kUsage` for a detector that the run does not have. Also
/// throws the errors of `RunReader::Readings`.
VEX2_API std::vector<MeltCurve> AnalyseMelt(const RunReader& run,
                                            const std::optional<std::string>& detector = {});
/// Finds the melting peaks of one plate from `readings`, the readings of `run`, which the caller
/// has read already. Rules and errors are those of `AnalyseMelt(run, detector)`.
VEX2_API std::vector<MeltCurve> AnalyseMelt(const RunReader& run, const Readings& readings,
                                            const std::optional<std::string>& detector = {});

}  // namespace vex2::lab
