#include "lab/analysis/Statistics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <numeric>

namespace vex2::lab {

namespace {

// The probability that |t| is below tan(angle) times the root of the degrees of freedom: Abramowitz
// and Stegun, "Handbook of Mathematical Functions", 26.7.3 and 26.7.4.
double probabilityWithin(double angle, std::size_t degrees) {
  const double cosine = std::cos(angle);
  const bool isOdd = degrees % 2 == 1;
  double term = isOdd ? cosine : 1;
  double sum = degrees == 1 ? 0 : term;
  for (std::size_t power = isOdd ? 3 : 2; power + 2 <= degrees; power += 2) {
    const auto factor = static_cast<double>(power);
    term *= (factor - 1) / factor * cosine * cosine;
    sum += term;
  }
  const double within = std::sin(angle) * sum;
  return isOdd ? 2 / std::numbers::pi * (angle + within) : within;
}

bool areEqual(std::span<const double> values) {
  return std::all_of(values.begin(), values.end(), [&](double each) { return each == values[0]; });
}

}  // namespace

std::optional<LineFit> FitLine(std::span<const double> x, std::span<const double> y) {
  // Compare the values themselves: the mean of equal numbers can differ from them in the last
  // digit.
  if (x.size() < 2 || areEqual(x)) return std::nullopt;
  const double meanY = Mean(y);
  LineFit fit;
  fit.meanX = Mean(x);
  double products = 0;
  double total = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double dx = x[i] - fit.meanX;
    const double dy = y[i] - meanY;
    fit.sumOfSquares += dx * dx;
    products += dx * dy;
    total += dy * dy;
  }
  if (!(fit.sumOfSquares > 0)) return std::nullopt;
  fit.line.slope = products / fit.sumOfSquares;
  fit.line.intercept = meanY - fit.line.slope * fit.meanX;
  double squares = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double residual = y[i] - fit.line.At(x[i]);
    squares += residual * residual;
  }
  fit.rSquared = total > 0 && !areEqual(y) ? 1 - squares / total : 1;
  if (x.size() > 2) {
    fit.residualDeviation = std::sqrt(squares / static_cast<double>(x.size() - 2));
  }
  return fit;
}

double Mean(std::span<const double> values) {
  const double sum = std::accumulate(values.begin(), values.end(), 0.0);
  return sum / static_cast<double>(values.size());
}

std::optional<double> Deviation(std::span<const double> values) {
  if (values.size() < 2) return std::nullopt;
  const double mean = Mean(values);
  double squares = 0;
  for (const double value : values) squares += (value - mean) * (value - mean);
  return std::sqrt(squares / static_cast<double>(values.size() - 1));
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  if (values.size() % 2 == 1) return *middle;
  return (*std::max_element(values.begin(), middle) + *middle) / 2;
}

double SmallestStep(std::vector<double> values) {
  std::erase_if(values, [](double each) { return !std::isfinite(each); });
  std::sort(values.begin(), values.end());
  double smallest = 0;
  for (std::size_t i = 1; i < values.size(); ++i) {
    const double step = values[i] - values[i - 1];
    if (step > 0 && (smallest == 0 || step < smallest)) smallest = step;
  }
  return smallest;
}

double StudentLimit(double probability, std::size_t degreesOfFreedom) {
  // With more degrees of freedom the limit hardly changes.
  const std::size_t degrees = std::clamp<std::size_t>(degreesOfFreedom, 1, 10'000);
  double low = 0;
  double high = std::numbers::pi / 2;
  for (int halving = 0; halving < 60; ++halving) {
    const double middle = (low + high) / 2;
    (probabilityWithin(middle, degrees) < probability ? low : high) = middle;
  }
  return std::tan(low) * std::sqrt(static_cast<double>(degrees));
}

}  // namespace vex2::lab
