#include "lab/analysis/CurveShape.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace vex2::lab {

namespace {

constexpr std::size_t kHalfWindow = 2;        // of the smoothing: five readings
constexpr std::size_t kFirstTakeOff = 4;      // the fifth cycle; those before settle
constexpr std::size_t kBaselineBegin = 2;     // the third cycle
constexpr std::size_t kCyclesBeforeRise = 8;  // left out between baseline and take-off
constexpr std::size_t kFewestInBaseline = 3;

// Drops readings that are missing at either end, and fills those between on straight lines.
void fill(const AmplificationCurve& curve, CurveShape& shape) {
  std::size_t pending = 0;
  for (std::size_t i = 0; i < curve.readings.size(); ++i) {
    const double reading = curve.readings[i];
    if (!std::isfinite(reading)) {
      if (!shape.readings.empty()) ++pending;
      continue;
    }
    const double before = shape.readings.empty() ? reading : shape.readings.back();
    const double from = shape.cycles.empty() ? 0 : shape.cycles.back();
    for (std::size_t k = i - pending; k < i; ++k) {
      const double part = (curve.cycles[k] - from) / (curve.cycles[i] - from);
      shape.cycles.push_back(curve.cycles[k]);
      shape.readings.push_back(before + part * (reading - before));
    }
    shape.filled += pending;
    pending = 0;
    shape.cycles.push_back(curve.cycles[i]);
    shape.readings.push_back(reading);
  }
}

// The second derivative of the parabola through five readings: Savitzky and Golay's weights.
double secondDerivative(std::span<const double> y, std::size_t i) {
  return (2 * y[i - 2] - y[i - 1] - 2 * y[i] - y[i + 1] + 2 * y[i + 2]) / 7;
}

void findTakeOff(CurveShape& shape) {
  const std::span<const double> y = shape.readings;
  const std::size_t last = y.size() - 1 - kHalfWindow;
  std::size_t best = kFirstTakeOff;
  for (std::size_t i = best + 1; i <= last; ++i) {
    if (secondDerivative(y, i) > secondDerivative(y, best)) best = i;
  }
  shape.takeOff = static_cast<double>(best);
  shape.isStillRising = best == last;
  if (shape.isStillRising) return;
  const double before = secondDerivative(y, best - 1);
  const double after = secondDerivative(y, best + 1);
  const double bend = before - 2 * secondDerivative(y, best) + after;
  if (bend < 0) shape.takeOff += std::clamp((before - after) / (2 * bend), -0.5, 0.5);
}

// Fits the baseline to the readings from index `first` to before `end`.
void fitBaseline(CurveShape& shape, std::size_t first, std::size_t end) {
  const auto x = std::span(shape.cycles).subspan(first, end - first);
  const auto y = std::span(shape.readings).subspan(first, end - first);
  shape.baselineCycles = {x.front(), x.back()};
  const auto fit = x.size() >= kFewestForLine ? FitLine(x, y) : std::nullopt;
  shape.baseline = fit ? fit->line : Line{.intercept = Mean(y), .slope = 0};
  shape.noise = fit ? fit->residualDeviation : Deviation(y).value_or(0);
  shape.corrected.resize(shape.readings.size());
  for (std::size_t i = 0; i < shape.readings.size(); ++i) {
    shape.corrected[i] = shape.readings[i] - shape.baseline.At(shape.cycles[i]);
  }
  const auto from = shape.corrected.begin() + static_cast<std::ptrdiff_t>(shape.takeOff);
  const auto top = std::max_element(from, shape.corrected.end());
  shape.top = static_cast<std::size_t>(top - shape.corrected.begin());
  shape.amplitude = *top;
}

void fitOwnBaseline(CurveShape& shape) {
  const auto rise = static_cast<std::size_t>(shape.takeOff) + 1;
  const std::size_t end = rise > kCyclesBeforeRise ? rise - kCyclesBeforeRise : 0;
  fitBaseline(shape, kBaselineBegin, std::max(end, kBaselineBegin + kFewestInBaseline));
}

void fitGivenBaseline(CurveShape& shape, const CycleRange& range) {
  const auto first = std::lower_bound(shape.cycles.begin(), shape.cycles.end(), range.first);
  const auto end = std::upper_bound(first, shape.cycles.end(), range.last);
  fitBaseline(shape, static_cast<std::size_t>(first - shape.cycles.begin()),
              static_cast<std::size_t>(end - shape.cycles.begin()));
}

double between(const std::vector<double>& values, double index) {
  const auto below = static_cast<std::size_t>(index);
  if (below + 1 >= values.size()) return values.back();
  const double part = index - static_cast<double>(below);
  return values[below] + part * (values[below + 1] - values[below]);
}

}  // namespace

double CurveShape::CycleAt(double index) const {
  return between(cycles, index);
}

double CurveShape::CorrectedAt(double index) const {
  return between(corrected, index);
}

std::size_t CyclesWithin(const std::vector<double>& cycles, const CycleRange& range) {
  return static_cast<std::size_t>(std::count_if(cycles.begin(), cycles.end(), [&](double cycle) {
    return cycle >= range.first && cycle <= range.last;
  }));
}

std::optional<CurveShape> ShapeOf(const AmplificationCurve& curve,
                                  const std::optional<CycleRange>& baseline) {
  CurveShape shape;
  fill(curve, shape);
  if (shape.cycles.size() < kFewestCycles) return std::nullopt;
  findTakeOff(shape);
  if (baseline && CyclesWithin(shape.cycles, *baseline) >= kFewestInBaseline) {
    fitGivenBaseline(shape, *baseline);
  } else {
    fitOwnBaseline(shape);
  }
  return shape;
}

void UseWholeBaseline(CurveShape& shape) {
  const double noise = shape.noise;
  const double amplitude = shape.amplitude;
  fitBaseline(shape, kBaselineBegin, shape.cycles.size());
  shape.noise = noise;
  shape.amplitude = amplitude;
}

std::optional<double> CrossingOf(const CurveShape& shape, double threshold) {
  if (!(shape.amplitude >= threshold)) return std::nullopt;
  std::size_t after = shape.top;
  while (after > 0 && shape.corrected[after - 1] >= threshold) --after;
  if (after == 0) return std::nullopt;
  const double low = shape.corrected[after - 1];
  const double high = shape.corrected[after];
  // Where noise takes the reading before to 0 or below, there is no logarithm of it.
  const double part =
      low > 0 ? std::log(threshold / low) / std::log(high / low) : (threshold - low) / (high - low);
  return shape.CycleAt(static_cast<double>(after - 1) + part);
}

}  // namespace vex2::lab
