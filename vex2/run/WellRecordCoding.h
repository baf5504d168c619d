#pragma once

#include <cstddef>
#include <cstdint>

#include "vex2/format/DataBlockHead.h"
#include "vex2/framework/CFile.h"
#include "vex2/run/Vex2WellRecord.h"

/// The encoding of well records in documents: the eight leading values and the first 32 data
/// values, each 16 bits, big-endian. Internal.
namespace vex2 {

/// Reads `count` stored records at the file position into `records`, which need not be initialised.
/// Returns -100 if the file ends first; the remaining records then stay unchanged.
[[nodiscard]] int ReadWellRecords(CFile& file, Vex2WellRecord* records, std::size_t count);

/// Writes `count` records at the file position; a null `records` writes zeros.
void WriteWellRecords(CFile& file, const Vex2WellRecord* records, std::size_t count);

}  // namespace vex2
