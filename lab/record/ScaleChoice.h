#pragma once

#include <optional>
#include <vector>

#include "lab/model/ReadingScale.h"

namespace vex2::lab {

/// The scale and offset that lose least of these readings, the same for the same readings:
/// - a power of ten that keeps them exactly, of those from 1000 down the largest, else the smallest
///   above;
/// - else their largest common step, from 0 or from the lowest reading, when that keeps them;
/// - else, of the powers of ten and the finest step to which they fit, what changes the reading
/// that
///   it changes most least.
/// An offset is chosen only where a reading is negative, where only with it all are kept exactly or
/// fit, and where it at least halves the largest change. `offset` is one that is given.
ReadingScale ChooseScale(std::vector<double> readings, std::optional<DecimalNumber> offset);

/// For readings that still come, of which only those of the first frame are known: the largest
/// power of ten up to 1000 that has room for sixteen times the largest of them; in both directions
/// when one of them is negative.
ReadingScale ChooseScaleAhead(const std::vector<double>& firstFrame,
                              std::optional<DecimalNumber> offset);

}  // namespace vex2::lab
