#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vex2/framework/CFile.h"

namespace vex2::test {

/// What a document holds, as its readers find it: each record at any depth and each frame, with the
/// bytes it takes and what it says.
struct DocumentIndex {
  struct Part {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::string tag;     ///< of the record, or of a frame's block
    std::string around;  ///< of what it, or a frame's block, stands right in; empty for none
    bool isFrame = false;
    bool isKnown = true;      ///< to the library
    std::size_t content = 0;  ///< equal for parts of the same kind that say the same
  };

  std::vector<Part> parts;
  std::uint64_t end = 0;  ///< where the reading ended
  std::string fault;      ///< why, when it was not the file's end
};

/// The index of the open `file`. A record says the same as another when readers take the same from
/// both: lengths that they do not go by do not count, nor do the counts of lists, but what stands
/// in them.
DocumentIndex IndexDocument(CFile& file);

}  // namespace vex2::test
