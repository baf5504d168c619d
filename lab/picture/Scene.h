#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The content of a picture before it is drawn: axes, curves, plates and their legend. The
/// renderers draw it as SVG or in the cells of a terminal. Texts are UTF-8 without control
/// characters.
namespace vex2::lab {

/// The colour of something: that of a group, or that of a value on a scale. Both fields are empty
/// if there is no value.
struct Look {
  std::optional<std::size_t> group;  ///< index of the group, from 0
  std::optional<double> share;       ///< value on the scale, 0 to 1
};

struct ScenePoint {
  double x = 0;
  double y = 0;
};

/// A curve, or dots.
struct SceneSeries {
  Look look;
  bool isDots = false;
  std::vector<ScenePoint> points;  ///< finite; a curve connects them in this order
};

struct SceneAxis {
  std::string label;  ///< label with the unit
  double low = 0;
  double high = 1;
  bool isLog = false;
  std::vector<std::pair<double, std::string>> ticks;  ///< values and their labels

  /// The value as a fraction of the axis: 0 at the low end, 1 at the high end.
  double ShareOf(double value) const;
};

/// A horizontal line across the chart.
struct SceneRule {
  double y = 0;
  std::string label;
};

/// What the colours mean: the names of the groups, or the ends of a scale.
struct SceneLegend {
  std::string title;
  std::vector<std::string> groups;  ///< by group index; empty for a scale
  std::string low;                  ///< text at the low end of a scale
  std::string high;
};

struct SceneWell {
  unsigned row = 0;
  unsigned column = 0;
  Look look;
  std::string text;  ///< a few characters
};

struct ScenePlate {
  std::string name;  ///< name of the plate in a study; otherwise empty
  unsigned rows = 0;
  unsigned columns = 0;
  std::vector<SceneWell> wells;  ///< the wells in use
};

/// The content of a picture: plates, or a chart if there are none.
struct Scene {
  std::string title;
  std::vector<ScenePlate> plates;
  SceneAxis x;
  SceneAxis y;
  std::vector<SceneSeries> series;
  std::vector<SceneRule> rules;
  SceneLegend legend;
};

/// Makes the axis contain all of `values`, with some room at the ends, and sets its ticks.
void FitAxis(SceneAxis& axis, const std::vector<double>& values, double room);

/// A number as axis labels show it: "0.002", "250", "2.5e6".
std::string TickText(double value);

/// The name of a row of wells: A to Z, then AA, AB and so on.
std::string RowName(unsigned row);

}  // namespace vex2::lab
