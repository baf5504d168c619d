#include "tools/vex/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>
#include <string_view>

#include "lab/Text.h"

namespace vex2::tool {

namespace {

constexpr std::size_t kUsualWidth = 80;

// The combined settings of the command line and the environment.
struct Settings {
  std::optional<std::size_t> width;
  Terminal::Color color = Terminal::Color::kAuto;
  bool isAscii = false;
};

Settings& settings() {
  static Settings settings;
  return settings;
}

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool isDumb() {
  return environment("TERM") == "dumb";
}

// Reads the environment instead of asking the C library, which knows only the locales that are
// installed here. A terminal on another machine may use another locale.
bool isUtf8Locale() {
  std::string_view locale;
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    locale = environment(name);
    if (!locale.empty()) break;
  }
  std::string letters;
  for (const char character : locale) {
    if (std::isalnum(static_cast<unsigned char>(character)) != 0) {
      letters += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
  }
  return letters.find("utf8") != std::string::npos;
}

std::size_t usable(std::size_t width) {
  return std::clamp(width, Terminal::kLeastWidth, Terminal::kMostWidth);
}

std::optional<std::size_t> columnsOfEnvironment() {
  const auto columns = NumberIn<std::size_t>(environment("COLUMNS"));
  if (!columns || *columns == 0) return std::nullopt;
  return usable(*columns);
}

std::size_t widthOf(int file) {
  if (settings().width) return *settings().width;
  winsize size{};
  if (ioctl(file, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
  return usable(size.ws_col);
}

bool colours(bool isTerminal) {
  switch (settings().color) {
    case Terminal::Color::kAlways:
      return true;
    case Terminal::Color::kNever:
      return false;
    case Terminal::Color::kAuto:
      break;
  }
  return isTerminal && environment("NO_COLOR").empty() && !isDumb();
}

Terminal& standard(int file) {
  static Terminal out(STDOUT_FILENO);
  static Terminal error(STDERR_FILENO);
  return file == STDOUT_FILENO ? out : error;
}

}  // namespace

void Terminal::Configure(const Wishes& wishes) {
  settings().width = wishes.width ? usable(*wishes.width) : columnsOfEnvironment();
  settings().color = wishes.color;
  settings().isAscii = isDumb() || !isUtf8Locale();
  for (const int file : {STDOUT_FILENO, STDERR_FILENO}) standard(file) = Terminal(file);
}

Terminal::Terminal(int file)
    : TextForm({.width = widthOf(file),
                .isFolded = ::isatty(file) != 0 || settings().width.has_value(),
                .isAscii = settings().isAscii,
                .hasColors = colours(::isatty(file) != 0)}),
      isTerminal_(::isatty(file) != 0) {}

const Terminal& Terminal::Out() {
  return standard(STDOUT_FILENO);
}

const Terminal& Terminal::Error() {
  return standard(STDERR_FILENO);
}

bool Terminal::CanRewriteLines() const {
  return isTerminal_ && !isDumb();
}

}  // namespace vex2::tool
