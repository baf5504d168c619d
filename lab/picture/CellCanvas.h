#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lab/picture/CellPicture.h"

namespace vex2::lab {

/// Draws lines and dots in the cells of a terminal.
class CellCanvas {
 public:
  /// If `hasLetters`, curves are drawn with the letters of their looks, otherwise with dots.
  CellCanvas(std::size_t columns, std::size_t lines, bool isAscii, bool hasLetters)
      : columns_(columns),
        lines_(lines),
        isAscii_(isAscii),
        hasLetters_(hasLetters),
        cells_(columns * lines) {}

  /// Draws a line between two points, whose coordinates are fractions of the canvas from its lower
  /// left corner.
  void Line(double x1, double y1, double x2, double y2, const Look& look);
  /// Draws a dashed line across the whole width, behind the curves.
  void Rule(double y);
  std::vector<CellRun> LineAt(std::size_t line) const;

 private:
  struct Cell {
    std::uint8_t dots = 0;
    bool isRule = false;
    Look look;
  };

  void dot(double x, double y, const Look& look);
  std::string textOf(const Cell& cell) const;

  std::size_t columns_;
  std::size_t lines_;
  bool isAscii_;
  bool hasLetters_;
  std::vector<Cell> cells_;
};

/// The largest number of groups that can have a letter each; further groups share "*".
inline constexpr std::size_t kMostLetters = 52;

/// The letter of a group, a to z and A to Z, or the digit of a value on a scale. It is "*" for
/// further groups, and for a look without a value.
char LetterOf(const Look& look);

}  // namespace vex2::lab
