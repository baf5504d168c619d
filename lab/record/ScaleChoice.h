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
/// - the power of ten, or the finest step that fits, for which the largest change of a reading is
///   smallest.
///
/// If no `offset` is given, one is chosen only if a reading is negative, if the readings fit or are
/// kept exactly only with an offset, or if it at least halves the largest change.
ReadingScale ChooseScale(std::vector<double> readings, std::optional<DecimalNumber> offset);

/// Chooses a scale when only the readings of the first frame are known: the largest power of ten up
/// to 1000 with which sixteen times the largest of them still fits. If one of them is negative and
/// no `offset` is given, chooses an offset so that this also holds for negative readings.
ReadingScale ChooseScaleAhead(const std::vector<double>& firstFrame,
                              std::optional<DecimalNumber> offset);

}  // namespace vex2::lab
