#pragma once

#include <ostream>

#include "lab/exchange/Losses.h"
#include "lab/exchange/PlateSource.h"

namespace vex2::lab {

/// Writes the known raw readings of a plate as CSV: a row for each frame, after its stage, cycle,
/// time and temperature a column for each well, or for each well and channel. Readings that are
/// missing or not known are empty. A row has the time and temperature of its first well; where
/// others differ, that is listed.
void WriteWideReadings(std::ostream& out, const PlateSource& source, Losses& losses);

}  // namespace vex2::lab
