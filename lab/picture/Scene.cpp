#include "lab/picture/Scene.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "lab/model/PlateLayout.h"

namespace vex2::lab {

namespace {

constexpr double kMostTicks = 8;

void setTicks(SceneAxis& axis) {
  const double raw = (axis.high - axis.low) / kMostTicks;
  const double power = std::pow(10, std::floor(std::log10(raw)));
  double step = 10 * power;
  for (const double factor : {5.0, 2.0, 1.0}) {
    if (factor * power >= raw) step = factor * power;
  }
  for (double i = std::ceil(axis.low / step - 1e-9); i * step <= axis.high + step * 1e-9; ++i) {
    axis.ticks.emplace_back(i * step, TickText(i * step));
  }
}

// Sets ticks at 1, 2 and 5 in each decade; if there are many decades, only at 1.
void setLogTicks(SceneAxis& axis) {
  const double decades = std::log10(axis.high / axis.low);
  for (double power = std::floor(std::log10(axis.low)); power <= std::log10(axis.high); ++power) {
    for (const double factor : {1.0, 2.0, 5.0}) {
      const double tick = factor * std::pow(10, power);
      const bool isShown = factor == 1 || decades < 3;
      if (isShown && tick >= axis.low * 0.999 && tick <= axis.high * 1.001) {
        axis.ticks.emplace_back(tick, TickText(tick));
      }
    }
  }
}

}  // namespace

double SceneAxis::ShareOf(double value) const {
  if (!isLog) return (value - low) / (high - low);
  return std::log(value / low) / std::log(high / low);
}

void FitAxis(SceneAxis& axis, const std::vector<double>& values, double room) {
  double least = std::numeric_limits<double>::infinity();
  double most = -least;
  for (const double value : values) {
    if (!std::isfinite(value) || (axis.isLog && value <= 0)) continue;
    least = std::min(least, value);
    most = std::max(most, value);
  }
  axis.ticks.clear();
  if (least > most) {
    least = axis.isLog ? 0.1 : 0;
    most = 1;
  }
  if (axis.isLog) {
    axis.low = least / (least < most ? 1 : 2);
    axis.high = std::max(most, least * 2) * std::pow(10, room);
    return setLogTicks(axis);
  }
  const double space = least < most ? (most - least) * room : std::max(std::abs(most) * 0.1, 0.5);
  axis.low = least - space;
  axis.high = most + space;
  setTicks(axis);
}

std::string TickText(double value) {
  if (value == 0) return "0";  // no "-0"
  const double size = std::abs(value);
  if (size >= 1e-4 && size < 1e6) return fmt::format("{:.8g}", value);
  std::string text = fmt::format("{:.7e}", value);
  const std::size_t end = text.find('e');
  const int power = std::stoi(text.substr(end + 1));
  text.erase(text.find_last_not_of('0', end - 1) + 1);
  if (text.back() == '.') text.pop_back();
  return text + "e" + std::to_string(power);
}

std::string RowName(unsigned row) {
  std::string name = WellName(row + 1, 1);
  name.pop_back();  // removes the column, which is 1
  return name;
}

}  // namespace vex2::lab
