#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace vex2::lab {

/// y = intercept + slope x.
struct Line {
  double intercept = 0;
  double slope = 0;

  double At(double x) const { return intercept + slope * x; }
};

/// A line fitted by least squares, and how well.
struct LineFit {
  Line line;
  double rSquared = 0;           ///< 1 where all y are equal
  double residualDeviation = 0;  ///< with count - 2 degrees of freedom; 0 for two points
  double meanX = 0;
  double sumOfSquares = 0;  ///< of the distances of x from their mean
};

/// The line through points (x[i], y[i]). Returns nothing if there are fewer than two different x
/// values.
std::optional<LineFit> FitLine(std::span<const double> x, std::span<const double> y);

/// Of at least one value.
double Mean(std::span<const double> values);
/// With count - 1 degrees of freedom; nothing for fewer than two values.
std::optional<double> Deviation(std::span<const double> values);
/// The middle one, or the mean of the two in the middle. Of at least one value.
double Median(std::vector<double> values);

/// The t that Student's distribution stays within, on both sides of 0, with this probability.
double StudentLimit(double probability, std::size_t degreesOfFreedom);

}  // namespace vex2::lab
