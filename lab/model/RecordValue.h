#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "lab/model/DataBlock.h"
#include "lab/model/DocumentWalk.h"

namespace vex2::lab {

using RecordColour = std::array<std::uint8_t, 3>;

/// Bytes whose meaning depends on the instrument.
struct RecordBytes {
  std::string bytes;
};

/// The value of a record, other than the records in it. Nothing if the record holds no value or is
/// cut off, or if its floating-point number is not finite. Texts are UTF-8, without the zero byte
/// that may end them.
using RecordValue =
    std::variant<std::monostate, std::uint32_t, float, RecordColour, std::string, RecordBytes>;

RecordValue ReadRecordValue(CFile& file, const FileRecord& record);

/// The fields of a well's record, without the records in it. A field is missing if the file ends
/// before it.
struct CellFields {
  std::optional<std::uint16_t> coord1;
  std::optional<std::uint16_t> coord2;
  std::optional<std::uint8_t> flag;
};

/// The fields of a record that has more than a value: those of a data block or a well.
using RecordFields = std::variant<std::monostate, CellFields, StoredBlock>;

RecordFields ReadRecordFields(CFile& file, const FileRecord& record);

/// Reads the first `most` bytes of the body; fewer if the body or the file is shorter.
std::string ReadRecordBytes(CFile& file, const FileRecord& record, std::uint64_t most);
/// The number of records that a list declares; nothing if the file ends before it.
std::optional<std::uint16_t> ReadListCount(CFile& file, const FileRecord& record);
/// Reads at most `most` bytes of a body that is a text, as Latin-1.
std::string ReadRecordText(CFile& file, const FileRecord& record, std::uint64_t most);

}  // namespace vex2::lab
