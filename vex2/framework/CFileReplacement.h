#pragma once

#include <string>

#include "vex2/framework/CFile.h"

/// What an open replacement needs to take its target's place, or to leave no trace. Internal.
struct CFile::Replacement {
  Replacement() = default;
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  /// Removes the temporary file unless it was put in place, and lets go of the target's lock.
  ~Replacement();

  std::string target;     ///< with symbolic links resolved
  std::string temporary;  ///< empty when the target itself is written
  int targetHandle = -1;  ///< holds the target's lock; -1 when there was no target
};
