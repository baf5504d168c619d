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

/// Makes `contents`, which are from the file `source`, those of the document's wells. Returns for
/// people how many wells were and are set up, and which have changed. Throws as `PlacedOn` does.
std::string ReplaceWells(Vex2FileManager& document, const PlateContents& contents,
                         const std::string& source);

}  // namespace vex2::lab
