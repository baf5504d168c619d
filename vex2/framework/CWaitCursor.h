#pragma once

#include "vex2/framework/Export.h"

namespace vex2 {
class Host;
}

/// Informs the host that a long operation is running, from the construction of the object to its
/// destruction.
class VEX2_API CWaitCursor {
 public:
  /// Informs the host that the operation begins.
  CWaitCursor();
  /// Informs the host that the operation has ended.
  ~CWaitCursor();
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;

 private:
  vex2::Host* host_;  // EndWait goes to the host that received BeginWait
};
