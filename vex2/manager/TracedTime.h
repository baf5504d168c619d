#pragma once

#include "vex2/framework/CTime.h"

/// Measures how long an operation takes and writes this to the diagnostic trace. Internal.
namespace vex2 {

class TracedTime {
 public:
  /// Starts the measurement. `what` completes "Total time needed for ...".
  explicit TracedTime(const char* what);
  /// Writes the time to the trace; writes nothing if memory runs out.
  ~TracedTime();
  TracedTime(const TracedTime&) = delete;
  TracedTime& operator=(const TracedTime&) = delete;

 private:
  const char* what_;
  CTime start_;
};

}  // namespace vex2
