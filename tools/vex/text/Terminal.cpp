#include "tools/vex/text/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <limits>

namespace vex2::tool {

namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::size_t kLeastWidth = 40;

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::size_t widthOf(int file) {
  winsize size{};
  if (ioctl(file, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
  return size.ws_col < kLeastWidth ? kLeastWidth : size.ws_col;
}

}  // namespace

Terminal::Terminal(int file)
    : isTerminal_(isatty(file) != 0),
      hasColours_(isTerminal_ && environment("NO_COLOR").empty() && environment("TERM") != "dumb"),
      width_(widthOf(file)) {}

const Terminal& Terminal::Out() {
  static const Terminal terminal(STDOUT_FILENO);
  return terminal;
}

const Terminal& Terminal::Error() {
  static const Terminal terminal(STDERR_FILENO);
  return terminal;
}

std::size_t Terminal::TextWidth() const {
  // Leaves room for arithmetic on widths.
  return isTerminal_ ? width_ : std::numeric_limits<std::size_t>::max() / 2;
}

std::string Terminal::Styled(std::string_view text, Style style) const {
  if (!hasColours_ || style == Style::kPlain) return std::string(text);
  constexpr std::array<std::string_view, 9> kCodes = {"0",  "1",  "2",  "32", "33",
                                                      "31", "36", "35", "34"};
  std::string styled = "\x1b[";
  styled.append(kCodes[static_cast<std::size_t>(style)]).append("m");
  return styled.append(text).append("\x1b[0m");
}

}  // namespace vex2::tool
