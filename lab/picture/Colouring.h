#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/picture/Plot.h"
#include "lab/picture/Scene.h"

namespace vex2::lab {

/// What a well is coloured by.
struct ColourValue {
  std::string group;
  std::optional<double> number;  ///< for a scale
};

/// The looks of wells: groups in the order of their names, or places on a scale.
class Colouring {
 public:
  /// `values` are those of all wells that are shown.
  Colouring(ColourBy colourBy, const std::vector<ColourValue>& values);

  Look Of(const ColourValue& value) const;
  SceneLegend Legend() const;

 private:
  bool isScale_;
  std::string title_;
  std::vector<std::string> names_;
  std::map<std::string, std::size_t> groups_;
  double low_ = 0;
  double high_ = 0;
};

}  // namespace vex2::lab
