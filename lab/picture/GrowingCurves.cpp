#include "lab/picture/GrowingCurves.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "lab/Error.h"
#include "lab/SystemError.h"
#include "lab/picture/Colouring.h"

namespace vex2::lab {

namespace {

// The curves of at most this many wells are drawn, as many as a large plate has. More curves could
// not be distinguished.
constexpr std::size_t kMostWells = 1536;
// The axis grows by this many cycles at a time, so that the curves do not shrink with each frame.
constexpr double kStep = 10;
constexpr double kLeastCycles = 40;

// A curve, and the value that determines its colour.
struct Curve {
  std::size_t well = 0;
  std::size_t channel = 0;
  std::string group;
};

std::optional<std::size_t> channelOf(const Target& target,
                                     const std::vector<std::string>& channels) {
  if (channels.size() < 2) return 0;
  const auto found = std::find(channels.begin(), channels.end(), target.reporter);
  if (found == channels.end()) return std::nullopt;
  return static_cast<std::size_t>(found - channels.begin());
}

// A well with detectors has a curve for each of them. If no well of the plate has any, each well
// has a curve for each channel.
std::vector<Curve> curvesOf(const Plate& plate, const std::vector<std::uint16_t>& wells,
                            const std::vector<std::string>& channels, std::size_t channelCount) {
  const bool hasTargets = std::any_of(plate.wells.begin(), plate.wells.end(),
                                      [](const Well& well) { return !well.targets.empty(); });
  std::vector<Curve> curves;
  for (std::size_t i = 0; i < wells.size(); ++i) {
    const Well* well = plate.Find(wells[i]);
    if (!hasTargets) {
      for (std::size_t channel = 0; channel < channelCount; ++channel) {
        curves.push_back({i, channel, channel < channels.size() ? channels[channel] : ""});
      }
    } else if (well != nullptr) {
      for (const Target& target : well->targets) {
        const auto channel = channelOf(target, channels);
        if (channel) curves.push_back({i, *channel, target.detector});
      }
    }
  }
  return curves;
}

}  // namespace

void GrowingCurves::Add(const Frame& frame) {
  if (frame.wells.empty()) return;
  if (wells_.empty()) {
    for (const WellReading& reading : frame.wells) {
      if (wells_.size() < kMostWells) wells_.push_back(reading.well);
    }
  }
  if (curves_.empty() || frame.position.stage != last_.stage) {
    curves_.assign(wells_.size(), {});
  }
  last_ = frame.position;
  const bool isMelting = last_.stage == Stage::kMelting && last_.temperature;
  const double x = isMelting     ? *last_.temperature
                   : last_.cycle ? *last_.cycle
                                 : static_cast<double>(frame.index + 1);
  for (std::size_t i = 0; i < std::min(wells_.size(), frame.wells.size()); ++i) {
    const WellReading& reading = frame.wells[i];
    isKnown_ = !reading.fluorescence.empty();
    const std::size_t channels = isKnown_ ? reading.fluorescence.size() : 1;
    curves_[i].resize(std::max(curves_[i].size(), channels));
    for (std::size_t channel = 0; channel < channels; ++channel) {
      const double y = isKnown_ ? reading.fluorescence[channel] : reading.values[0];
      if (std::isfinite(y)) curves_[i][channel].push_back({x, y});
    }
  }
}

Scene GrowingCurves::axes() const {
  Scene scene;
  const bool isMelting = last_.stage == Stage::kMelting;
  scene.x.label = isMelting ? "temperature, °C" : isKnown_ ? "cycle" : "frame";
  scene.y.label = isKnown_ ? "fluorescence" : "stored value";
  return scene;
}

Scene GrowingCurves::Build(const RunReader& run, const std::vector<std::string>& channels) const {
  Scene scene = axes();
  const std::size_t channelCount = curves_.empty() ? 0 : curves_.front().size();
  const auto curves = curvesOf(run.Plate(), wells_, channels, channelCount);
  std::vector<ColourValue> values;
  for (const Curve& curve : curves) values.push_back({curve.group, {}});
  const Colouring colouring(ColourBy::kDetector, values);
  scene.legend = colouring.Legend();
  for (std::string& name : scene.legend.groups) name = Escaped(name);
  std::vector<double> x;
  std::vector<double> y;
  for (const Curve& curve : curves) {
    if (curve.channel >= curves_[curve.well].size()) continue;
    const Points& points = curves_[curve.well][curve.channel];
    if (points.empty()) continue;
    scene.series.push_back(
        {.look = colouring.Of({curve.group, {}}), .isDots = false, .points = points});
    for (const ScenePoint& point : points) {
      x.push_back(point.x);
      y.push_back(point.y);
    }
  }
  if (last_.stage != Stage::kMelting && !x.empty()) {
    const double last = *std::max_element(x.begin(), x.end());
    x.push_back(1);
    x.push_back(std::max(std::ceil(last / kStep) * kStep, kLeastCycles));
  }
  FitAxis(scene.x, x, 0);
  FitAxis(scene.y, y, 0.05);
  return scene;
}

}  // namespace vex2::lab
