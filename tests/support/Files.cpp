#include "tests/support/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <ios>
#include <iterator>
#include <system_error>

namespace vex2::test {

namespace {

std::string hexAround(const Bytes& bytes, std::size_t place) {
  const std::size_t first = place - std::min<std::size_t>(place, 4);
  const std::size_t last = std::min(bytes.size(), place + 8);
  std::string text;
  for (std::size_t i = first; i < last; ++i) {
    char digits[8];
    std::snprintf(digits, sizeof digits, i == place ? "[%02x] " : "%02x ", bytes[i]);
    text += digits;
  }
  return last <= place ? text + "[end] " : text;
}

}  // namespace

Bytes ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  Bytes bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (!in.is_open() || in.bad()) {
    throw std::system_error(errno, std::generic_category(), path.string());
  }
  return bytes;
}

void WriteBytes(const std::filesystem::path& path, const Bytes& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    throw std::system_error(errno, std::generic_category(), path.string());
  }
}

Bytes ToBytes(std::string_view text) {
  return Bytes(text.begin(), text.end());
}

std::string FirstDifference(const Bytes& actual, const Bytes& expected) {
  const auto [a, e] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
  if (a == actual.end() && e == expected.end()) {
    return "";
  }
  const auto place = static_cast<std::size_t>(a - actual.begin());
  return "at byte " + std::to_string(place) + " (of " + std::to_string(actual.size()) +
         ", expected " + std::to_string(expected.size()) + "): " + hexAround(actual, place) +
         "in place of " + hexAround(expected, place);
}

}  // namespace vex2::test
