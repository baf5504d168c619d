#include "vex2/manager/TracedTime.h"

#include <utility>

#include "vex2/framework/CTimeSpan.h"
#include "vex2/framework/Host.h"

namespace vex2 {

TracedTime::TracedTime(std::string what) : what_(std::move(what)), start_(GetHost()->Now()) {}

TracedTime::~TracedTime() {
  const CTimeSpan elapsed = GetHost()->Now() - start_;
  const std::string format =
      "Total time needed for " + what_ + " is: days: %D, hours: %H, mins: %M, secs: %S\n";
  GetHost()->Trace(elapsed.Format(format.c_str()).GetString());
}

}  // namespace vex2
