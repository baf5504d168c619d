#pragma once

#include <string>
#include <vector>

#include "lab/model/PlateLayout.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// Draws a plate with one line for each row of wells. `texts` has one UTF-8 text for each well,
/// empty for an empty well. If the texts are too wide, letters stand for them, and a list after the
/// plate gives their meaning. If the letters are too wide as well, the columns of the plate are
/// divided into groups, one below the other. Each text has a different colour as long as there are
/// enough colours.
std::string DrawPlate(const PlateLayout& plate, const std::vector<std::string>& texts,
                      const TextForm& form);

}  // namespace vex2::lab
