#include "lab/analysis/CurveShape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

namespace vex2::lab {

namespace {

constexpr std::size_t kHalfWindow = 2;  // the smoothing uses five readings
// Index of the fifth cycle; earlier readings may still settle.
constexpr std::size_t kFirstTakeOff = 4;
constexpr std::size_t kBaselineBegin = 2;     // index of the third cycle
constexpr std::size_t kCyclesBeforeRise = 8;  // cycles left out between baseline and take-off
constexpr std::size_t kFewestInBaseline = 3;
constexpr double kOutlierInNoise = 10;
constexpr double kOutlier = 0.05;  // fraction of the range of the readings

// The distance of adjacent cycles: 1, or 2 if only every other cycle is read.
double usualStep(const std::vector<double>& cycles) {
  std::vector<double> steps;
  for (std::size_t i = 1; i < cycles.size(); ++i) steps.push_back(cycles[i] - cycles[i - 1]);
  return Median(std::move(steps));
}

std::size_t cyclesBetween(double before, double after, double step) {
  constexpr double kMost = 1e6;  // more than the number of cycles that a document can hold
  const double steps = std::round((after - before) / step);
  return steps > 1 ? static_cast<std::size_t>(std::min(steps, kMost)) - 1 : 0;
}

std::vector<std::size_t> measuredIn(const AmplificationCurve& curve) {
  std::vector<std::size_t> measured;
  for (std::size_t i = 0; i < curve.readings.size(); ++i) {
    if (std::isfinite(curve.readings[i])) measured.push_back(i);
  }
  return measured;
}

// Whether the reading is an outlier: above or below at least three of its four neighbours, by more
// than `limit` and by more than these three differ. If readings only rise or only fall, none of
// them is an outlier.
bool isOutlier(std::span<const double> y, std::size_t i, double limit) {
  constexpr std::size_t kWindow = 5;
  const std::size_t first = std::min(i - std::min<std::size_t>(i, 2), y.size() - kWindow);
  std::array<double, kWindow - 1> beside{};
  for (std::size_t k = 0, next = 0; k < kWindow; ++k) {
    if (first + k != i) beside[next++] = y[first + k];
  }
  std::sort(beside.begin(), beside.end());
  const bool isInMiddle = first + 2 == i;
  const double above = y[i] - beside[2];
  const double below = beside[1] - y[i];
  // Near an end of the curve, a rise may look like a reading that is too high, but not like one
  // that is too low.
  return (isInMiddle && above > limit && above > beside[2] - beside[0]) ||
         (below > limit && below > beside[3] - beside[1]);
}

// Removes the outliers from `measured`.
void dropOutliers(const AmplificationCurve& curve, std::vector<std::size_t>& measured,
                  CurveShape& shape) {
  std::vector<double> y;
  for (const std::size_t index : measured) y.push_back(curve.readings[index]);
  shape.readingNoise = ReadingNoise(y);
  if (y.size() < kFewestCycles) return;
  const auto [low, high] = std::minmax_element(y.begin(), y.end());
  const double limit = std::max(kOutlierInNoise * shape.readingNoise, kOutlier * (*high - *low));
  std::vector<std::size_t> kept;
  for (std::size_t i = 0; i < y.size(); ++i) {
    const bool isEnd = i == 0 || i + 1 == y.size();
    if (isEnd || !isOutlier(y, i, limit)) kept.push_back(measured[i]);
  }
  shape.outliers = measured.size() - kept.size();
  measured = std::move(kept);
}

// Puts the readings on an axis without gaps. Leaves out missing readings at either end, and fills
// in those between others on straight lines. Returns which ones were filled in.
std::vector<bool> fill(const AmplificationCurve& curve, CurveShape& shape) {
  std::vector<std::size_t> measured = measuredIn(curve);
  dropOutliers(curve, measured, shape);
  const double step = curve.cycles.size() > 1 ? usualStep(curve.cycles) : 1;
  std::vector<bool> isFilled;
  for (const std::size_t index : measured) {
    const double cycle = curve.cycles[index];
    const double reading = curve.readings[index];
    if (!shape.cycles.empty()) {
      const double from = shape.cycles.back();
      const double before = shape.readings.back();
      const std::size_t between = cyclesBetween(from, cycle, step);
      for (std::size_t k = 1; k <= between; ++k) {
        const double part = static_cast<double>(k) / static_cast<double>(between + 1);
        shape.cycles.push_back(from + part * (cycle - from));
        shape.readings.push_back(before + part * (reading - before));
      }
      shape.filled += between;
    }
    isFilled.resize(shape.cycles.size(), true);
    shape.cycles.push_back(cycle);
    shape.readings.push_back(reading);
    isFilled.push_back(false);
  }
  shape.filled -= std::min(shape.filled, shape.outliers);
  return isFilled;
}

// The second derivative of the parabola through five readings, with the weights of Savitzky and
// Golay.
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
  shape.isRisingFirst = best == kFirstTakeOff;
  if (shape.isStillRising) return;
  const double before = secondDerivative(y, best - 1);
  const double after = secondDerivative(y, best + 1);
  const double bend = before - 2 * secondDerivative(y, best) + after;
  if (bend < 0) shape.takeOff += std::clamp((before - after) / (2 * bend), -0.5, 0.5);
}

// What a reading less the baseline is uncertain by, at any cycle. A line is the more uncertain, the
// farther away its cycles are: in thirty cycles a line through eight of them can climb far above
// its noise.
class CorrectedError {
 public:
  CorrectedError(double noise, const std::optional<LineFit>& fit, std::size_t cycles)
      : noise_(noise), fit_(fit), level_(1 + 1 / static_cast<double>(cycles)) {}

