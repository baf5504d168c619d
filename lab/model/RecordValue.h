#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "lab/model/DataBlock.h"
#include "lab/model/RecordWalk.h"

namespace vex2::lab {

using RecordColour = std::array<std::uint8_t, 3>;

/// Bytes whose meaning is the instrument's.
struct RecordBytes {
  std::string bytes;
};

/// What a record holds besides records; nothing for a record that holds no value, for one that is
/// cut short, and for a number in floating point that is none. Texts are UTF-8, without the one
/// zero byte that may end them.
using RecordValue =
    std::variant<std::monostate, std::uint32_t, float, RecordColour, std::string, RecordBytes>;

RecordValue ReadRecordValue(CFile& file, const FileRecord& record);

/// The fields of a well's record besides the records in it, as far as the file has them.
struct CellFields {
  std::optional<std::uint16_t> coord1;
  std::optional<std::uint16_t> coord2;
  std::optional<std::uint8_t> flag;
};

/// The fields of a record that has some of its own besides a value: a data block's and a well's.
using RecordFields = std::variant<std::monostate, CellFields, StoredBlock>;

RecordFields ReadRecordFields(CFile& file, const FileRecord& record);

/// Up to `most` bytes of the body, as many as the file has.
std::string ReadRecordBytes(CFile& file, const FileRecord& record, std::uint64_t most);
/// How many records a list says that it holds; nothing if the file ends before.
std::optional<std::uint16_t> ReadListCount(CFile& file, const FileRecord& record);
/// A body that is a text, as Latin-1; at most `most` bytes of it are read.
std::string ReadRecordText(CFile& file, const FileRecord& record, std::uint64_t most);

}  // namespace vex2::lab
