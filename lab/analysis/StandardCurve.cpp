#include "lab/analysis/StandardCurve.h"

#include <cmath>
#include <map>

#include "lab/analysis/Statistics.h"

namespace vex2::lab {

namespace {

std::optional<double> efficiencyOf(double slope) {
  if (!(slope < 0)) return std::nullopt;
  return std::pow(10, -1 / slope) - 1;
}

/// The standards with the same quantity.
struct Level {
  std::size_t wells = 0;
  std::vector<double> cqs;
};

std::map<double, Level> levelsOf(const std::vector<StandardPoint>& points) {
  std::map<double, Level> levels;
  for (const StandardPoint& point : points) {
    Level& level = levels[point.quantity];
    ++level.wells;
    if (point.cq) level.cqs.push_back(*point.cq);
  }
  return levels;
}

double rSquaredOfMeans(const std::map<double, Level>& levels) {
  std::vector<double> x;
  std::vector<double> y;
  for (const auto& [quantity, level] : levels) {
    if (level.cqs.empty()) continue;
    x.push_back(std::log10(quantity));
    y.push_back(Mean(level.cqs));
  }
  const auto fit = FitLine(x, y);
  return fit ? fit->rSquared : 0;
}

std::optional<double> limitOfDetection(const std::map<double, Level>& levels) {
  std::optional<double> limit;
  for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
    const auto detected = static_cast<double>(level->second.cqs.size());
    if (detected < kConfidence * static_cast<double>(level->second.wells)) break;
    limit = level->first;
  }
  return limit;
}

void addEfficiencyInterval(StandardCurve& curve) {
  const double margin =
      curve.studentLimit * curve.residualDeviation / std::sqrt(curve.sumOfSquares);
  // A slope nearer to 0 means a higher efficiency.
  curve.efficiencyLow = efficiencyOf(curve.slope - margin);
  curve.efficiencyHigh = efficiencyOf(curve.slope + margin);
}

}  // namespace

std::optional<StandardCurve> FitStandardCurve(const std::string& detector,
                                              std::vector<StandardPoint> points) {
  std::vector<double> logs;
  std::vector<double> cqs;
  for (const StandardPoint& point : points) {
    if (!point.cq) continue;
    logs.push_back(std::log10(point.quantity));
    cqs.push_back(*point.cq);
  }
  const auto fit = FitLine(logs, cqs);
  if (!fit || logs.size() < 3) return std::nullopt;
  StandardCurve curve;
  curve.detector = detector;
  curve.slope = fit->line.slope;
  curve.intercept = fit->line.intercept;
  curve.efficiency = efficiencyOf(curve.slope);
  curve.rSquared = fit->rSquared;
  curve.residualDeviation = fit->residualDeviation;
  curve.wells = logs.size();
  curve.meanLogQuantity = fit->meanX;
  curve.sumOfSquares = fit->sumOfSquares;
  curve.studentLimit = StudentLimit(kConfidence, curve.wells - 2);
  addEfficiencyInterval(curve);
  const auto levels = levelsOf(points);
  curve.rSquaredOfMeans = rSquaredOfMeans(levels);
  curve.limitOfDetection = limitOfDetection(levels);
  for (StandardPoint& point : points) {
    if (point.cq) point.residual = *point.cq - fit->line.At(std::log10(point.quantity));
  }
  curve.points = std::move(points);
  return curve;
}

std::optional<QuantityEstimate> EstimateQuantity(const StandardCurve& curve, double cq,
                                                 std::size_t replicates) {
  if (!(curve.slope < 0) || replicates == 0 || curve.wells < 3) return std::nullopt;
  const double log = (cq - curve.intercept) / curve.slope;
  const double distance = log - curve.meanLogQuantity;
  const double deviation =
      curve.residualDeviation / -curve.slope *
      std::sqrt(1 / static_cast<double>(replicates) + 1 / static_cast<double>(curve.wells) +
                distance * distance / curve.sumOfSquares);
  const double margin = curve.studentLimit * deviation;
  return QuantityEstimate{.quantity = std::pow(10, log),
                          .low = std::pow(10, log - margin),
                          .high = std::pow(10, log + margin)};
}

}  // namespace vex2::lab
