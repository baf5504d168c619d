#pragma once

#include <functional>

#include "lab/recover/RecoverReport.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// Is told how many bytes of the damaged file are done.
using RecoverProgress = std::function<void(std::uint64_t done)>;

/// Puts together in the empty file `out`, open for writing, what is whole in the damaged document
/// `in`, open for reading. What can be followed from record to record is copied byte for byte;
/// after what cannot, records are found again by their tags, and frames by the structure of their
/// block. Lists are given the counts and lengths of what is left in them, and what is left of a
/// list, plate or header that is gone is put in a new one. Takes time in proportion to the file and
/// little memory. Throws what the files throw.
RecoverReport Recover(CFile& in, CFile& out, const RecoverProgress& progress = {});

}  // namespace vex2::lab
