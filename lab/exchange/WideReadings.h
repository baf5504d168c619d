#pragma once

#include <ostream>

#include "lab/exchange/Losses.h"
#include "lab/exchange/PlateSource.h"

namespace vex2::lab {

/// Writes the raw readings of a plate as CSV, as far as their meaning is known. There is one row
/// for each frame, with its stage, cycle, time and temperature. Then follows one column for each
/// well, or for each well and channel. Missing and unknown readings are empty. A row has the time
/// and temperature of its first well; wells that differ from it are listed in `losses`.
void WriteWideReadings(std::ostream& out, const PlateSource& source, Losses& losses);

}  // namespace vex2::lab
