#include "tools/vex/options/ScreenOptions.h"

namespace vex2::tool {

namespace {

constexpr const char* kGroup = "Screen options";

}  // namespace

void ScreenOptions::AddTo(Options& options) {
  options.Add("--width", width_, "Width; default: COLUMNS or that of the terminal")
      .Show("N")
      .Group(kGroup)
      .AllowRange(static_cast<std::uint32_t>(Terminal::kLeastWidth),
                  static_cast<std::uint32_t>(Terminal::kMostWidth));
  options.Add("--color", color_, "Colors: auto (the default), always or never")
      .AllowOnly({"auto", "always", "never"})
      .Show("WHEN")
      .Group(kGroup);
}

Terminal::Wishes ScreenOptions::Wishes() const {
  Terminal::Wishes wishes;
  if (width_) wishes.width = *width_;
  if (color_ == "always") wishes.color = Terminal::Color::kAlways;
  if (color_ == "never") wishes.color = Terminal::Color::kNever;
  return wishes;
}

}  // namespace vex2::tool
