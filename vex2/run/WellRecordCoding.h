#pragma once

#include <cstddef>
#include <cstdint>

#include "vex2/format/DataBlockHead.h"
#include "vex2/framework/CFile.h"
#include "vex2/run/Vex2WellRecord.h"

/// How well records lie in documents: the eight leading values and the first 32 data values, each
/// 16 bits big-endian. Internal.
namespace vex2 {

/// Reads `count` stored records into `records`, whose values need not be initialised. -100 when the
/// file ends before; the remaining records are then untouched.
[[nodiscard]] int ReadWellRecords(CFile& file, Vex2WellRecord* records, std::size_t count);

/// Writes `count` records; a null `records` stands for records that are all zero.
void WriteWellRecords(CFile& file, const Vex2WellRecord* records, std::size_t count);

}  // namespace vex2
