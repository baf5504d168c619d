#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/vex/run/RunPlan.h"
#include "tools/vex/text/CsvReader.h"

namespace vex2::tool {

/// Where a measured run's readings are, and how to store them.
struct MeasuredRunFiles {
  std::string readings;                ///< CSV: well,stage,cycle,time_s,temperature_c,fluorescence
  std::string wells;                   ///< CSV: well,sample,target,task,quantity,reporter
  std::optional<std::uint32_t> scale;  ///< of the stored readings; nothing is the largest that fits
  CsvFormat readingsFormat;            ///< how the readings file is written
  CsvFormat wellsFormat;               ///< how the wells file is written
};

/// The columns of the readings file.
const std::vector<std::string_view>& ReadingsFileColumns();

/// The run that the files hold. Every well of the wells file has exactly one reading in every
/// frame, else an error names what is missing or wrong and its row.
RunPlan LoadMeasuredRun(const MeasuredRunFiles& files);

}  // namespace vex2::tool
