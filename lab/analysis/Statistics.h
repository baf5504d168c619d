#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace vex2::lab {

/// The line y = intercept + slope x.
struct Line {
  double intercept = 0;
  double slope = 0;

  double At(double x) const { return intercept + slope * x; }
};

/// A line that was fitted by least squares, and the quality of the fit.
struct LineFit {
  Line line;
  double rSquared = 0;           ///< 1 if all y are equal
  double residualDeviation = 0;  ///< with count - 2 degrees of freedom; 0 for two points
  double meanX = 0;
  double sumOfSquares = 0;  ///< sum of the squared distances of x from its mean
};

/// The line through points (x[i], y[i]). Returns nothing if there are fewer than two different x
/// values.
std::optional<LineFit> FitLine(std::span<const double> x, std::span<const double> y);

/// The mean. There must be at least one value.
double Mean(std::span<const double> values);
/// The standard deviation, with count - 1 degrees of freedom; nothing for fewer than two values.
std::optional<double> Deviation(std::span<const double> values);
/// The middle value, or the mean of the two middle values. There must be at least one value.
double Median(std::vector<double> values);

/// The smallest distance between two different values; 0 where all are equal. Values that are no
/// numbers are left out.
double SmallestStep(std::vector<double> values);

/// The limit of Student's t: with this probability, |t| is below it.
double StudentLimit(double probability, std::size_t degreesOfFreedom);

}  // namespace vex2::lab
