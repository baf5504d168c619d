#pragma once

#include <cstddef>
#include <string>

#include "lab/model/FrameView.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// A frame that this library recorded as a table, a row for each well, with the columns of a table
/// of readings.
std::string ReadingsTable(const FrameView& view, const TextForm& form);

/// A frame of any document as a table of its stored values: set (not 0 where the well was read), l1
/// to l3, first (the first reading), l5 to l7, and the data values up to the last that is not 0.
std::string StoredTable(const FrameView& view, const TextForm& form);

/// One field of each well's reading, by its index from 0 among the columns of a table of readings,
/// where the well lies on the plate.
std::string ReadingsGrid(const FrameView& view, std::size_t field, const TextForm& form);

}  // namespace vex2::lab