  double At(double cycle) const {
    if (!fit_) return noise_ * std::sqrt(level_);
    const double distance = cycle - fit_->meanX;
    return noise_ * std::sqrt(level_ + distance * distance / fit_->sumOfSquares);
  }

 private:
  double noise_;
  const std::optional<LineFit>& fit_;
  double level_;
};

// Finds how high the curve stays for two cycles from its take-off on.
void findLasting(CurveShape& shape, const CorrectedError& error) {
  constexpr double kNone = -std::numeric_limits<double>::infinity();
  shape.lasting = shape.lastingInErrors = kNone;
  const auto inErrors = [&](std::size_t i) {
    const double uncertain = error.At(shape.cycles[i]);
    if (uncertain > 0) return shape.corrected[i] / uncertain;
    return shape.corrected[i] > 0 ? std::numeric_limits<double>::infinity() : kNone;
  };
  for (auto i = static_cast<std::size_t>(shape.takeOff); i + 1 < shape.corrected.size(); ++i) {
    shape.lasting = std::max(shape.lasting, std::min(shape.corrected[i], shape.corrected[i + 1]));
    shape.lastingInErrors = std::max(shape.lastingInErrors, std::min(inErrors(i), inErrors(i + 1)));
  }
}

// Fits the baseline to the readings with the indexes from `first` to below `end`.
void fitBaseline(CurveShape& shape, std::size_t first, std::size_t end) {
  const auto x = std::span(shape.cycles).subspan(first, end - first);
  const auto y = std::span(shape.readings).subspan(first, end - first);
  shape.baselineCycles = {x.front(), x.back()};
  const auto fit = x.size() >= kFewestForLine ? FitLine(x, y) : std::nullopt;
  shape.baseline = fit ? fit->line : Line{.intercept = Mean(y), .slope = 0};
  // A few readings can be close together by chance, so take at least the noise of the whole curve.
  shape.noise =
      fit ? fit->residualDeviation : std::max(Deviation(y).value_or(0), shape.readingNoise);
  shape.corrected.resize(shape.readings.size());
  for (std::size_t i = 0; i < shape.readings.size(); ++i) {
    shape.corrected[i] = shape.readings[i] - shape.baseline.At(shape.cycles[i]);
  }
  const auto from = shape.corrected.begin() + static_cast<std::ptrdiff_t>(shape.takeOff);
  const auto top = std::max_element(from, shape.corrected.end());
  shape.top = static_cast<std::size_t>(top - shape.corrected.begin());
  shape.amplitude = *top;
  findLasting(shape, {std::max(shape.noise, shape.readingNoise), fit, x.size()});
}

bool isFilledAround(const std::vector<bool>& isFilled, double takeOff) {
  const auto center = static_cast<std::size_t>(takeOff + 0.5);
  const std::size_t first = center - std::min(center, kHalfWindow + 1);
  const std::size_t end = std::min(center + kHalfWindow + 2, isFilled.size());
  const auto begin = isFilled.begin();
  return std::find(begin + static_cast<std::ptrdiff_t>(first),
                   begin + static_cast<std::ptrdiff_t>(end),
                   true) != begin + static_cast<std::ptrdiff_t>(end);
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

double ReadingNoise(std::span<const double> readings) {
  std::vector<double> bends;
  for (std::size_t i = 2; i < readings.size(); ++i) {
    bends.push_back(std::fabs(readings[i - 2] - 2 * readings[i - 1] + readings[i]));
  }
  return bends.empty() ? 0 : 1.4826 / std::sqrt(6.0) * Median(std::move(bends));
}

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

std::size_t MissingCycles(const std::vector<double>& cycles) {
  if (cycles.size() < 2) return 0;
  const double step = usualStep(cycles);
  std::size_t missing = 0;
  for (std::size_t i = 1; i < cycles.size(); ++i) {
    missing += cyclesBetween(cycles[i - 1], cycles[i], step);
  }
  return missing;
}

std::optional<CurveShape> ShapeOf(const AmplificationCurve& curve,
                                  const std::optional<CycleRange>& baseline) {
  // In a damaged or malicious document, any number of cycles can be missing.
  if (MissingCycles(curve.cycles) > curve.cycles.size()) return std::nullopt;
  CurveShape shape;
  const std::vector<bool> isFilled = fill(curve, shape);
  if (shape.cycles.size() < kFewestCycles) return std::nullopt;
  findTakeOff(shape);
  shape.isFilledAtTakeOff = isFilledAround(isFilled, shape.takeOff);
  if (baseline && CyclesWithin(shape.cycles, *baseline) >= kFewestInBaseline) {
    shape.isBaselineSet = true;
    fitGivenBaseline(shape, *baseline);
  } else {
    fitOwnBaseline(shape);
  }
  return shape;
}

void UseWholeBaseline(CurveShape& shape) {
  const double noise = shape.noise;
  const double amplitude = shape.amplitude;
  const double lasting = shape.lasting;
  const double lastingInErrors = shape.lastingInErrors;
  fitBaseline(shape, kBaselineBegin, shape.cycles.size());
  shape.lasting = lasting;
  shape.lastingInErrors = lastingInErrors;
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
  // Noise may make the earlier reading 0 or negative. Then it has no logarithm, so interpolate
  // linearly.
  const double part =
      low > 0 ? std::log(threshold / low) / std::log(high / low) : (threshold - low) / (high - low);
  return shape.CycleAt(static_cast<double>(after - 1) + part);
}

}  // namespace vex2::lab
