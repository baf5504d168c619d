#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/vex/Terminal.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

/// The options that every command has: the width and colors of output for people.
class ScreenOptions {
 public:
  void AddTo(Options& options);
  /// The given width and colors. Call this after the command line was parsed.
  Terminal::Wishes Wishes() const;

 private:
  std::optional<std::uint32_t> width_;
  std::string color_ = "auto";
};

}  // namespace vex2::tool
