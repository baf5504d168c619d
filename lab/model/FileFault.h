#pragma once

#include <cstdint>
#include <string>

#include "vex2/framework/Language.h"

namespace vex2::lab {

/// What is wrong with a file, and where.
struct FileFault {
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  /// As a text for the user: "the record "RAWa" is cut short: 3 of 4 frames ...".
  std::string what;

  /// Whether both fields are equal.
  friend bool operator==(const FileFault&, const FileFault&) = default;
};

}  // namespace vex2::lab
