#pragma once

#include <string>
#include <vector>

#include "lab/picture/CellPicture.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// What standard output can show of a picture: the screen but for its last line, which is the
/// shell's, and 80 columns by 23 lines where it is no terminal.
CellSize ScreenSize();

/// The picture in lines for standard output, in colour where it has colours. Each ends in the plain
/// style and has no line break.
std::vector<std::string> LinesOf(const Scene& scene, const CellSize& size);

}  // namespace vex2::tool
