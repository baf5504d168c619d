#pragma once

#include <cstdint>

#include "vex2/framework/Language.h"

namespace vex2 {

/// The first thing that kept a document from being read whole.
struct ReadFault {
  std::uint64_t offset = 0;  ///< in the file: of the record concerned, or of where reading ended
  const char* reason = "";   ///< a constant text, e.g. "the record cannot be read"; empty for none
};

}  // namespace vex2
