#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What a picture shows, before anything is drawn: axes, curves, plates and their legend. The
/// renderers draw it as SVG or in the cells of a terminal. Texts are UTF-8 without control
/// characters.
namespace vex2::lab {

/// How something is coloured: as a member of a group, or by its place on a scale. Neither is for
/// what has no value.
struct Look {
  std::optional<std::size_t> group;  ///< index of the group, from 0
  std::optional<double> share;       ///< of the scale, 0 to 1
};

struct ScenePoint {
  double x = 0;
  double y = 0;
};

/// A curve, or dots.
struct SceneSeries {
  Look look;
  bool isDots = false;
  std::vector<ScenePoint> points;  ///< finite; a curve goes through them in their order
};

struct SceneAxis {
  std::string label;  ///< with the unit
  double low = 0;
  double high = 1;
  bool isLog = false;
  std::vector<std::pair<double, std::string>> ticks;  ///< places and what is written there

  /// Where the value is, 0 at the low end and 1 at the high one.
  double ShareOf(double value) const;
};

/// A line across the chart.
struct SceneRule {
  double y = 0;
  std::string label;
};

/// What the colours mean: groups with their names, or a scale.
struct SceneLegend {
  std::string title;
  std::vector<std::string> groups;  ///< by index; empty for a scale
  std::string low;                  ///< the ends of a scale
  std::string high;
};

struct SceneWell {
  unsigned row = 0;
  unsigned column = 0;
  Look look;
  std::string text;  ///< a few characters
};

struct ScenePlate {
  std::string name;  ///< in a study
  unsigned rows = 0;
  unsigned columns = 0;
  std::vector<SceneWell> wells;  ///< those in use
};

/// Plates, or a chart where there are none.
struct Scene {
  std::string title;
  std::vector<ScenePlate> plates;
  SceneAxis x;
  SceneAxis y;
  std::vector<SceneSeries> series;
  std::vector<SceneRule> rules;
  SceneLegend legend;
};

/// Makes the axis hold all of `values`, with some room, and sets its ticks.
void FitAxis(SceneAxis& axis, const std::vector<double>& values, double room);

/// A number as axes show it: "0.002", "250", "2.5e6".
std::string TickText(double value);

/// "A1" is the row and column of a well as pictures write them; rows past Z are AA, AB and so on.
std::string RowName(unsigned row);

}  // namespace vex2::lab
