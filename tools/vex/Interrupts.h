#pragma once

#include <csignal>

namespace vex2::tool {

/// While this object exists, SIGINT, SIGTERM and SIGHUP do not end the process. The command asks
/// for them with `Wait` or `Pending`, so that it can finish its current step first. Create the
/// object while there is only one thread. After the first signal was noticed, later ones are
/// ignored, even after the object is destroyed, because the command is then reporting its result.
class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// Waits for `seconds`, or until a signal arrives. Returns true if a signal has arrived, now or
  /// before.
  bool Wait(double seconds);
  /// Whether a signal has arrived. Does not wait.
  bool Pending() { return Wait(0); }

 private:
  sigset_t awaited_{};
  sigset_t before_{};
  bool asked_ = false;
};

}  // namespace vex2::tool
