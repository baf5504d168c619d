// A module that could never be unloaded. Loading it would be seen: its entry point ends the test.
#include <cstdlib>

extern "C" bool vex2ModuleLoad() {
  std::abort();
}
