#pragma once

#include <cstddef>
#include <cstdint>

/// What every fuzz target defines: works through one input, and ends the program where something is
/// wrong. Always 0. Called by libFuzzer, and by `Replay.cpp` where there is none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vex2::fuzz {

/// Ends the program, saying `what` was expected, when it does not hold.
void Require(bool holds, const char* what);

}  // namespace vex2::fuzz
