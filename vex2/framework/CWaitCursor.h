#pragma once

#include "vex2/framework/Export.h"

namespace vex2 {
class Host;
}

/// Tells the host that a long operation runs for as long as the object lives.
class VEX2_API CWaitCursor {
 public:
  CWaitCursor();
  ~CWaitCursor();
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;

 private:
  vex2::Host* host_;  // the one that was told of the begin is told of the end
};
