#pragma once

#include <string>
#include <vector>

#include "lab/model/PlateContents.h"

namespace vex2::lab {

/// Moves `contents` to a plate of another size: each row goes to the well with the same name. If
/// the plate has no such well, throws an error about the file `source`, which has the contents.
PlateContents PlacedOn(PlateLayout plate, PlateContents contents, const std::string& source);

/// The numbers of the wells whose rows differ between the two, ascending.
std::vector<unsigned short> ChangedWells(const PlateContents& before, const PlateContents& after);

}  // namespace vex2::lab
