#pragma once

#include <cstddef>
#include <string>

#include "lab/model/FrameView.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// A table of a frame that this library recorded: one row for each well, with the columns of a
/// table of readings.
std::string ReadingsTable(const FrameView& view, const TextForm& form);

/// A table of the stored values of any frame: set (not 0 if the well was read), l1 to l3, first
/// (the first reading), l5 to l7, and the data values up to the last that is not 0.
std::string StoredTable(const FrameView& view, const TextForm& form);

/// A plate with one field of each well's reading. `field` is the index of the field, from 0, among
/// the columns of a table of readings.
std::string ReadingsGrid(const FrameView& view, std::size_t field, const TextForm& form);

}  // namespace vex2::lab
