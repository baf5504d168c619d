#pragma once

#include "lab/picture/Plot.h"
#include "lab/picture/Scene.h"

namespace vex2::lab {

/// What the picture of `run` shows. Throws as `PlotSvg` does.
Scene SceneOf(const RunReader& run, const PlotOptions& options);

/// The scene as SVG.
std::string SvgOf(const Scene& scene);

}  // namespace vex2::lab
