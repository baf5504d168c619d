#pragma once

#include <string>
#include <vector>

#include "lab/model/PlateLayout.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// The plate as it lies on the bench, a line for each row of wells. `texts` has one for each well,
/// as UTF-8, empty where nothing stands. Where they are too wide, letters stand for them, and a
/// list after the plate says what for; where those are too wide, too, some columns of the plate
/// stand below others. Each text has a colour of its own as long as there are colours.
std::string DrawPlate(const PlateLayout& plate, const std::vector<std::string>& texts,
                      const TextForm& form);

}  // namespace vex2::lab
