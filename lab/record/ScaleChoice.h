#pragma once

#include <optional>
#include <vector>

#include "lab/model/ReadingScale.h"

namespace vex2::lab {

/// Chooses the scale and offset that lose least of these readings. The same readings always give
/// the same result. It tries in this order:
/// - a power of ten that keeps all readings exactly: 1000 or the largest below it, otherwise the
///   smallest above it;
/// - the largest common step of the readings, counted from 0 or from the lowest reading, if it
///   keeps them exactly;
/// - the powers of ten and the finest step that fits; of these, the one that changes the readings
///   least, judged by the largest change.
///
/// If no `offset` is given, one is chosen only if a reading is negative, if the readings fit or are
/// kept exactly only with an offset, or if it at least halves the largest change.
ReadingScale ChooseScale(std::vector<double> readings, std::optional<DecimalNumber> offset);

/// Chooses a scale when only the readings of the first frame are known. It is the largest power of
/// ten, up to 1000, that has room for sixteen times the largest reading. If a reading is negative
/// and no `offset` is given, it also chooses an offset that leaves as much room below 0.
ReadingScale ChooseScaleAhead(const std::vector<double>& firstFrame,
                              std::optional<DecimalNumber> offset);

}  // namespace vex2::lab
