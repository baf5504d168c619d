#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vex2::lab {

/// The bytes in Base64 (RFC 4648), padded.
std::string Base64(std::span<const std::uint8_t> bytes);
/// The 16-bit numbers in Base64, the least significant byte of each first.
std::string Base64(std::span<const std::uint16_t> numbers);

}  // namespace vex2::lab
