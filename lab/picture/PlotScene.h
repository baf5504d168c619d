#pragma once

#include "lab/picture/Plot.h"
#include "lab/picture/Scene.h"

namespace vex2::lab {

/// The content of the picture of `run`. Throws the errors of `PlotSvg`.
Scene SceneOf(const RunReader& run, const PlotOptions& options);

/// Draws the scene as SVG.
std::string SvgOf(const Scene& scene);

}  // namespace vex2::lab
