#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vex2::lab {

/// How text for users is laid out: how wide it may be, which characters it may use, and whether it
/// may have colors.
class TextForm {
 public:
  enum class Style { kPlain, kBold, kDim, kGreen, kYellow, kRed, kCyan, kMagenta, kBlue };

  struct Layout {
    std::size_t width = 80;  ///< in columns
    bool isFolded = false;   ///< break lines at `width`; otherwise lines may have any length
    bool isAscii = false;
    bool hasColors = false;
  };

  TextForm() = default;
  explicit TextForm(const Layout& layout) : layout_(layout) {}

  /// The width in columns; 80 if it is not known.
  std::size_t Width() const { return layout_.width; }
  /// Whether lines must not exceed `Width`.
  bool HasWidth() const { return layout_.isFolded; }
  /// The width for breaking text; practically unlimited if `HasWidth` is false.
  std::size_t TextWidth() const;
  /// The width at which a plate is divided. It always has a limit, since very long lines of a plate
  /// are hard to read.
  std::size_t PlateWidth() const;
  /// Whether characters other than ASCII are shown as \uNNNN.
  bool IsAscii() const { return layout_.isAscii; }
  bool HasColors() const { return layout_.hasColors; }

  /// `text` in this style; unchanged if there are no colors.
  std::string Styled(std::string_view text, Style style) const;
  /// The mark that shows that text was left out.
  std::string_view Ellipsis() const { return IsAscii() ? "..." : "…"; }
  /// `text` without control characters, and only with characters that may be used.
  std::string Printable(std::string_view text) const;
  /// A Latin-1 text of a document for display: printable, in quotes and on one line. If it is
  /// longer than `width` columns, it is cut and ends with an ellipsis.
  std::string Shown(std::string_view latin1, std::size_t width) const;
  /// `utf8` cut to `width` columns. If something is cut off, it ends with an ellipsis.
  std::string CutTo(std::string_view utf8, std::size_t width) const;
  /// Breaks `text` into lines of at most `Width` columns; each line but the first is indented by
  /// `indent` columns. If `HasWidth` is false, returns one line.
  std::string Wrapped(std::string_view text, std::size_t indent) const;

 private:
  Layout layout_;
};

}  // namespace vex2::lab
