#pragma once

#include <cstddef>
#include <optional>

#include "lab/text/TextForm.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// The other end of an output: a person's terminal, or a file or another program. All that is
/// printed for people asks here how wide it may be, which characters it may use and whether it may
/// have colors. A file or another program gets lines as long as they come.
class Terminal : public TextForm {
 public:
  enum class Color { kAuto, kAlways, kNever };

  /// What the user asks of all screens.
  struct Wishes {
    std::optional<std::size_t> width;  ///< in columns
    Color color = Color::kAuto;
  };

  static constexpr std::size_t kLeastWidth = 40;
  static constexpr std::size_t kMostWidth = 10000;

  /// Takes the wishes of the command line and, where they say nothing, those of the environment:
  /// COLUMNS, NO_COLOR, TERM and the locale. Called before anything is printed; until then outputs
  /// are taken for UTF-8 and as wide as the terminal.
  static void Configure(const Wishes& wishes);

  /// Of standard output.
  static const Terminal& Out();
  /// Of standard error.
  static const Terminal& Error();

  explicit Terminal(int file);

  bool IsTerminal() const { return isTerminal_; }
  /// Whether a line can be erased and written again.
  bool CanRewriteLines() const;

 private:
  bool isTerminal_;
};

}  // namespace vex2::tool
