#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/Files.h"

namespace vex2::test {

/// A field that says how much of something follows: a length, or a count.
struct Field {
  std::size_t offset = 0;
  std::size_t width = 0;  ///< bytes, big-endian
  std::string what;       ///< for messages: the record's tag and what is counted
};

/// Where the parts of a document lie that say where others lie.
struct Structure {
  std::vector<Field> fields;
  /// Bytes of headers, tags, lengths and counts, ascending.
  std::vector<std::size_t> bytes;
};

/// Finds them by walking the records as the format has them, without the library. What does not
/// fit into the document is left out, with all that follows it.
Structure StructureOf(const Bytes& document);

}  // namespace vex2::test
