#pragma once

#include "vex2/framework/Export.h"
#include "vex2/setup/SpectrumSet.h"
#include "vex2/setup/Vex2DyeSpectrum.h"

/// The spectra of the pure dyes with which an instrument was calibrated.
struct VEX2_API Vex2PureDye : vex2::SpectrumSet<Vex2DyeSpectrum> {};
