#pragma once

/// Makes a compiler with an older language standard print one message instead of hundreds. Every
/// public header that includes no other header of the library includes this one.
#if __cplusplus < 202002L
#error "vex2 needs C++20 or later: compile with -std=c++20"
// This file does not exist: after #error alone, compilers report every line that they cannot parse.
#include "vex2/stop: compile with -std=c++20"
#endif
