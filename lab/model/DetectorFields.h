#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/model/Value.h"
#include "vex2/setup/Vex2Detector.h"

namespace vex2::lab {

/// A field of a detector under the name by which people call it.
struct DetectorField {
  std::string_view key;
  std::string_view takes;  ///< what values there are, for people
  Value (*get)(const Vex2Detector& detector);
  /// Sets the value that `text` stands for. False when it stands for none.
  bool (*set)(Vex2Detector& detector, std::string_view text);
};

/// All of them, the name first.
const std::vector<DetectorField>& DetectorFields();

/// The fields of baseline and threshold that have the value of a new detector, so that they may not
/// have been set. A document does not distinguish such a value from the same value that a user set.
std::vector<std::string_view> DefaultedFields(const Vex2Detector& detector);

}  // namespace vex2::lab
