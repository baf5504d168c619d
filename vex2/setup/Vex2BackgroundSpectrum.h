#pragma once

#include "vex2/setup/Spectrum.h"

/// One trace of the background. What the numbers mean belongs to the instrument.
struct Vex2BackgroundSpectrum : vex2::Spectrum {
  std::uint16_t limit = 189;
};
