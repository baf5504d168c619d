// A module without a function to unload it. The loader must refuse it: its entry point aborts, so
// the test would fail if the loader called it.
#include <cstdlib>

extern "C" bool vex2ModuleLoad() {
  std::abort();
}
