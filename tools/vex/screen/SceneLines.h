#pragma once

#include <string>
#include <vector>

#include "lab/picture/CellPicture.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// The space for a plot on standard output: the screen without its last line, which the shell
/// needs; 80 columns by 23 lines if standard output is not a terminal.
CellSize ScreenSize();

/// The plot as lines for standard output, with colours if it has colours. Each line ends in the
/// plain style and has no line break.
std::vector<std::string> LinesOf(const Scene& scene, const CellSize& size);

}  // namespace vex2::tool
