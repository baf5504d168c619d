#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "lab/text/TextForm.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// The properties of an output, which is a terminal, a file or a pipe. Code that prints for people
/// asks it for the width, the usable characters and whether colors are allowed. The width of a file
/// or pipe is not limited.
class Terminal : public TextForm {
 public:
  enum class Color { kAuto, kAlways, kNever };

  /// The width and colors that the user asks for.
  struct Wishes {
    std::optional<std::size_t> width;  ///< in columns
    Color color = Color::kAuto;
  };

  static constexpr std::size_t kLeastWidth = 40;
  static constexpr std::size_t kMostWidth = 10000;
  /// Erases from the cursor to the end of the line.
  static constexpr std::string_view kEraseToEnd = "\x1b[K";

  /// Applies the options of the command line and, where they are absent, the environment: COLUMNS,
  /// NO_COLOR, TERM and the locale. Call this before anything is printed. Until then outputs are
  /// assumed to be UTF-8 and as wide as the terminal.
  static void Configure(const Wishes& wishes);

  /// The properties of standard output.
  static const Terminal& Out();
  /// The properties of standard error.
  static const Terminal& Error();

  explicit Terminal(int file);

  bool IsTerminal() const { return isTerminal_; }
  /// Whether a line can be erased and rewritten.
  bool CanRewriteLines() const;

 private:
  bool isTerminal_;
};

}  // namespace vex2::tool
