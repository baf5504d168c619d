#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lab/model/Value.h"
#include "vex2/setup/Vex2Detector.h"

namespace vex2::lab {

/// A field of a detector, and the name that users know it by.
struct DetectorField {
  std::string_view key;
  std::string_view takes;  ///< the values that it takes, as a text for users
  Value (*get)(const Vex2Detector& detector);
  /// Sets the value that `text` represents. Returns false if the field does not take it.
  bool (*set)(Vex2Detector& detector, std::string_view text);
};

/// All fields, the detector's name first.
const std::vector<DetectorField>& DetectorFields();

/// The names of the fields for baseline and threshold that still have the value of a new detector.
/// They may never have been set: a document does not show whether a user has set a field to that
/// same value.
std::vector<std::string_view> DefaultedFields(const Vex2Detector& detector);

}  // namespace vex2::lab
