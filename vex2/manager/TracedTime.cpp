#include "vex2/manager/TracedTime.h"

#include <new>
#include <string>

#include "vex2/framework/CTimeSpan.h"
#include "vex2/framework/Host.h"

namespace vex2 {

TracedTime::TracedTime(const char* what) : what_(what), start_(GetHost()->Now()) {}

TracedTime::~TracedTime() {
  try {
    const CTimeSpan elapsed = GetHost()->Now() - start_;
    const std::string format = std::string("Total time needed for ") + what_ +
                               " is: days: %D, hours: %H, mins: %M, secs: %S\n";
    GetHost()->Trace(elapsed.Format(format.c_str()).GetString());
  } catch (const std::bad_alloc&) {
    // The operation must not fail because the message about it cannot be made.
  }
}

}  // namespace vex2
