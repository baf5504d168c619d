#pragma once

#include "vex2/framework/CTime.h"

/// Times a long operation and writes to the diagnostic trace when it ends. Internal.
namespace vex2 {

class TracedTime {
 public:
  /// `what` completes "Total time needed for ...".
  explicit TracedTime(const char* what);
  /// Writes nothing if memory runs out.
  ~TracedTime();
  TracedTime(const TracedTime&) = delete;
  TracedTime& operator=(const TracedTime&) = delete;

 private:
  const char* what_;
  CTime start_;
};

}  // namespace vex2
