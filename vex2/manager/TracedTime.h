#pragma once

#include "vex2/framework/CTime.h"

/// Times a long operation and tells the diagnostic trace when it ends. Internal.
namespace vex2 {

class TracedTime {
 public:
  /// `what` completes "Total time needed for ...".
  explicit TracedTime(const char* what);
  /// Tells nothing when memory runs out.
  ~TracedTime();
  TracedTime(const TracedTime&) = delete;
  TracedTime& operator=(const TracedTime&) = delete;

 private:
  const char* what_;
  CTime start_;
};

}  // namespace vex2
