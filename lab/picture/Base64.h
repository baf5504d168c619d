#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vex2::lab {

/// The bytes in Base64 (RFC 4648), padded.
std::string Base64(std::span<const std::uint8_t> bytes);
/// The numbers as bytes, the least significant first, in Base64.
std::string Base64(std::span<const std::uint16_t> numbers);

}  // namespace vex2::lab
