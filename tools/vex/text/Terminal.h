#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vex2::tool {

/// The other end of an output: a person's terminal, or a file or another program. All that is
/// printed for people asks here how wide it may be, which characters it may use and whether it may
/// have colours.
class Terminal {
 public:
  enum class Style { kPlain, kBold, kDim, kGreen, kYellow, kRed, kCyan, kMagenta, kBlue };
  enum class Color { kAuto, kAlways, kNever };

  /// What the user asks of all screens.
  struct Wishes {
    std::optional<std::size_t> width;  ///< in columns
    Color color = Color::kAuto;
  };

  static constexpr std::size_t kLeastWidth = 40;
  static constexpr std::size_t kMostWidth = 10000;

  /// Takes the wishes of the command line and, where they say nothing, those of the environment:
  /// COLUMNS, NO_COLOR, TERM and the locale. Called before anything is printed; until then outputs
  /// are taken for UTF-8 and as wide as the terminal.
  static void Configure(const Wishes& wishes);

  /// Of standard output.
  static const Terminal& Out();
  /// Of standard error.
  static const Terminal& Error();
  /// Whether only ASCII may be printed: the locale is not a UTF-8 one, or the terminal is dumb.
  static bool IsAscii();

  explicit Terminal(int file);

  bool IsTerminal() const { return isTerminal_; }
  /// Whether a line can be erased and written again.
  bool CanRewriteLines() const;
  /// Columns; 80 where nothing says otherwise.
  std::size_t Width() const { return width_; }
  /// Whether there is a width to keep: a terminal's, or one that was asked for. A file or another
  /// program gets lines as long as they come.
  bool HasWidth() const { return isTerminal_ || isWidthAskedFor_; }
  /// The width to fold text at: no limit where there is none to keep.
  std::size_t TextWidth() const;
  /// The width to fold the columns of a plate at, of which a line without limit is of no use to
  /// anybody.
  std::size_t PlateWidth() const;
  /// `text` in that style; as it is where there are no colours.
  std::string Styled(std::string_view text, Style style) const;

 private:
  bool isTerminal_;
  bool hasColours_;
  bool isWidthAskedFor_;
  std::size_t width_;
};

}  // namespace vex2::tool
