#pragma once

#include "vex2/setup/SpectrumSet.h"
#include "vex2/setup/Vex2DyeSpectrum.h"

/// The spectra of the pure dyes that an instrument was calibrated with.
struct Vex2PureDye : vex2::SpectrumSet<Vex2DyeSpectrum> {};
