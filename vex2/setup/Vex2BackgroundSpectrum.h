#pragma once

#include "vex2/setup/Spectrum.h"

/// One spectrum of the background. The instrument defines the meaning of the numbers.
struct Vex2BackgroundSpectrum : vex2::Spectrum {
  std::uint16_t limit = 189;  ///< stored unchanged
};
