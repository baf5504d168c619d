#pragma once

#include <cstdint>
#include <string>

#include "lab/model/WellSpectrum.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// The readings of `well` in frame `frame`, from 0, of the document at `path`: a drawing with the
/// numbers below it.
std::string SpectrumText(const WellSpectrum& spectrum, const std::string& path,
                         const std::string& well, std::int64_t frame, const TextForm& form);

}  // namespace vex2::lab
