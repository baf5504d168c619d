#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lab/model/BigEndian.h"
#include "lab/model/FileFault.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// How a walk ended.
struct WalkEnd {
  /// Offset at which the walk ended; the length of the file if all of it was records.
  std::uint64_t offset = 0;
  std::optional<FileFault> fault;  ///< why the walk could not pass the record at which it ended
};

/// Walks over the document in the open `file` with `WalkRecordsOf`, and says in words why it ended.
WalkEnd WalkRecords(CFile& file, RecordVisitor& visitor);

/// Reads the next 16 or 32 bits, big-endian. Returns nothing if the file has fewer bits left.
std::optional<std::uint16_t> ReadShort(CFile& file);
std::optional<std::uint32_t> ReadLong(CFile& file);

}  // namespace vex2::lab
