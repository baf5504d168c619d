// A module that could never be unloaded. If the loader loaded it, the test would fail: its entry
// point aborts.
#include <cstdlib>

extern "C" bool vex2ModuleLoad() {
  std::abort();
}
