#include "lab/analysis/MeltPeaks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "lab/analysis/Statistics.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kFewestInWindow = 5;

/// Adjacent readings, with the indexes from `first` to below `end`.
struct Window {
  std::size_t first = 0;
  std::size_t end = 0;

  std::size_t Size() const { return end - first; }
};

Window windowAround(std::span<const double> temperatures, std::size_t center) {
  const double at = temperatures[center];
  Window window{.first = center, .end = center + 1};
  const auto isWanted = [&](double temperature, std::size_t size) {
    return std::fabs(temperature - at) <= kMeltWindow || size < kFewestInWindow;
  };
  while (true) {
    const double below = window.first > 0 ? at - temperatures[window.first - 1] : INFINITY;
    const double above =
        window.end < temperatures.size() ? temperatures[window.end] - at : INFINITY;
    const double nearest = std::min(below, above);
    if (nearest == INFINITY || !isWanted(at + nearest, window.Size())) return window;
    if (below <= above) {
      --window.first;
    } else {
      ++window.end;
    }
  }
}

/// A parabola that is fitted to readings; its origin is the middle of the window.
struct Parabola {
  double level = 0;
  double slope = 0;
  double bend = 0;
  double slopeError = 0;  ///< standard error of the slope, where that of a reading is 1
  double scatter = 0;     ///< standard deviation of the readings about it
};

// Solves the normal equations of level, slope and bend by Cramer's rule. `sums[k]` is the sum of
// x^k, `products[k]` that of y x^k.
Parabola solve(const std::array<double, 5>& sums, const std::array<double, 3>& products) {
  const auto determinant = [](double a, double b, double c, double d, double e, double f, double g,
                              double h, double i) {
    return a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
  };
  const auto& s = sums;
  const auto& p = products;
  const double whole = determinant(s[0], s[1], s[2], s[1], s[2], s[3], s[2], s[3], s[4]);
  return {.level = determinant(p[0], s[1], s[2], p[1], s[2], s[3], p[2], s[3], s[4]) / whole,
          .slope = determinant(s[0], p[0], s[2], s[1], p[1], s[3], s[2], p[2], s[4]) / whole,
          .bend = determinant(s[0], s[1], p[0], s[1], s[2], p[1], s[2], s[3], p[2]) / whole,
          // The element of the inverted matrix, by its cofactor.
          .slopeError = std::sqrt((s[0] * s[4] - s[2] * s[2]) / whole),
          .scatter = 0};
}

Parabola fitParabola(std::span<const double> temperatures, std::span<const double> readings,
                     double at) {
  std::array<double, 5> sums{};
  std::array<double, 3> products{};
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const double x = temperatures[i] - at;
    double power = 1;
    for (std::size_t k = 0; k < sums.size(); ++k, power *= x) {
      sums[k] += power;
      if (k < products.size()) products[k] += readings[i] * power;
    }
  }
  Parabola parabola = solve(sums, products);
  double squares = 0;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const double x = temperatures[i] - at;
    const double fitted = parabola.level + x * (parabola.slope + x * parabola.bend);
    squares += (readings[i] - fitted) * (readings[i] - fitted);
  }
  // The median of a deviation lies below its mean, the more the fewer degrees of freedom there are
  // (Wilson and Hilferty 1931): so much is made good.
  const auto degrees = static_cast<double>(readings.size() - 3);
  parabola.scatter = std::sqrt(squares / degrees / std::pow(1 - 2 / (9 * degrees), 3));
  return parabola;
}

// The index of the lowest value of the derivative on one side of the peak, up to where it is higher
// than the peak again. `step` is 1 or -1.
std::size_t lowestBeside(std::span<const double> values, std::size_t peak, int step) {
  std::size_t lowest = peak;
  for (auto i = static_cast<std::ptrdiff_t>(peak) + step;
       i >= 0 && i < static_cast<std::ptrdiff_t>(values.size()); i += step) {
    const auto index = static_cast<std::size_t>(i);
    if (values[index] > values[peak]) break;
    if (values[index] < values[lowest]) lowest = index;
  }
  return lowest;
}

