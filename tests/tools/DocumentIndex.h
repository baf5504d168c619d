#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vex2/framework/CFile.h"

namespace vex2::test {

/// The content of a document as readers find it: each record at any depth and each frame, with its
/// offsets and its content.
struct DocumentIndex {
  struct Part {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::string tag;     ///< of the record, or of the data block of the frame
    std::string around;  ///< tag of the record around the record or data block; or empty
    bool isFrame = false;
    bool isKnown = true;      ///< whether the library knows the tag
    std::size_t content = 0;  ///< equal for parts of the same kind with the same content
  };

  std::vector<Part> parts;
  std::uint64_t end = 0;  ///< the offset at which the reading ended
  std::string fault;      ///< why the reading ended before the end of the file
};

/// Returns the index of the open `file`. Two records have the same content if readers read the same
/// values from both. Lengths that readers do not use and the counts of lists are not compared; the
/// records in the lists are.
DocumentIndex IndexDocument(CFile& file);

}  // namespace vex2::test
