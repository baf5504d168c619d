#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/Files.h"

namespace vex2::test {

/// A field that holds a length or a count of what follows.
struct Field {
  std::size_t offset = 0;
  std::size_t width = 0;  ///< bytes, big-endian
  std::string what;       ///< for messages: the tag of the record and what the field counts
};

/// The offsets of the bytes that determine the structure of a document.
struct Structure {
  std::vector<Field> fields;
  /// The offsets of all bytes of headers, tags, lengths and counts, ascending.
  std::vector<std::size_t> bytes;
};

/// Finds the structure by walking the records as docs/format.md describes, without the library. A
/// part that the document cuts off is left out, and so is everything after it.
Structure StructureOf(const Bytes& document);

}  // namespace vex2::test
