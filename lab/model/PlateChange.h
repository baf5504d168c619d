#pragma once

#include <string>
#include <vector>

#include "lab/model/PlateContents.h"

namespace vex2::lab {

/// `contents` on a plate of another size: each row stays in the well of its name. Throws an error
/// about the file `source`, where the contents are from, when the plate has no such well.
PlateContents PlacedOn(PlateLayout plate, PlateContents contents, const std::string& source);

/// The wells whose rows differ between the two, ascending.
std::vector<unsigned short> ChangedWells(const PlateContents& before, const PlateContents& after);

}  // namespace vex2::lab
