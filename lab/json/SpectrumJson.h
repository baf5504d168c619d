#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "lab/model/WellSpectrum.h"

namespace vex2::lab {

/// The readings of one well in frame `frame`, from 0, of the document at `path`. For a background,
/// also the rates.
nlohmann::ordered_json DescribeSpectrum(const WellSpectrum& spectrum, const std::string& path,
                                        const std::string& well, std::int64_t frame);

}  // namespace vex2::lab
