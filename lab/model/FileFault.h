#pragma once

#include <cstdint>
#include <string>

#include "vex2/framework/Language.h"

namespace vex2::lab {

/// What is wrong at a place in a file.
struct FileFault {
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::string what;          ///< for people: "the record "RAWa" is cut short: 3 of 4 frames ..."

  /// Whether both fields are equal.
  friend bool operator==(const FileFault&, const FileFault&) = default;
};

}  // namespace vex2::lab
