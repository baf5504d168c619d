#pragma once

#include "vex2/framework/Export.h"
#include "vex2/setup/SpectrumSet.h"
#include "vex2/setup/Vex2BackgroundSpectrum.h"

/// The background of an instrument.
struct VEX2_API Vex2BGC : vex2::SpectrumSet<Vex2BackgroundSpectrum> {};
