#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lab/picture/CellPicture.h"

namespace vex2::lab {

/// Lines and dots in the cells of a terminal.
class CellCanvas {
 public:
  /// With `hasLetters` curves are drawn in the letters of their looks, else in dots.
  CellCanvas(std::size_t columns, std::size_t lines, bool isAscii, bool hasLetters)
      : columns_(columns),
        lines_(lines),
        isAscii_(isAscii),
        hasLetters_(hasLetters),
        cells_(columns * lines) {}

  /// A line between two places, in shares of the canvas from its lower left corner.
  void Line(double x1, double y1, double x2, double y2, const Look& look);
  /// A line of dashes from side to side, below what was drawn.
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

/// How many groups have a letter of their own.
inline constexpr std::size_t kMostLetters = 52;

/// A letter for a group, a to z and A to Z, or a digit for a place on a scale; "*" for groups
/// beyond the letters, and for what has no value.
char LetterOf(const Look& look);

}  // namespace vex2::lab
