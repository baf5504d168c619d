#pragma once

#include "vex2/framework/Export.h"

namespace vex2 {
class Host;
}

/// Tells the host that a long operation runs, from the construction to the destruction of the
/// object.
class VEX2_API CWaitCursor {
 public:
  /// Tells the host that the operation begins.
  CWaitCursor();
  /// Tells the host that the operation has ended.
  ~CWaitCursor();
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;

 private:
  vex2::Host* host_;  // EndWait goes to the host that received BeginWait
};
