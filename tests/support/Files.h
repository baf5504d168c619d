#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::test {

using Bytes = std::vector<std::uint8_t>;

/// The whole content of a file. Throws `std::system_error` when it cannot be read.
Bytes ReadBytes(const std::filesystem::path& path);

/// Makes `path` hold just `bytes`, with the system's own calls and without the library under
/// test. Throws `std::system_error` when it cannot be written.
void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);

/// The characters of `text` as bytes, for literals.
Bytes ToBytes(std::string_view text);

/// Where `actual` first differs from `expected`, with a few bytes around the place, or nothing
/// when they are equal: for EXPECT_EQ(FirstDifference(a, b), "") on files too long to print.
std::string FirstDifference(const Bytes& actual, const Bytes& expected);

}  // namespace vex2::test
