#pragma once

#include "vex2/setup/Spectrum.h"

/// The spectrum of one pure dye. The instrument defines the meaning of the numbers.
struct Vex2DyeSpectrum : vex2::Spectrum {
  std::uint8_t byte1 = 0;    ///< stored unchanged
  std::uint8_t byte2 = 0;    ///< stored unchanged
  std::uint16_t param1 = 0;  ///< stored unchanged
  std::uint16_t param2 = 0;  ///< stored unchanged
  std::uint16_t param3 = 0;  ///< stored unchanged
};