// The fall of the derivative on one side of the peak, as the highest multiple of the standard error
// of such a fall. The lowest value is not used, because it is often one of the uncertain ones at an
// end of the curve.
double fallInErrors(std::span<const double> values, std::span<const double> errors,
                    std::size_t peak, int step) {
  double most = 0;
  for (auto i = static_cast<std::ptrdiff_t>(peak) + step;
       i >= 0 && i < static_cast<std::ptrdiff_t>(values.size()); i += step) {
    const auto index = static_cast<std::size_t>(i);
    if (values[index] > values[peak]) break;
    most = std::max(most, (values[peak] - values[index]) / std::hypot(errors[peak], errors[index]));
  }
  return most;
}

// The temperature on one side of the peak at which the derivative has fallen to `level`.
double fallTo(std::span<const double> temperatures, std::span<const double> values,
              std::size_t peak, double level, int step) {
  std::size_t above = peak;
  while (true) {
    const std::ptrdiff_t next = static_cast<std::ptrdiff_t>(above) + step;
    if (next < 0 || next >= static_cast<std::ptrdiff_t>(values.size())) return temperatures[above];
    const auto below = static_cast<std::size_t>(next);
    if (values[below] < level) {
      const double part = (values[above] - level) / (values[above] - values[below]);
      return temperatures[above] + part * (temperatures[below] - temperatures[above]);
    }
    above = below;
  }
}

// Moves the peak to the top of the parabola through its largest value and both neighbours.
void placeTop(std::span<const double> temperatures, std::span<const double> values,
              std::size_t index, MeltPeak& peak) {
  const double left = temperatures[index - 1] - temperatures[index];
  const double right = temperatures[index + 1] - temperatures[index];
  const double leftFall = (values[index - 1] - values[index]) / left;
  const double rightFall = (values[index + 1] - values[index]) / right;
  const double bend = (rightFall - leftFall) / (right - left);
  if (!(bend < 0)) return;
  const double slope = leftFall - bend * left;
  const double offset = -slope / (2 * bend);
  peak.temperature += offset;
  peak.height += offset * (slope + offset * bend);
}

}  // namespace

MeltDerivative DerivativeOf(std::span<const double> temperatures,
                            std::span<const double> readings) {
  MeltDerivative result;
  std::vector<double> scatters;
  for (std::size_t i = 0; i < readings.size(); ++i) {
    const Window window = windowAround(temperatures, i);
    const Parabola parabola =
        fitParabola(temperatures.subspan(window.first, window.Size()),
                    readings.subspan(window.first, window.Size()), temperatures[i]);
    result.values.push_back(-parabola.slope);
    result.errors.push_back(parabola.slopeError);
    scatters.push_back(parabola.scatter);
  }
  result.noise = Median(std::move(scatters));
  return result;
}

std::vector<MeltPeak> AllPeaks(std::span<const double> temperatures,
                               std::span<const double> derivative, std::span<const double> errors) {
  std::vector<MeltPeak> peaks;
  for (std::size_t i = 1; i + 1 < derivative.size(); ++i) {
    if (derivative[i] <= derivative[i - 1] || derivative[i] < derivative[i + 1]) continue;
    const std::size_t left = lowestBeside(derivative, i, -1);
    const std::size_t right = lowestBeside(derivative, i, 1);
    const std::size_t base = derivative[left] > derivative[right] ? left : right;
    MeltPeak& peak = peaks.emplace_back();
    peak.temperature = temperatures[i];
    peak.height = derivative[i];
    peak.prominence = derivative[i] - derivative[base];
    const double certainty =
        std::min(fallInErrors(derivative, errors, i, -1), fallInErrors(derivative, errors, i, 1));
    peak.prominenceError = peak.prominence / certainty;
    const double half = derivative[i] - peak.prominence / 2;
    peak.width = fallTo(temperatures, derivative, i, half, 1) -
                 fallTo(temperatures, derivative, i, half, -1);
    placeTop(temperatures, derivative, i, peak);
  }
  return peaks;
}

}  // namespace vex2::lab
