#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::test {

using Bytes = std::vector<std::uint8_t>;

/// The whole content of a file. Throws `std::system_error` if it cannot be read.
Bytes ReadBytes(const std::filesystem::path& path);

/// Replaces the content of `path` by `bytes`, with system calls and without the library under test.
/// Throws `std::system_error` if the file cannot be written.
void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);

/// The characters of `text` as bytes, for literals.
Bytes ToBytes(std::string_view text);

/// The offset at which `actual` first differs from `expected`, with a few bytes around it; empty if
/// they are equal. For EXPECT_EQ(FirstDifference(a, b), "") on files too long to print.
std::string FirstDifference(const Bytes& actual, const Bytes& expected);

}  // namespace vex2::test
