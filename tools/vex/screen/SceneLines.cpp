#include "tools/vex/screen/SceneLines.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "tools/vex/Terminal.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

constexpr std::size_t kGroupStyles = 8;

// The number of lines of the terminal; 24 if it is unknown.
std::size_t terminalHeight() {
  constexpr std::size_t kUsual = 24;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) return kUsual;
  return size.ws_row;
}

// The colour of a terminal with eight colours that is nearest to the palette of the plots.
Style styleOf(const CellRun& run) {
  constexpr std::array<Style, kGroupStyles> kGroups = {
      Style::kBlue,   Style::kRed,  Style::kGreen, Style::kMagenta,
      Style::kYellow, Style::kCyan, Style::kBold,  Style::kPlain};
  constexpr std::array<Style, 4> kScale = {Style::kBlue, Style::kCyan, Style::kGreen,
                                           Style::kYellow};
  if (run.isSoft) return Style::kDim;
  if (run.look.group) return kGroups[*run.look.group % kGroups.size()];
  if (!run.look.share) return Style::kPlain;
  const double place = std::clamp(*run.look.share, 0.0, 1.0) * kScale.size();
  return kScale[std::min(static_cast<std::size_t>(place), kScale.size() - 1)];
}

}  // namespace

CellSize ScreenSize() {
  const Terminal& terminal = Terminal::Out();
  return {.width = terminal.Width(),
          .height = terminalHeight() - 1,
          .isAscii = terminal.IsAscii(),
          .colours = terminal.HasColors() ? kGroupStyles : 0};
}

std::vector<std::string> LinesOf(const Scene& scene, const CellSize& size) {
  const Terminal& terminal = Terminal::Out();
  std::vector<std::string> lines;
  for (const auto& runs : CellsOf(scene, size)) {
    std::string& line = lines.emplace_back();
    for (const CellRun& run : runs) line += terminal.Styled(run.text, styleOf(run));
  }
  return lines;
}

}  // namespace vex2::tool
