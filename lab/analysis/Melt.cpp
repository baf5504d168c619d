#include "lab/analysis/Melt.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "lab/Guarded.h"
#include "lab/analysis/MeltPeaks.h"
#include "lab/analysis/StageReadings.h"
#include "lab/analysis/Statistics.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kFewestTemperatures = 5;
constexpr double kLeastOfWell = 0.1;      // fraction of the largest prominence in the well
constexpr double kLeastOfChannel = 0.05;  // fraction of the largest prominence in the channel
constexpr double kLeastInErrors = 8;

/// A curve, and the values by which its peaks are judged.
struct MeltCase {
  MeltCurve curve;
  double largest = 0;  ///< largest prominence
};

// Adds the readings sorted by temperature. Several readings at one temperature are replaced by
// their mean.
void addReadings(const std::vector<double>& temperatures, const std::vector<double>& readings,
                 MeltCurve& curve) {
  std::map<double, std::vector<double>> sorted;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (std::isfinite(readings[i]) && std::isfinite(temperatures[i]))
      sorted[temperatures[i]].push_back(readings[i]);
  }
  for (const auto& [temperature, values] : sorted) {
    curve.temperatures.push_back(temperature);
    curve.readings.push_back(Mean(values));
  }
}

void findPeaks(MeltCase& melt) {
  MeltCurve& curve = melt.curve;
  if (curve.temperatures.size() < kFewestTemperatures) return;
  MeltDerivative derivative = DerivativeOf(curve.temperatures, curve.readings);
  const double step = SmallestStep(curve.readings);
  if (step == 0) {  // so that no rounding of the fit counts as a peak
    return curve.derivative.assign(curve.readings.size(), 0);
  }
  // Readings that were rounded to steps differ from the true ones by up to half a step.
  const double noise = std::max(derivative.noise, step / std::sqrt(12.0));
  curve.derivative = std::move(derivative.values);
  curve.peaks = AllPeaks(curve.temperatures, curve.derivative, derivative.errors);
  for (MeltPeak& peak : curve.peaks) {
    peak.prominenceError *= noise;
    melt.largest = std::max(melt.largest, peak.prominence);
  }
}

void addPlate(const RunReader& run, const Readings& readings, const StageReadings& stage,
              const std::string& plate, std::vector<MeltCase>& cases) {
  for (AnalysedSource& source : SourcesOf(run, readings, stage.channels)) {
    MeltCase& melt = cases.emplace_back();
    addReadings(TemperaturesOf(source, stage, readings),
                ReadingsOf(source, stage, readings.WellCount()), melt.curve);
    if (source.channel) melt.curve.channel = stage.channels[*source.channel];
    melt.curve.well = std::move(source.well);
    melt.curve.well.plate = plate;
  }
}

std::vector<MeltCurve> analyse(const std::string& path, std::vector<MeltCase> cases,
                               const std::optional<std::string>& detector) {
  if (std::none_of(cases.begin(), cases.end(), [](const MeltCase& melt) {
        return melt.curve.temperatures.size() >= kFewestTemperatures;
      })) {
    throw Error(ErrorCode::kDocument, path,
                "cannot determine melting curves: the melting stage has fewer than five "
                "temperatures with readings");
  }
  std::map<std::string, double> largest;  // by channel
  for (MeltCase& melt : cases) {
    findPeaks(melt);
    largest[melt.curve.channel] = std::max(largest[melt.curve.channel], melt.largest);
  }
  // Remove the other detectors only now, since a peak is judged by the largest peak of its channel.
  KeepDetector(cases, detector,
               [](const MeltCase& melt) -> const AnalysedWell& { return melt.curve.well; });
  std::vector<MeltCurve> curves;
  for (MeltCase& melt : cases) {
    const double limit =
        std::max(kLeastOfWell * melt.largest, kLeastOfChannel * largest[melt.curve.channel]);
    std::erase_if(melt.curve.peaks, [&](const MeltPeak& peak) {
      return !(peak.prominence >= limit) ||
             !(peak.prominence > kLeastInErrors * peak.prominenceError);
    });
    curves.push_back(std::move(melt.curve));
  }
  return curves;
}

}  // namespace

std::vector<MeltCurve> AnalyseMelt(const RunReader& run,
                                   const std::optional<std::string>& detector) {
  const std::string path = run.Path().string();
  return Guarded(path, [&] {
    std::vector<MeltCase> cases;
    ForEachStage(run, Stage::kMelting,
                 [&](const RunReader& plate, const Readings& readings, const StageReadings& stage,
                     const std::string& name) { addPlate(plate, readings, stage, name, cases); });
    return analyse(path, std::move(cases), detector);
  });
}

std::vector<MeltCurve> AnalyseMelt(const RunReader& run, const Readings& readings,
                                   const std::optional<std::string>& detector) {
  const std::string path = run.Path().string();
  return Guarded(path, [&] {
    std::vector<MeltCase> cases;
    addPlate(run, readings, StageReadingsOf(path, readings, Stage::kMelting), {}, cases);
    return analyse(path, std::move(cases), detector);
  });
}

}  // namespace vex2::lab
