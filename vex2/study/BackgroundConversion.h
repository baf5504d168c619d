#pragma once

#include <cstddef>
#include <span>

/// The conversion of background readings. Internal.
namespace vex2 {

/// The number of values: the conversion reads the first 24 and sets the last 4.
constexpr std::size_t kBackgroundValues = 28;

/// Computes the four rates of a background document. `values` has twelve readings in groups of
/// three, then their twelve factors, then the four rates, which this function sets. A rate that is
/// negative or not a number becomes 0; a reading of 0 may give an infinite rate. Does nothing if
/// there are fewer than `kBackgroundValues` values.
void ConvertBackground(std::span<float> values, double scale);

}  // namespace vex2
