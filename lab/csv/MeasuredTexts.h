#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "lab/model/ReadingScale.h"

namespace vex2::lab {

/// The texts of readings that were stored with one scale. Each of the 65,536 stored numbers occurs
/// many times, so its text is made only once.
class MeasuredTexts {
 public:
  explicit MeasuredTexts(const ReadingScale& scale);

  /// Appends the text of the reading that `stored` represents, see `ReadingScale::MeasuredText`.
  void AppendTo(std::string& out, std::uint16_t stored);

 private:
  /// A text of at most 15 characters; empty until it is made.
  struct Text {
    std::array<char, 15> characters;
    std::uint8_t length;
  };
  static constexpr std::size_t kStoredNumbers = 65536;

  ReadingScale scale_;
  std::unique_ptr<Text[]> texts_;
};

}  // namespace vex2::lab
