#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/vex/Options.h"
#include "tools/vex/text/Terminal.h"

namespace vex2::tool {

/// The options that every command has: how what it prints for people looks.
class ScreenOptions {
 public:
  void AddTo(Options& options);
  /// What was given, once the command line was read.
  Terminal::Wishes Wishes() const;

 private:
  std::optional<std::uint32_t> width_;
  std::string color_ = "auto";
};

}  // namespace vex2::tool
