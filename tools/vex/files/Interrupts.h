#pragma once

#include <csignal>

namespace vex2::tool {

/// While it lives, Ctrl-C and a request to end are not obeyed at once but when asked for, so that
/// what is under way is finished first. Made on the only thread. Who asks again gets no answer,
/// also after its end: by then the program says how it went.
class Interrupts {
 public:
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  /// Waits for that many seconds, or until asked to end. True when asked to end, also before.
  bool Wait(double seconds);
  /// The same without waiting.
  bool Pending() { return Wait(0); }

 private:
  sigset_t awaited_{};
  sigset_t before_{};
  bool asked_ = false;
};

}  // namespace vex2::tool
