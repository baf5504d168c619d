#pragma once

#include <cstddef>
#include <cstdint>

/// The function that every fuzz target defines. Processes one input, and ends the program if an
/// invariant does not hold. Always returns 0. Called by libFuzzer or, without it, by `Replay.cpp`.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vex2::fuzz {

/// If `holds` is false, prints the expectation `what` and ends the program.
void Require(bool holds, const char* what);

}  // namespace vex2::fuzz
