#pragma once

#include <cstddef>
#include <span>

/// Internal.
namespace vex2 {

/// The conversion reads 24 values and writes the 4 behind them.
constexpr std::size_t kBackgroundValues = 28;

/// Turns the readings of a background document into its four rates. `values` holds twelve readings
/// in groups of three, their twelve factors, and the places of the rates. A rate below 0, and one
/// that is no number, is 0; one of a reading of 0 may be infinite. With fewer than
/// `kBackgroundValues` values nothing happens.
void ConvertBackground(std::span<float> values, double scale);

}  // namespace vex2
