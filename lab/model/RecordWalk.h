#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lab/model/FileFault.h"
#include "lab/model/FileLayout.h"
#include "vex2/format/RecordWalker.h"
#include "vex2/framework/CFile.h"

namespace vex2::lab {

/// How a walk ended.
struct WalkEnd {
  std::uint64_t offset = 0;        ///< where; the file's length when all of it was records
  std::optional<FileFault> fault;  ///< of the record that could not be walked over
};

/// Walks over the records of the document in the open `file`, from the end of its header on, and
/// over those in them, to the same places as the document's reader: past the bytes that a body's
/// layout has, whatever length the record declares. Neither allocates nor recurses on the word of a
/// file.
WalkEnd WalkRecords(CFile& file, RecordVisitor& visitor);

/// The next 16 or 32 bits, big-endian; nothing if the file ends before.
std::optional<std::uint16_t> ReadShort(CFile& file);
std::optional<std::uint32_t> ReadLong(CFile& file);

}  // namespace vex2::lab
