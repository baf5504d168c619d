#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/picture/Plot.h"
#include "lab/picture/Scene.h"

namespace vex2::lab {

/// The value that determines the colour of a well.
struct ColourValue {
  std::string group;
  std::optional<double> number;  ///< value on a scale
};

/// Assigns looks to wells: groups, sorted by name, or values on a scale.
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
