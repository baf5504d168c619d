#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vex2::tool {

/// What stands at the other end of an output: a person's terminal, or a file or another program.
class Terminal {
 public:
  enum class Style { kPlain, kBold, kDim, kGreen, kYellow, kRed, kCyan, kMagenta, kBlue };

  /// Of standard output.
  static const Terminal& Out();
  /// Of standard error.
  static const Terminal& Error();

  explicit Terminal(int file);

  bool IsTerminal() const { return isTerminal_; }
  /// Columns; 80 where nothing says otherwise.
  std::size_t Width() const { return width_; }
  /// The width to cut text to: no limit when it is for a file or another program.
  std::size_t TextWidth() const;
  /// `text` in that style; as it is when this is no terminal, a dumb one, or NO_COLOR is set.
  std::string Styled(std::string_view text, Style style) const;

 private:
  bool isTerminal_;
  bool hasColours_;
  std::size_t width_;
};

}  // namespace vex2::tool
