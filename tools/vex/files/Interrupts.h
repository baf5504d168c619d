#pragma once

#include <csignal>

namespace vex2::tool {

/// While it lives, Ctrl-C and a request to end are not obeyed at once but when asked for, so that
/// what is under way is finished first. Create it while there is only one thread. After the first
/// request that was noticed, later ones are ignored, even after the object is destroyed: by then
/// the command reports its result.
class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// Waits for `seconds`, or until asked to end. Returns true if asked to end, then or before.
  bool Wait(double seconds);
  /// Whether the command was asked to end. Does not wait.
  bool Pending() { return Wait(0); }

 private:
  sigset_t awaited_{};
  sigset_t before_{};
  bool asked_ = false;
};

}  // namespace vex2::tool
