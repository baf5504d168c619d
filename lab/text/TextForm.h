#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vex2::lab {

/// How text for people is laid out where it goes: how wide it may be, which characters it may use
/// and whether it may have colors.
class TextForm {
 public:
  enum class Style { kPlain, kBold, kDim, kGreen, kYellow, kRed, kCyan, kMagenta, kBlue };

  struct Layout {
    std::size_t width = 80;  ///< in columns
    bool isFolded = false;  ///< lines end within the width; otherwise they are as long as they come
    bool isAscii = false;
    bool hasColors = false;
  };

  TextForm() = default;
  explicit TextForm(const Layout& layout) : layout_(layout) {}

  /// Columns; 80 where nothing says otherwise.
  std::size_t Width() const { return layout_.width; }
  /// Whether there is a width to keep.
  bool HasWidth() const { return layout_.isFolded; }
  /// The width to fold text at: no limit where there is none to keep.
  std::size_t TextWidth() const;
  /// The width to fold the columns of a plate at, of which a line without limit is of no use to
  /// anybody.
  std::size_t PlateWidth() const;
  /// Whether other characters than ASCII are shown as \uNNNN.
  bool IsAscii() const { return layout_.isAscii; }
  bool HasColors() const { return layout_.hasColors; }

  /// `text` in that style; as it is where there are no colors.
  std::string Styled(std::string_view text, Style style) const;
  /// The mark for text that was left out.
  std::string_view Ellipsis() const { return IsAscii() ? "..." : "…"; }
  /// `text` without anything that a terminal would obey, and in the characters that may be used.
  std::string Printable(std::string_view text) const;
  /// A Latin-1 text of a document as a person sees it: printable, in quotes and on one line. Cut to
  /// `width` columns, with an ellipsis at the end then.
  std::string Shown(std::string_view latin1, std::size_t width) const;
  /// `utf8` cut to `width` columns, with an ellipsis at the end then.
  std::string CutTo(std::string_view utf8, std::size_t width) const;
  /// `text` in lines within the width, each but the first `indent` columns in; in one line where
  /// there is no width to keep.
  std::string Wrapped(std::string_view text, std::size_t indent) const;

 private:
  Layout layout_;
};

}  // namespace vex2::lab
