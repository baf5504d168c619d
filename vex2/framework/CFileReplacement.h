#pragma once

#include <string>

#include "vex2/framework/CFile.h"

/// The state of a replacement that is not finished: what is needed to put the new file in place or
/// to remove it. Internal.
struct CFile::Replacement {
  Replacement() = default;
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  /// Removes the temporary file unless it was put in place, and releases the lock of the target.
  ~Replacement();

  std::string target;     ///< with symbolic links resolved
  std::string temporary;  ///< empty if the target itself is written
  int targetHandle = -1;  ///< holds the lock of the target; -1 if there was no target
};
