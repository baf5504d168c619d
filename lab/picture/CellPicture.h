#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/picture/Scene.h"

namespace vex2::lab {

/// A stretch of a line of a terminal in one colour.
struct CellRun {
  std::string text;     ///< UTF-8, a column for each character
  Look look;            ///< of data
  bool isSoft = false;  ///< axes and words beside the data
};

/// A picture as lines of a terminal.
using CellPicture = std::vector<std::vector<CellRun>>;

/// What a terminal can show.
struct CellSize {
  std::size_t width = 80;   ///< in columns
  std::size_t height = 24;  ///< in lines
  bool isAscii = false;     ///< no other characters than ASCII
  std::size_t colours = 8;  ///< groups that it tells apart by colour; none without colours
};

/// The scene in the cells of a terminal: curves in dots of Braille, eight a cell, where colours
/// tell them apart, else in a letter for each group, or a digit from 0 to 9 for a place on a scale.
/// The lines are no longer than the width; wide plates stand below each other. The legend takes at
/// most a third of the height, and says how many groups it leaves out.
CellPicture CellsOf(const Scene& scene, const CellSize& size);

}  // namespace vex2::lab
