#pragma once

#include <cstdint>
#include <string_view>

namespace vex2::tool {

/// How the body of a record is laid out in the file.
enum class BodyLayout : std::uint8_t {
  kUnknown,  ///< nobody knows: as many bytes as the record declares
  kByte,
  kShort,
  kLong,
  kFloat,
  kText,
  kBytes,       ///< the instrument's own: as many bytes as the record declares
  kPureDyes,    ///< a head and entries that tell their own length
  kBackground,  ///< the same with smaller entries
  kColour,      ///< three bytes
  kList,        ///< a 16-bit count and that many records
  kCell,        ///< a list with five bytes of its own behind the count
  kPlate,       ///< a document within the document, behind a count that is 0
  kData,        ///< a data block
};

/// The bytes of a body that is one value; 0 for the other layouts.
std::uint64_t FixedSize(BodyLayout layout);

/// Whether the body holds no records and may be of any length: it should be the one declared.
bool IsOfAnyLength(BodyLayout layout);

/// What the tools know of a kind of record besides what the library does.
struct RecordKind {
  std::string_view tag;
  BodyLayout layout;
  std::string_view meaning;  ///< a few words for people
};

/// The kind with this tag; one of unknown layout for a tag that has none.
const RecordKind& KindOf(std::string_view tag);

/// Whether the library makes a component of a record with this tag. It skips others.
bool IsKnownToLibrary(std::string_view tag);

}  // namespace vex2::tool
