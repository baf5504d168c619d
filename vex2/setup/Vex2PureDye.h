#pragma once

#include "vex2/framework/Export.h"
#include "vex2/setup/SpectrumSet.h"
#include "vex2/setup/Vex2DyeSpectrum.h"

/// The spectra of the pure dyes that an instrument was calibrated with.
struct VEX2_API Vex2PureDye : vex2::SpectrumSet<Vex2DyeSpectrum> {};
