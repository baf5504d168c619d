#pragma once

#include <cstddef>
#include <optional>

#include "lab/model/Readings.h"

namespace vex2::lab {

/// The temperature at which a well was read, degrees Celsius. `Readings::Axis` has that of the
/// first well of the frame; a recorder may give each well its own. Returns nothing where that of
/// the frame is not known. Throws as `Readings` does for a frame or a well index that is too large.
std::optional<double> WellTemperature(const Readings& readings, std::size_t frame,
                                      std::size_t well);

}  // namespace vex2::lab
