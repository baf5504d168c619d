#include "lab/text/TextForm.h"

#include <algorithm>
#include <array>
#include <limits>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/text/Columns.h"

namespace vex2::lab {

std::size_t TextForm::TextWidth() const {
  // Half of the largest number, so that sums of widths do not overflow.
  constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max() / 2;
  return HasWidth() ? Width() : kNoLimit;
}

std::size_t TextForm::PlateWidth() const {
  constexpr std::size_t kWidestPlate = 200;
  return HasWidth() ? Width() : kWidestPlate;
}

std::string TextForm::Styled(std::string_view text, Style style) const {
  if (!layout_.hasColors || style == Style::kPlain) return std::string(text);
  constexpr std::array<std::string_view, 9> kCodes = {"0",  "1",  "2",  "32", "33",
                                                      "31", "36", "35", "34"};
  std::string styled = "\x1b[";
  styled.append(kCodes[static_cast<std::size_t>(style)]).append("m");
  return styled.append(text).append("\x1b[0m");
}

std::string TextForm::Printable(std::string_view text) const {
  std::string escaped = Escaped(text);
  return IsAscii() ? ToAscii(escaped) : escaped;
}

std::string TextForm::Shown(std::string_view latin1, std::size_t width) const {
  // A malicious text may be very long, so convert only the part that is visible.
  const std::string text = Printable(ToUtf8(latin1.substr(0, width)));
  constexpr std::size_t kQuotes = 2;
  if (latin1.size() <= width && Columns(text) + kQuotes <= width) return '"' + text + '"';
  return '"' + CutTo(text + std::string(Ellipsis()), width > kQuotes ? width - kQuotes : 1) + '"';
}

std::string TextForm::CutTo(std::string_view utf8, std::size_t width) const {
  return lab::CutTo(utf8, width, Ellipsis());
}

std::string TextForm::Wrapped(std::string_view text, std::size_t indent) const {
  if (!HasWidth()) return std::string(text);
  // Longer lines are not easier to read, even in a wider window.
  constexpr std::size_t kWidest = 100;
  return Folded(text, indent, std::min(Width(), kWidest));
}

}  // namespace vex2::lab
