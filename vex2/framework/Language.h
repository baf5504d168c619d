#pragma once

/// Stops a compiler that is set to an older standard with one message instead of hundreds. Every
/// public header that includes no other of the library includes this one.
#if __cplusplus < 202002L
#error "vex2 needs C++20 or later: compile with -std=c++20"
// No such file: after #error alone, compilers go on to report every line that they cannot read.
#include "vex2/stop: compile with -std=c++20"
#endif
