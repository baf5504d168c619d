#pragma once

#include <cstdint>

#include "vex2/framework/Language.h"

namespace vex2 {

/// The first reason why a document could not be read whole.
struct ReadFault {
  std::uint64_t offset = 0;  ///< of the record that is at fault, or where the reading stopped
  const char* reason = "";   ///< a constant, e.g. "the record cannot be read"; empty if none
};

}  // namespace vex2
