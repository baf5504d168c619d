#include "tools/vex/Interrupts.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>

namespace vex2::tool {

namespace {

using Clock = std::chrono::steady_clock;

// A signal that the parent process ignored stays ignored, as in a background job.
bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

timespec timeUntil(Clock::time_point end) {
  const auto left = std::max(end - Clock::now(), Clock::duration::zero());
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(left - seconds);
  timespec time{};
  time.tv_sec = static_cast<std::time_t>(seconds.count());
  time.tv_nsec = static_cast<long>(rest.count());
  return time;
}

}  // namespace

Interrupts::Interrupts() {
  ::sigemptyset(&awaited_);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    if (!isIgnored(signal)) ::sigaddset(&awaited_, signal);
  }
  ::sigprocmask(SIG_BLOCK, &awaited_, &before_);
}

Interrupts::~Interrupts() {
  // After the first signal, the command only reports its result. A second signal must not end the
  // process before that.
  if (asked_) return;
  const timespec now{};
  while (::sigtimedwait(&awaited_, nullptr, &now) > 0) continue;
  ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

bool Interrupts::Wait(double seconds) {
  const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                      std::chrono::duration<double>(seconds));
  while (!asked_) {
    const timespec left = timeUntil(end);
    if (::sigtimedwait(&awaited_, nullptr, &left) > 0) {
      asked_ = true;
    } else if (errno != EINTR) {
      break;
    }
  }
  return asked_;
}

}  // namespace vex2::tool
