#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "lab/picture/Scene.h"

namespace vex2::lab {

/// A part of a terminal line in one colour.
struct CellRun {
  std::string text;     ///< UTF-8, one column for each character
  Look look;            ///< the look of data; empty if `isSoft`
  bool isSoft = false;  ///< it is an axis or a label, not data
};

/// A picture as lines of a terminal.
using CellPicture = std::vector<std::vector<CellRun>>;

/// The size of a terminal, and what it can show.
struct CellSize {
  std::size_t width = 80;   ///< in columns
  std::size_t height = 24;  ///< in lines
  bool isAscii = false;     ///< use only ASCII characters
  std::size_t colours = 8;  ///< number of groups that colours distinguish; 0 without colours
};

/// Draws the scene in the cells of a terminal. If colours distinguish the curves, draws them with
/// Braille dots, eight per cell. Otherwise draws the letter of each group, or a digit from 0 to 9
/// for a value on a scale. The lines are not longer than the width; wide plates are divided into
/// parts, one below the other. The legend takes at most a third of the height, and says how many
/// groups it leaves out.
CellPicture CellsOf(const Scene& scene, const CellSize& size);

}  // namespace vex2::lab
